#include "Platforms/Linux/System/ProcProcess.h"

#include "KestroCore/Support/FileDescriptor.h"

#include <QList>
#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <fcntl.h>

namespace kestro::proc {

namespace {

constexpr qsizetype statBytes = 4096;
constexpr qsizetype commandBytes = 4096;
constexpr qsizetype environmentBytes = 131'072;

QByteArray pathOf(qint64 pid, const char* file) { return QByteArray::number(pid) + '/' + file; }

/// The first `limit` bytes of the file, and up to a block more; empty where it cannot be read.
QByteArray read(int root, qint64 pid, const char* file, qsizetype limit)
{
    std::array<char, 4096> block; // most are smaller
    const FileDescriptor descriptor(::openat(root, pathOf(pid, file).constData(), O_RDONLY | O_CLOEXEC));
    QByteArray bytes;
    while (descriptor && bytes.size() < limit) {
        const ssize_t count = ::read(descriptor.get(), block.data(), block.size());
        if (count > 0)
            bytes.append(block.data(), count);
        // Up to its end the kernel fills what it is given.
        if (count < 0 ? errno != EINTR : size_t(count) < block.size())
            break;
    }
    return bytes;
}

QByteArray baseName(QByteArrayView path) { return path.sliced(path.lastIndexOf('/') + 1).toByteArray(); }

} // namespace

// The name stands in parentheses and may hold some itself, and blanks and newlines: the last one ends it.
std::optional<Stat> Stat::parse(QByteArrayView text)
{
    const qsizetype open = text.indexOf('(');
    const qsizetype close = text.lastIndexOf(')');
    if (open < 0 || close < open)
        return std::nullopt;
    // Numbered from the state on, which is the third field of the whole.
    constexpr qsizetype parentField = 1;
    constexpr qsizetype startTimeField = 19;
    std::array<QByteArrayView, startTimeField + 1> fields;
    QByteArrayView rest = text.sliced(close + 1).trimmed();
    for (QByteArrayView& field : fields) {
        const qsizetype end = rest.indexOf(' ');
        field = end < 0 ? rest : rest.first(end);
        rest = end < 0 ? QByteArrayView() : rest.sliced(end + 1);
    }
    if (fields.front().size() != 1)
        return std::nullopt;
    bool parentRead = false;
    bool startRead = false;
    const Stat stat{ text.sliced(open + 1, close - open - 1).toByteArray(), fields.front().front(),
        fields[parentField].toLongLong(&parentRead), fields[startTimeField].toULongLong(&startRead) };
    return parentRead && startRead ? std::optional(stat) : std::nullopt;
}

std::optional<Stat> stat(int root, qint64 pid) { return Stat::parse(read(root, pid, "stat", statBytes)); }

QByteArrayList programNames(int root, qint64 pid)
{
    QByteArrayList names;
    std::array<char, PATH_MAX> target{};
    const ssize_t length = ::readlinkat(root, pathOf(pid, "exe").constData(), target.data(), target.size());
    if (length > 0) {
        constexpr QByteArrayView replaced = " (deleted)";
        QByteArrayView path(target.data(), length);
        if (path.endsWith(replaced))
            path.chop(replaced.size());
        names.push_back(baseName(path));
    }
    const QList<QByteArray> words = read(root, pid, "cmdline", commandBytes).split('\0');
    for (const QByteArray& word : words.first(std::min<qsizetype>(words.size(), 2))) {
        if (!word.isEmpty())
            names.push_back(baseName(word));
    }
    return names;
}

QByteArrayList variables(int root, qint64 pid, const std::vector<QByteArrayView>& names)
{
    QByteArrayList values(qsizetype(names.size()));
    const QByteArray environment = read(root, pid, "environ", environmentBytes);
    for (QByteArrayView rest(environment); !rest.isEmpty();) {
        const qsizetype end = rest.indexOf('\0');
        const QByteArrayView entry = end < 0 ? rest : rest.first(end);
        for (std::size_t i = 0; i < names.size(); ++i) {
            if (entry.startsWith(names[i]) && entry.sliced(names[i].size()).startsWith('='))
                values[qsizetype(i)] = entry.sliced(names[i].size() + 1).toByteArray();
        }
        rest = end < 0 ? QByteArrayView() : rest.sliced(end + 1);
    }
    return values;
}

} // namespace kestro::proc
