#include "Platforms/Linux/System/Sensors.h"

#include "Platforms/Linux/System/ProcText.h"

#include <algorithm>
#include <cmath>

namespace kestro::sensors {

namespace {

constexpr int mostChannels = 64; // of one chip

std::optional<qint64> valueIn(const SystemFiles& files, const QByteArray& path)
{
    return procText::number(view(files.line(path)));
}

bool isProcessorChip(const QByteArray& chip)
{
    constexpr std::array chips{ "coretemp", "k10temp", "k8temp", "zenpower", "cpu_thermal", "cpu-thermal",
        "soc_thermal", "soc-thermal", "x86_pkg_temp", "cpu", "via_cputemp", "bigcore", "littlecore" };
    return std::ranges::any_of(chips, [&](const char* each) { return chip.startsWith(each); });
}

/// The files of the folder that are called PREFIX, a number and SUFFIX, by their number.
std::vector<QByteArray> channels(const QByteArrayList& names, const QByteArray& prefix, const QByteArray& suffix)
{
    std::vector<std::pair<int, QByteArray>> found;
    for (const QByteArray& name : names) {
        if (!name.startsWith(prefix) || !name.endsWith(suffix) || name.size() < prefix.size() + suffix.size())
            continue;
        bool isNumber = false;
        const QByteArray middle = name.mid(prefix.size(), name.size() - prefix.size() - suffix.size());
        const int number = middle.toInt(&isNumber);
        if (isNumber && found.size() < mostChannels)
            found.emplace_back(number, prefix + middle);
    }
    std::ranges::sort(found);
    std::vector<QByteArray> sorted;
    for (auto& each : found)
        sorted.push_back(std::move(each.second));
    return sorted;
}

bool isComputersBattery(const SystemFiles& files, const QByteArray& folder)
{
    return files.line(folder + "type") == "Battery" && files.line(folder + "scope") != "Device"
        && files.line(folder + "present") != "0";
}

// A driver counts in microampere-hours or in microwatt-hours; either serves for a share.
void addCapacity(const SystemFiles& files, const QByteArray& folder, BatteryReading& battery)
{
    for (const char* kind : { "charge", "energy" }) {
        const auto full = valueIn(files, folder + kind + "_full");
        const auto design = valueIn(files, folder + kind + "_full_design");
        if (full && design) {
            battery.maxCapacity = full;
            battery.designCapacity = design;
            return;
        }
    }
}

std::optional<int> chargeOf(const SystemFiles& files, const QByteArray& folder)
{
    if (const auto percent = valueIn(files, folder + "capacity"))
        return int(std::clamp<qint64>(*percent, 0, 100));
    for (const char* kind : { "charge", "energy" }) {
        const auto now = valueIn(files, folder + kind + "_now");
        const auto full = valueIn(files, folder + kind + "_full");
        if (now && full && *now >= 0)
            return *full > 0 ? int(std::min<double>(100, double(*now) * 100 / double(*full))) : 0;
    }
    return std::nullopt;
}

bool isOnMains(const SystemFiles& files)
{
    return std::ranges::any_of(files.names("/sys/class/power_supply"), [&](const QByteArray& name) {
        const QByteArray folder = "/sys/class/power_supply/" + name + '/';
        const QByteArray type = files.line(folder + "type");
        return (type == "Mains" || type.startsWith("USB")) && files.line(folder + "scope") != "Device"
            && files.line(folder + "online") == "1";
    });
}

} // namespace

std::vector<Sensor> thermometers(const SystemFiles& files)
{
    std::vector<Sensor> found;
    for (const QByteArray& chip : files.names("/sys/class/hwmon")) {
        const QByteArray folder = "/sys/class/hwmon/" + chip + '/';
        const QByteArray driver = files.line(folder + "name");
        for (const QByteArray& channel : channels(files.names(folder), "temp", "_input")) {
            const QByteArray label = files.line(folder + channel + "_label");
            const QByteArray name = label.isEmpty() ? driver + ' ' + channel.mid(4) : driver + ' ' + label;
            found.push_back(
                { folder + channel + "_input", procText::printable(view(name.trimmed())), isProcessorChip(driver) });
        }
    }
    if (!found.empty())
        return found;
    for (const QByteArray& zone : files.names("/sys/class/thermal")) {
        const QByteArray folder = "/sys/class/thermal/" + zone + '/';
        if (!zone.startsWith("thermal_zone") || !files.exists(folder + "temp"))
            continue;
        const QByteArray type = files.line(folder + "type");
        found.push_back(
            { folder + "temp", procText::printable(view(type.isEmpty() ? zone : type)), isProcessorChip(type) });
    }
    return found;
}

std::optional<double> celsius(const SystemFiles& files, const Sensor& sensor)
{
    const auto value = valueIn(files, sensor.path);
    return value ? std::optional(double(*value) / 1000) : std::nullopt;
}

std::optional<std::vector<double>> fans(const SystemFiles& files)
{
    std::vector<double> speeds;
    bool any = false;
    for (const QByteArray& chip : files.names("/sys/class/hwmon")) {
        const QByteArray folder = "/sys/class/hwmon/" + chip + '/';
        for (const QByteArray& channel : channels(files.names(folder), "fan", "_input")) {
            any = true;
            const auto speed = valueIn(files, folder + channel + "_input");
            if (speed && *speed >= 0)
                speeds.push_back(double(*speed));
        }
    }
    if (any && speeds.empty())
        return std::nullopt;
    return speeds;
}

std::optional<BatteryReading> battery(const SystemFiles& files)
{
    for (const QByteArray& name : files.names("/sys/class/power_supply")) {
        const QByteArray folder = "/sys/class/power_supply/" + name + '/';
        if (!isComputersBattery(files, folder))
            continue;
        const auto percent = chargeOf(files, folder);
        if (!percent)
            continue;
        const QByteArray status = files.line(folder + "status");
        BatteryReading battery{ .percent = *percent, .charging = status == "Charging", .onMains = isOnMains(files) };
        // Where it is not supported, drivers tell 0.
        if (const auto cycles = valueIn(files, folder + "cycle_count"); cycles && *cycles > 0 && *cycles < 1'000'000)
            battery.cycles = int(*cycles);
        addCapacity(files, folder, battery);
        // Drivers disagree about the sign: the status tells it.
        const int sign = status == "Discharging" ? -1 : 1;
        const auto volts = valueIn(files, folder + "voltage_now");
        const auto amps = valueIn(files, folder + "current_now");
        if (volts && amps) {
            battery.millivolts = *volts / 1000;
            battery.milliamps = sign * std::abs(*amps / 1000);
        } else if (const auto power = valueIn(files, folder + "power_now")) {
            battery.watts = sign * std::abs(double(*power)) / 1e6;
        }
        return battery;
    }
    return std::nullopt;
}

std::optional<int> gpu(const SystemFiles& files)
{
    std::optional<int> busiest;
    for (const QByteArray& card : files.names("/sys/class/drm")) {
        if (!card.startsWith("card") || card.contains('-'))
            continue;
        const auto busy = valueIn(files, "/sys/class/drm/" + card + "/device/gpu_busy_percent");
        if (busy && *busy >= 0)
            busiest = std::max(busiest.value_or(0), int(std::min<qint64>(*busy, 100)));
    }
    return busiest;
}

} // namespace kestro::sensors
