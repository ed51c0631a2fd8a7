#pragma once

#include "KestroCore/Statistics/Readings.h"

/// Two samples of a counter make a rate or a share. Pure.
namespace kestro::StatsMath {

/// A second; nothing when no time has passed or the counter went back.
std::optional<double> rate(quint64 from, quint64 to, double seconds);
/// Over all interfaces that stand in both; one that started anew adds nothing this time.
std::optional<Throughput> networkRates(
    const std::vector<InterfaceBytes>& from, const std::vector<InterfaceBytes>& to, double seconds);
/// One share a core; nothing when cores came or went.
std::optional<std::vector<double>> perCoreUsage(const std::vector<CPUTicks>& from, const std::vector<CPUTicks>& to);
std::optional<double> swapFraction(quint64 used, quint64 total);
std::optional<double> batteryHealth(qint64 maxCapacity, qint64 designCapacity);
/// Below 0 while discharging.
std::optional<double> batteryWatts(qint64 millivolts, qint64 milliamps);
/// `some` and `full`: the shares of the last ten seconds, in percent, in which some or all work waited for memory.
MemoryPressure memoryPressure(double some, double full);

/// The hottest of each name, the hottest first.
std::vector<TemperatureReading> topTemperatures(const std::vector<TemperatureReading>& readings, int count);
/// The die's mean where sensors tell it, else the processor's hottest, else the machine's.
std::optional<double> cpuTemperature(const std::vector<TemperatureReading>& readings);

} // namespace kestro::StatsMath
