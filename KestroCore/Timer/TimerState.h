#pragma once

#include "KestroCore/Support/Date.h"

#include <QByteArray>
#include <QString>
#include <array>
#include <optional>
#include <variant>

namespace kestro {

/// A countdown. A running timer stores its end time instead of counting ticks, so it survives a restart and a suspend.
struct TimerState {
    struct Running {
        Date until;
        bool operator==(const Running&) const = default;
    };
    struct Paused {
        double remaining; ///< seconds
        bool operator==(const Paused&) const = default;
    };
    struct Idle {
        bool operator==(const Idle&) const = default;
    };
    using Phase = std::variant<Running, Paused, Idle>;

    static constexpr std::array presets{ 1, 5, 10, 25, 45 }; ///< minutes
    static constexpr double maxDuration = 99 * 60; ///< seconds

    Phase phase = Idle{};
    double duration = 300; ///< seconds; the last chosen length, which an idle timer shows

    bool operator==(const TimerState&) const = default;

    bool isRunning() const { return std::holds_alternative<Running>(phase); }
    bool isIdle() const { return std::holds_alternative<Idle>(phase); }
    /// The end of a running timer.
    std::optional<Date> until() const;
    /// Seconds, at least 0.
    double remaining(Date now) const;
    bool isFinished(Date now) const;

    void start(int minutes, Date now);
    /// Starts or continues with what remains; does nothing where nothing remains.
    void start(Date now);
    void pause(Date now);
    void reset() { phase = Idle{}; }
    /// Changes what remains, or the length of an idle timer, between 0 and `maxDuration`.
    void adjust(int minutes, Date now);

    /// "4:05"; minutes are not split into hours.
    static QString format(double seconds);
    /// The same for little room: "12m", or "40s" in the last minute.
    static QString wingText(double seconds);
    /// The time that `format` and `wingText` show: seconds rounded up, at least 0.
    static qint64 wholeSeconds(double seconds);

    /// One JSON document; empty for infinite or NaN numbers, which JSON cannot express.
    std::optional<QByteArray> encode() const;
    /// Throws StorageError for bytes that are not a state.
    static TimerState decode(const QByteArray& bytes);
};

} // namespace kestro
