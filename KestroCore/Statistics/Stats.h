#pragma once

#include <QtGlobal>
#include <optional>

namespace kestro {

/// Ticks that the kernel has counted since boot, for the whole machine or one core. They wrap at 2^32.
struct CPUTicks {
    quint32 user = 0;
    quint32 system = 0;
    quint32 idle = 0;
    quint32 nice = 0;

    bool operator==(const CPUTicks&) const = default;
};

/// One compact reading; what could not be read is absent.
struct Stats {
    std::optional<double> cpu; ///< share of all cores, 0 to 1
    std::optional<quint64> ramUsed; ///< bytes
    quint64 ramTotal = 0; ///< bytes
    std::optional<int> battery; ///< percent
    bool charging = false;
    std::optional<double> tempC; ///< of the processor, in degrees Celsius
    std::optional<int> gpu; ///< percent
    std::optional<qint64> ssdFree; ///< bytes

    bool operator==(const Stats&) const = default;
};

/// The share of time that was not idle between two readings, 0 to 1; 0 when no tick has passed.
double cpuUsage(const CPUTicks& from, const CPUTicks& to);

} // namespace kestro
