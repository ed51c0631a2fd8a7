#include "Platforms/Linux/System/ProcCounters.h"

#include "KestroCore/Statistics/StatsMath.h"
#include "Platforms/Linux/System/ProcText.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cstring>
#include <ctime>
#include <functional>
#include <ifaddrs.h>
#include <memory>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace kestro {
namespace {

// The lines of the compact reading are the first ones; the rest of a many-core /proc/stat is not read.
using Head = std::array<char, 1024>;
constexpr qsizetype wholeStat = 4'194'304; // thousands of cores
constexpr qsizetype wholeTable = 1'048'576; // thousands of disks or interfaces
constexpr int readsBetweenLookups = 60;

std::optional<quint64> usedOf(std::string_view meminfo)
{
    const auto total = procText::memory(meminfo, "MemTotal:");
    const auto available = procText::memory(meminfo, "MemAvailable:");
    if (!total || !available || *available > *total)
        return std::nullopt;
    return *total - *available;
}

struct Space {
    qint64 free;
    qint64 total;
};

std::optional<Space> spaceOf(const QByteArray& root)
{
    struct statvfs space { };
    if (::statvfs(root.isEmpty() ? "/" : root.constData(), &space) != 0)
        return std::nullopt;
    return Space{ qint64(space.f_bavail * space.f_frsize), qint64(space.f_blocks * space.f_frsize) };
}

double monotonicNow()
{
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

std::optional<OwnUsage> ownUsage(const SystemFiles& files)
{
    rusage usage{};
    if (::getrusage(RUSAGE_SELF, &usage) != 0)
        return std::nullopt;
    const auto nanoseconds = [](const timeval& time) {
        return quint64(time.tv_sec) * 1'000'000'000 + quint64(time.tv_usec) * 1000;
    };
    const QByteArrayList pages = files.line("/proc/self/statm").split(' ');
    const quint64 memory = pages.size() > 1 ? pages[1].toULongLong() * quint64(::sysconf(_SC_PAGESIZE)) : 0;
    // A thread gives its core back of itself when it has nothing to do: so often it was woken.
    return OwnUsage{ nanoseconds(usage.ru_utime) + nanoseconds(usage.ru_stime), memory, quint64(usage.ru_nvcsw) };
}

std::optional<QString> addressOf(const QString& interface)
{
    ifaddrs* first = nullptr;
    if (::getifaddrs(&first) != 0)
        return std::nullopt;
    const std::unique_ptr<ifaddrs, void (*)(ifaddrs*)> all(first, ::freeifaddrs);
    for (const ifaddrs* each = first; each; each = each->ifa_next) {
        if (!each->ifa_addr || each->ifa_addr->sa_family != AF_INET || !(each->ifa_flags & IFF_UP)
            || interface != QLatin1StringView(each->ifa_name))
            continue;
        sockaddr_in address{};
        std::memcpy(&address, each->ifa_addr, sizeof address);
        std::array<char, INET_ADDRSTRLEN> text{};
        if (::inet_ntop(AF_INET, &address.sin_addr, text.data(), text.size()))
            return QString::fromLatin1(text.data());
    }
    return std::nullopt;
}

bool isUpAndNoLoopback(const SystemFiles& files, const QString& interface)
{
    bool isNumber = false;
    const uint flags = files.line("/sys/class/net/" + interface.toUtf8() + "/flags").toUInt(&isNumber, 0);
    if (!isNumber)
        return interface != u"lo";
    return (flags & IFF_UP) && !(flags & IFF_LOOPBACK);
}

} // namespace

ProcCounters::ProcCounters(const QByteArray& root)
    : m_files(root)
    , m_stat("/proc/stat")
    , m_meminfo("/proc/meminfo")
{
}

std::optional<CPUTicks> ProcCounters::cpuTicks() const
{
    Head buffer; // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the read
    return procText::cpuTicks(m_files.head(m_stat, buffer));
}

std::optional<quint64> ProcCounters::ramUsed() const
{
    Head buffer; // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the read
    return usedOf(m_files.head(m_meminfo, buffer));
}

quint64 ProcCounters::ramTotal() const
{
    Head buffer; // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the read
    return procText::memory(m_files.head(m_meminfo, buffer), "MemTotal:").value_or(0);
}

std::optional<BatteryReading> ProcCounters::battery() const { return sensors::battery(m_files); }

std::optional<double> ProcCounters::cpuTemperature() const
{
    if (--m_readsUntilLookup <= 0) {
        m_readsUntilLookup = readsBetweenLookups;
        m_processorSensors = sensors::thermometers(m_files);
        if (std::ranges::any_of(m_processorSensors, &sensors::Sensor::isProcessor))
            std::erase_if(m_processorSensors, [](const sensors::Sensor& each) { return !each.isProcessor; });
        // The whole package is as hot as its hottest core: one file instead of one for each core.
        const auto isPackage = [](const sensors::Sensor& each) { return each.name.contains(u"Package id"); };
        if (std::ranges::any_of(m_processorSensors, isPackage))
            std::erase_if(m_processorSensors, std::not_fn(isPackage));
    }
    std::vector<TemperatureReading> readings;
    for (const sensors::Sensor& each : m_processorSensors) {
        if (const auto celsius = sensors::celsius(m_files, each))
            readings.push_back({ each.name, *celsius, each.isProcessor });
    }
    return StatsMath::cpuTemperature(readings);
}

std::optional<int> ProcCounters::gpu() const { return sensors::gpu(m_files); }

std::optional<qint64> ProcCounters::diskFree() const
{
    const auto space = spaceOf(m_files.root());
    return space ? std::optional(space->free) : std::nullopt;
}

SystemReadings ProcCounters::readings() const
{
    SystemReadings readings{ .moment = monotonicNow() };
    const QByteArray stat = m_files.read(m_stat, wholeStat);
    readings.ticks = procText::cpuTicks(view(stat));
    const size_t firstLine = view(stat).find('\n');
    if (firstLine != std::string_view::npos)
        readings.cores = procText::cores(view(stat).substr(firstLine + 1));
    readings.load = procText::load(view(m_files.line("/proc/loadavg")));
    const QByteArray meminfo = m_files.read(m_meminfo);
    readings.ramUsed = usedOf(view(meminfo));
    readings.ramTotal = procText::memory(view(meminfo), "MemTotal:").value_or(0);
    readings.swapTotal = procText::memory(view(meminfo), "SwapTotal:");
    const auto swapFree = procText::memory(view(meminfo), "SwapFree:");
    if (readings.swapTotal && swapFree && *swapFree <= *readings.swapTotal)
        readings.swapUsed = *readings.swapTotal - *swapFree;
    readings.pressure = procText::pressure(view(m_files.read("/proc/pressure/memory")));
    addDisks(readings);
    addNetwork(readings);
    readings.battery = sensors::battery(m_files);
    for (const sensors::Sensor& each : sensors::thermometers(m_files)) {
        if (const auto celsius = sensors::celsius(m_files, each))
            readings.temperatures.push_back({ each.name, *celsius, each.isProcessor });
    }
    readings.fans = sensors::fans(m_files);
    readings.gpu = sensors::gpu(m_files);
    readings.own = ownUsage(m_files);
    return readings;
}

void ProcCounters::addDisks(SystemReadings& readings) const
{
    if (const auto space = spaceOf(m_files.root())) {
        readings.diskFree = space->free;
        readings.diskTotal = space->total;
    }
    const QByteArray text = m_files.read("/proc/diskstats", wholeTable);
    // The parts of a disk, and what is laid over it, would count its bytes twice.
    for (const procText::Disk& each : procText::disks(view(text))) {
        const QByteArray name(each.name.data(), qsizetype(each.name.size()));
        const bool isPart = m_files.exists("/sys/class/block/" + name + "/partition");
        const bool isListed = m_files.exists("/sys/block/" + name);
        const bool isDisk =
            isListed ? m_files.exists("/sys/block/" + name + "/device") : !isPart && procText::looksLikeDisk(each.name);
        if (!isDisk)
            continue;
        const DiskBytes sum = readings.disk.value_or(DiskBytes{});
        readings.disk = DiskBytes{ sum.read + each.read, sum.written + each.written };
    }
}

void ProcCounters::addNetwork(SystemReadings& readings) const
{
    const QByteArray text = m_files.read("/proc/net/dev", wholeTable);
    if (!text.isEmpty()) {
        auto interfaces = procText::interfaces(view(text));
        std::erase_if(interfaces, [&](const InterfaceBytes& each) { return !isUpAndNoLoopback(m_files, each.name); });
        // What goes through a bridge or a tunnel leaves through a card, too, and would count twice.
        const auto isCard = [&](const InterfaceBytes& each) {
            return m_files.exists("/sys/class/net/" + each.name.toUtf8() + "/device");
        };
        if (std::ranges::any_of(interfaces, isCard))
            std::erase_if(interfaces, std::not_fn(isCard));
        readings.interfaces = std::move(interfaces);
    }
    readings.interface = procText::primaryInterface(view(m_files.read("/proc/net/route", wholeTable)));
    if (readings.interface && m_files.root().isEmpty())
        readings.address = addressOf(*readings.interface);
}

QString ProcCounters::source(Reading reading) const
{
    switch (reading) {
    case Reading::cpu:
        return QStringLiteral("/proc/stat");
    case Reading::load:
        return QStringLiteral("/proc/loadavg");
    case Reading::memory:
    case Reading::swap:
        return QStringLiteral("/proc/meminfo");
    case Reading::pressure:
        return QStringLiteral("/proc/pressure/memory");
    case Reading::gpu:
        return QStringLiteral("/sys/class/drm");
    case Reading::diskSpace:
        return QStringLiteral("the file system of /");
    case Reading::disk:
        return QStringLiteral("/proc/diskstats");
    case Reading::network:
        return QStringLiteral("/proc/net/dev");
    case Reading::interface:
        return QStringLiteral("/proc/net/route");
    case Reading::battery:
        return QStringLiteral("/sys/class/power_supply");
    case Reading::temperature:
    case Reading::fan:
        return QStringLiteral("/sys/class/hwmon");
    case Reading::processes:
        return QStringLiteral("/proc");
    case Reading::own:
        return QStringLiteral("getrusage");
    }
    return {};
}

} // namespace kestro
