#pragma once

#include "KestroCore/Statistics/Readings.h"

#include <optional>

namespace kestro {

/// The kernel's counters; a reading that fails is nothing. All but `readings` are cheap enough for the main thread.
class SystemCounters {
public:
    virtual ~SystemCounters() = default;

    virtual std::optional<CPUTicks> cpuTicks() const = 0;
    virtual std::optional<quint64> ramUsed() const = 0; ///< bytes
    virtual quint64 ramTotal() const = 0; ///< bytes; 0 when unknown
    virtual std::optional<BatteryReading> battery() const = 0;
    virtual std::optional<double> cpuTemperature() const = 0; ///< degrees Celsius
    virtual std::optional<int> gpu() const = 0; ///< percent
    virtual std::optional<qint64> diskFree() const = 0; ///< bytes

    /// Everything at once. From any thread.
    virtual SystemReadings readings() const = 0;
    /// Where the reading comes from, in a few words.
    virtual QString source(Reading reading) const = 0;
};

} // namespace kestro
