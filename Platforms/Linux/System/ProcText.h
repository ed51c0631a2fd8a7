#pragma once

#include "KestroCore/Statistics/Readings.h"

#include <QByteArray>
#include <QByteArrayList>
#include <string_view>

/// The texts of procfs as values. Each takes any bytes, and more or fewer columns than today's kernels write. Pure.
namespace kestro::procText {

/// Of the whole machine. Waiting for a disk counts as idle, the time of interrupts as the system's.
std::optional<CPUTicks> cpuTicks(std::string_view stat);
/// Of each core that is on, in order.
std::vector<CPUTicks> cores(std::string_view stat);
/// The bytes behind a name such as "MemTotal:"; nothing for a line that the text cuts short.
std::optional<quint64> memory(std::string_view meminfo, std::string_view name);
/// Of the last minute, five and fifteen.
std::optional<std::array<double, 3>> load(std::string_view loadavg);
std::optional<MemoryPressure> pressure(std::string_view pressure);

struct Disk {
    std::string_view name;
    quint64 read = 0; ///< bytes
    quint64 written = 0; ///< bytes
};
/// Every line, partitions too.
std::vector<Disk> disks(std::string_view diskstats);
/// Whether a device of this name stands for a disk and not for a part of one or something laid over one.
bool looksLikeDisk(std::string_view name);

std::vector<InterfaceBytes> interfaces(std::string_view netDev);
/// The interface of the default route with the lowest metric.
std::optional<QString> primaryInterface(std::string_view route);

struct Process {
    std::string_view name; ///< at most 15 bytes, any of them
    char state = 0;
    bool isKernels = false; ///< a thread of the kernel's own
    quint64 ticks = 0; ///< of processor time
    quint64 started = 0; ///< clock ticks since the boot
    quint64 pages = 0; ///< resident
};
std::optional<Process> process(std::string_view stat);
/// Read from and written to disks.
std::optional<quint64> diskBytes(std::string_view io);
/// What the application of a control group may be called; empty for a group that is none's.
QByteArrayList applicationIds(std::string_view cgroup);

/// Bytes of any kind as one line of text.
QString printable(std::string_view bytes);
/// The number that the whole text is, blanks round it aside; nothing beyond 64 bits.
std::optional<qint64> number(std::string_view text);

} // namespace kestro::procText
