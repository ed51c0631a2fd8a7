#pragma once

#include "KestroCore/Statistics/Stats.h"
#include "KestroCore/Support/RawString.h"

#include <QString>
#include <array>
#include <optional>
#include <vector>

namespace kestro {

/// What an interface has carried since it came up.
struct InterfaceBytes {
    QString name;
    quint64 received = 0;
    quint64 sent = 0;

    bool operator==(const InterfaceBytes&) const = default;
};

struct DiskBytes {
    quint64 read = 0;
    quint64 written = 0;

    bool operator==(const DiskBytes&) const = default;
};

/// Bytes a second.
struct Throughput {
    double down = 0;
    double up = 0;

    bool operator==(const Throughput&) const = default;
};

enum class MemoryPressure { normal, warning, critical };

template <> struct RawStrings<MemoryPressure> {
    static constexpr std::array<QLatin1StringView, 3> values{ QLatin1StringView("normal"), QLatin1StringView("warning"),
        QLatin1StringView("critical") };
};

struct TemperatureReading {
    QString name;
    double celsius = 0;
    bool isProcessor = false; ///< the sensor is the processor's own

    bool operator==(const TemperatureReading&) const = default;
};

/// A battery as it tells of itself.
struct BatteryReading {
    int percent = 0;
    bool charging = false;
    bool onMains = false;
    std::optional<int> cycles{};
    std::optional<qint64> maxCapacity{}; ///< in the unit of `designCapacity`
    std::optional<qint64> designCapacity{};
    std::optional<qint64> millivolts{};
    std::optional<qint64> milliamps{}; ///< below 0 while discharging
    std::optional<double> watts{}; ///< the same sign, of a battery that tells it outright

    bool operator==(const BatteryReading&) const = default;
};

/// What this process has used since its start.
struct OwnUsage {
    quint64 nanoseconds = 0; ///< of processor time
    quint64 memory = 0; ///< bytes
    quint64 wakeUps = 0;

    bool operator==(const OwnUsage&) const = default;
};

/// All counters of the machine at one moment; what it does not tell is absent.
struct SystemReadings {
    double moment = 0; ///< seconds of a clock that nobody sets
    std::optional<CPUTicks> ticks{};
    std::vector<CPUTicks> cores{};
    std::optional<std::array<double, 3>> load{};
    std::optional<quint64> ramUsed{};
    quint64 ramTotal = 0;
    std::optional<MemoryPressure> pressure{};
    std::optional<quint64> swapUsed{};
    std::optional<quint64> swapTotal{};
    std::optional<int> gpu{};
    std::optional<qint64> diskFree{};
    std::optional<qint64> diskTotal{};
    std::optional<DiskBytes> disk{};
    std::optional<std::vector<InterfaceBytes>> interfaces{};
    std::optional<QString> interface {
    }; ///< the primary one's name
    std::optional<QString> address{}; ///< of the primary one
    std::optional<BatteryReading> battery{};
    std::vector<TemperatureReading> temperatures{};
    /// Revolutions a minute; nothing where they cannot be told, empty where there is no fan.
    std::optional<std::vector<double>> fans{};
    std::optional<OwnUsage> own{};
};

/// What has a source of its own to be named.
enum class Reading {
    cpu,
    load,
    memory,
    pressure,
    swap,
    gpu,
    diskSpace,
    disk,
    network,
    interface,
    battery,
    temperature,
    fan,
    processes,
    own
};

} // namespace kestro
