#pragma once

#include "Kestro/Platform/SystemCounters.h"

#include <atomic>

namespace kestro::test {

class FakeCounters final : public SystemCounters {
public:
    std::optional<CPUTicks> cpuTicks() const override { return ++ticksRead, ticks; }
    std::optional<quint64> ramUsed() const override { return used; }
    quint64 ramTotal() const override { return 16ull << 30; }
    std::optional<BatteryReading> battery() const override { return all.battery; }
    std::optional<double> cpuTemperature() const override { return celsius; }
    std::optional<int> gpu() const override { return all.gpu; }
    std::optional<qint64> diskFree() const override { return all.diskFree; }
    SystemReadings readings() const override { return ++samples, all; }
    QString source(Reading) const override { return QStringLiteral("a table"); }

    std::optional<CPUTicks> ticks;
    std::optional<quint64> used = 4ull << 30;
    std::optional<double> celsius;
    SystemReadings all; ///< set while the queue rests
    mutable int ticksRead = 0;
    mutable std::atomic_int samples = 0;
};

} // namespace kestro::test
