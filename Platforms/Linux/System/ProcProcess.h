#pragma once

#include <QByteArrayList>
#include <QByteArrayView>
#include <QtGlobal>
#include <optional>
#include <vector>

/// Facts about a process from procfs. `root` is a descriptor of procfs; unreadable facts are empty.
namespace kestro::proc {

/// The fields of a process's `stat`.
struct Stat {
    QByteArray name; ///< at most 15 bytes, any of them
    char state = 0; ///< 'Z' has ended and waits for its parent
    qint64 parent = 0;
    quint64 startTime = 0; ///< in clock ticks since the boot

    static std::optional<Stat> parse(QByteArrayView text);

    bool operator==(const Stat&) const = default;
};

std::optional<Stat> stat(int root, qint64 pid);
/// The base names of its executable and of its first two arguments, as far as they can be read.
QByteArrayList programNames(int root, qint64 pid);
/// The values of these variables of its environment, empty where it has none.
QByteArrayList variables(int root, qint64 pid, const std::vector<QByteArrayView>& names);

} // namespace kestro::proc
