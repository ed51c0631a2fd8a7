#include "KestroCore/Statistics/StatsMath.h"

#include <QHash>
#include <algorithm>
#include <limits>
#include <tuple>

namespace kestro {

namespace {

constexpr quint64 restart = 0x7FFFFFFF; // a step of so much over the end of 32 bits is a counter that began anew

// Old drivers count in 32 bits. A step forwards is believed whatever its size: fast networks carry that in a second.
std::optional<quint64> step(quint64 from, quint64 to)
{
    if (to >= from)
        return to - from;
    if (from > std::numeric_limits<quint32>::max())
        return std::nullopt;
    const quint32 wrapped = quint32(to) - quint32(from);
    return wrapped < restart ? std::optional<quint64>(wrapped) : std::nullopt;
}

// "tcal" sensors are for calibration and tell no temperature.
bool isPlausible(const TemperatureReading& reading)
{
    return reading.celsius > 0 && reading.celsius < 150 && !reading.name.contains(u"tcal", Qt::CaseInsensitive);
}

} // namespace

double cpuUsage(const CPUTicks& from, const CPUTicks& to)
{
    // In 32 bits, so that a counter which wrapped gives the small step that it made. One that steps back a little, as
    // idle time does when cores sleep, gives none.
    const auto passed = [](quint32 before, quint32 now) {
        return now < before && before - now < restart ? 0 : now - before;
    };
    const quint32 user = passed(from.user, to.user);
    const quint32 system = passed(from.system, to.system);
    const quint32 nice = passed(from.nice, to.nice);
    const quint32 idle = passed(from.idle, to.idle);
    const quint64 busy = quint64(user) + system + nice;
    const quint64 total = busy + idle;
    return total == 0 ? 0 : double(busy) / double(total);
}

std::optional<double> StatsMath::rate(quint64 from, quint64 to, double seconds)
{
    if (!(seconds > 0) || to < from)
        return std::nullopt;
    return double(to - from) / seconds;
}

std::optional<Throughput> StatsMath::networkRates(
    const std::vector<InterfaceBytes>& from, const std::vector<InterfaceBytes>& to, double seconds)
{
    if (!(seconds > 0))
        return std::nullopt;
    QHash<QString, const InterfaceBytes*> before;
    for (const InterfaceBytes& each : from)
        before.insert(each.name, &each);
    quint64 down = 0;
    quint64 up = 0;
    for (const InterfaceBytes& each : to) {
        const InterfaceBytes* const old = before.value(each.name);
        const auto received = old ? step(old->received, each.received) : std::nullopt;
        const auto sent = old ? step(old->sent, each.sent) : std::nullopt;
        if (received && sent) {
            down += *received;
            up += *sent;
        }
    }
    return Throughput{ double(down) / seconds, double(up) / seconds };
}

std::optional<std::vector<double>> StatsMath::perCoreUsage(
    const std::vector<CPUTicks>& from, const std::vector<CPUTicks>& to)
{
    if (to.empty() || from.size() != to.size())
        return std::nullopt;
    std::vector<double> shares;
    shares.reserve(to.size());
    for (std::size_t i = 0; i < to.size(); ++i)
        shares.push_back(cpuUsage(from[i], to[i]));
    return shares;
}

std::optional<double> StatsMath::swapFraction(quint64 used, quint64 total)
{
    return total == 0 ? std::nullopt : std::optional(std::min(double(used) / double(total), 1.0));
}

std::optional<double> StatsMath::batteryHealth(qint64 maxCapacity, qint64 designCapacity)
{
    if (maxCapacity < 1 || designCapacity < 1)
        return std::nullopt;
    return std::min(double(maxCapacity) / double(designCapacity), 1.0);
}

std::optional<double> StatsMath::batteryWatts(qint64 millivolts, qint64 milliamps)
{
    return millivolts < 1 ? std::nullopt : std::optional(double(millivolts) * double(milliamps) / 1e6);
}

MemoryPressure StatsMath::memoryPressure(double some, double full)
{
    constexpr double noticed = 10; // percent
    return full >= noticed ? MemoryPressure::critical
        : some >= noticed  ? MemoryPressure::warning
                           : MemoryPressure::normal;
}

std::vector<TemperatureReading> StatsMath::topTemperatures(const std::vector<TemperatureReading>& readings, int count)
{
    QHash<QString, std::size_t> places;
    std::vector<TemperatureReading> hottest;
    for (const TemperatureReading& each : readings) {
        if (!isPlausible(each))
            continue;
        const auto place = places.constFind(each.name);
        if (place == places.cend()) {
            places.insert(each.name, hottest.size());
            hottest.push_back(each);
        } else if (hottest[*place].celsius < each.celsius) {
            hottest[*place] = each;
        }
    }
    std::ranges::sort(hottest, [](const TemperatureReading& a, const TemperatureReading& b) {
        return std::tie(b.celsius, a.name) < std::tie(a.celsius, b.name);
    });
    hottest.resize(std::min(hottest.size(), std::size_t(std::max(count, 0))));
    return hottest;
}

std::optional<double> StatsMath::cpuTemperature(const std::vector<TemperatureReading>& readings)
{
    double sum = 0;
    int dies = 0;
    std::optional<double> processor;
    std::optional<double> any;
    for (const TemperatureReading& each : readings) {
        if (!isPlausible(each))
            continue;
        if (each.name.contains(u"tdie")) {
            sum += each.celsius;
            ++dies;
        }
        if (each.isProcessor)
            processor = std::max(processor.value_or(0), each.celsius);
        any = std::max(any.value_or(0), each.celsius);
    }
    if (dies > 0)
        return sum / dies;
    return processor ? processor : any;
}

} // namespace kestro
