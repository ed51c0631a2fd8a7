#pragma once

#include <QString>
#include <optional>
#include <vector>

namespace kestro {

/// Which process it is, as long as it lives and after: a number is used again, its start time is not.
struct ProcessKey {
    qint32 pid = 0;
    quint64 started = 0; ///< microseconds since the boot, which no change of the clock moves

    auto operator<=>(const ProcessKey&) const = default;
};

/// What the kernel has counted for one process up to now.
struct ProcessCPUTime {
    qint32 pid = 0;
    QString name;
    quint64 nanoseconds = 0; ///< of processor time
    quint64 memory = 0; ///< bytes
    std::optional<QString> path{}; ///< of its executable; nothing where it is not ours to see
    std::optional<quint64> started{}; ///< as in ProcessKey
    std::optional<quint64> diskBytes{}; ///< read and written on disks; nothing where it is not ours to see
    std::optional<QString> app{}; ///< the entry of the application that started it, where the session knows

    bool operator==(const ProcessCPUTime&) const = default;
};

/// What one process used between two readings.
struct ProcessUsage {
    qint32 pid = 0;
    QString name;
    double percent = 0; ///< 100 is one core fully used
    quint64 memory = 0; ///< bytes
    std::optional<QString> path{};
    std::optional<quint64> started{};
    std::optional<double> disk{}; ///< bytes a second
    std::optional<QString> app{};

    bool operator==(const ProcessUsage&) const = default;
};

namespace StatsMath {

/// One for each process of `to`, in its order; none where no time has passed. A process that was not there before, or
/// whose number another one had, has used nothing yet.
std::vector<ProcessUsage> processUsage(
    const std::vector<ProcessCPUTime>& from, const std::vector<ProcessCPUTime>& to, double seconds);

} // namespace StatsMath

} // namespace kestro
