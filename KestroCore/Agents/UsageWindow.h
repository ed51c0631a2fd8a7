#pragma once

#include "KestroCore/Support/Date.h"

#include <QString>
#include <optional>

namespace kestro {

/// How much of one of a plan's time windows is used up.
struct UsageWindow {
    double usedPercent = 0; ///< as reported, not clamped
    Date resetsAt;

    /// Nothing unless both numbers were given. `resetsAt` is in seconds since 1970.
    static std::optional<UsageWindow> from(std::optional<double> usedPercent, std::optional<double> resetsAt);

    bool isExpired(Date now) const { return resetsAt <= now; }
    /// 0 to 100. An expired window counts as unused until newer figures come.
    double shownPercent(Date now) const;

    bool operator==(const UsageWindow&) const = default;
};

/// How near its limit a window is; a traffic light has a colour for each.
enum class UsageLevel { low, medium, high };

/// The gauge of one window.
struct WindowGauge {
    static constexpr double barWidth = 44; ///< points

    QString label;
    double percent = 0; ///< 0 to 100
    QString text; ///< "28% · 2h5m"

    static WindowGauge of(const UsageWindow& window, const QString& label, Date now);
    /// The time until a reset: "5m", "2h5m", "3d". Never less than a minute.
    static QString remaining(double seconds);

    UsageLevel level() const;
    double fill() const { return percent * barWidth / 100; } ///< points

    bool operator==(const WindowGauge&) const = default;
};

} // namespace kestro
