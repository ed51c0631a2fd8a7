#pragma once

#include "Kestro/Platform/SystemCounters.h"
#include "Platforms/Linux/System/Sensors.h"

namespace kestro {

/// The counters in /proc and /sys.
class ProcCounters final : public SystemCounters {
public:
    /// `root` stands before "/proc" and "/sys"; empty for the machine's own.
    explicit ProcCounters(const QByteArray& root = {});

    std::optional<CPUTicks> cpuTicks() const override;
    /// Memory that is neither free nor could be freed at once.
    std::optional<quint64> ramUsed() const override;
    quint64 ramTotal() const override;
    std::optional<BatteryReading> battery() const override;
    std::optional<double> cpuTemperature() const override;
    std::optional<int> gpu() const override;
    std::optional<qint64> diskFree() const override;
    SystemReadings readings() const override;
    QString source(Reading reading) const override;

private:
    void addDisks(SystemReadings& readings) const;
    void addNetwork(SystemReadings& readings) const;

    SystemFiles m_files;
    QByteArray m_stat;
    QByteArray m_meminfo;
    /// The main thread's: which sensors there are is looked up once in a while.
    mutable std::vector<sensors::Sensor> m_processorSensors;
    mutable int m_readsUntilLookup = 0;
};

} // namespace kestro
