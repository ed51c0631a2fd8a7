#include "KestroCore/Agents/CodexLimitsReader.h"

#include "KestroCore/Support/FileDescriptor.h"

#include <QFile>
#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <tuple>
#include <vector>

namespace kestro::CodexLimitsReader {

namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};
using Folder = std::unique_ptr<DIR, CloseFolder>;

struct Log {
    QByteArray path;
    timespec modified;
};

bool isNewer(const timespec& a, const timespec& b)
{
    return std::tie(a.tv_sec, a.tv_nsec) > std::tie(b.tv_sec, b.tv_nsec);
}

/// The newest of any number of logs, holding no more of them than are wanted.
class NewestLogs {
public:
    explicit NewestLogs(std::size_t count)
        : m_count(count)
    {
    }

    void add(const QByteArray& folder, const char* name, const timespec& modified)
    {
        const auto place =
            std::ranges::find_if(m_logs, [&](const Log& log) { return isNewer(modified, log.modified); });
        if (place == m_logs.end() && m_logs.size() == m_count)
            return;
        m_logs.insert(place, { folder + '/' + name, modified });
        if (m_logs.size() > m_count)
            m_logs.pop_back();
    }

    QByteArrayList paths() const
    {
        QByteArrayList paths;
        for (const Log& log : m_logs)
            paths.append(log.path);
        return paths;
    }

private:
    std::size_t m_count;
    std::vector<Log> m_logs; // newest first
};

bool isFolder(int parent, const dirent& entry)
{
    if (entry.d_type != DT_UNKNOWN)
        return entry.d_type == DT_DIR;
    struct stat info { }; // some file systems do not tell the type with the name
    return fstatat(parent, entry.d_name, &info, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(info.st_mode);
}

Folder openFolder(const QByteArray& path, int flags)
{
    const int fd = open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | flags);
    DIR* const folder = fd < 0 ? nullptr : fdopendir(fd);
    if (fd >= 0 && !folder)
        close(fd);
    return Folder(folder);
}

/// Adds the logs in the folder `path` to `logs` and its folders to `pending`.
void look(const QByteArray& path, int flags, NewestLogs& logs, QByteArrayList& pending)
{
    const Folder folder = openFolder(path, flags);
    if (!folder)
        return;
    const int fd = dirfd(folder.get());
    while (const dirent* entry = readdir(folder.get())) {
        const QByteArrayView name(entry->d_name);
        if (name.startsWith('.'))
            continue;
        if (isFolder(fd, *entry)) {
            pending.append(path + '/' + entry->d_name);
            continue;
        }
        struct stat info { };
        if (name.endsWith(".jsonl") && fstatat(fd, entry->d_name, &info, 0) == 0 && S_ISREG(info.st_mode))
            logs.add(path, entry->d_name, info.st_mtim);
    }
}

/// The last `tailBytes` of an ordinary file, or nothing. A file that shrinks meanwhile gives the rest.
QByteArray readTail(const QByteArray& file)
{
    // It was an ordinary file when it was found; a pipe that took its place must not be waited for.
    const FileDescriptor fd(open(file.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat info { };
    if (!fd || fstat(fd.get(), &info) != 0 || !S_ISREG(info.st_mode))
        return {};
    QByteArray tail(std::min<off_t>(info.st_size, tailBytes), Qt::Uninitialized);
    const off_t start = info.st_size - tail.size();
    qsizetype filled = 0;
    while (filled < tail.size()) {
        const ssize_t count =
            pread(fd.get(), tail.data() + filled, static_cast<std::size_t>(tail.size() - filled), start + filled);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return {};
        if (count == 0)
            break;
        filled += count;
    }
    tail.truncate(filled);
    return tail;
}

/// Most of a log is what was said and done: only a line that may hold the key, also spelled by escapes, is parsed.
bool mayTellLimits(QByteArrayView line) { return line.contains("rate_limits") || line.contains("\\u"); }

} // namespace

QString sessionsDir(const QString& home) { return home + QStringLiteral("/.codex/sessions"); }

std::optional<AgentLimits> latest(const QString& folder)
{
    for (const QByteArray& log : newestLogs(folder, 3)) {
        if (const auto limits = latestInFile(log))
            return limits;
    }
    return std::nullopt;
}

std::optional<AgentLimits> latestInFile(const QByteArray& file)
{
    const QByteArray tail = readTail(file);
    // A line that the tail's start cuts is no object any more, and fails to parse.
    for (QByteArrayView rest(tail); !rest.isEmpty();) {
        const qsizetype newline = rest.lastIndexOf('\n');
        const QByteArrayView line = rest.sliced(newline + 1);
        if (const auto limits = mayTellLimits(line) ? AgentLimits::parseCodexLine(line) : std::nullopt)
            return limits;
        rest = rest.first(std::max<qsizetype>(newline, 0));
    }
    return std::nullopt;
}

QByteArrayList newestLogs(const QString& folder, std::size_t count)
{
    NewestLogs logs(count);
    QByteArrayList pending;
    look(QFile::encodeName(folder), 0, logs, pending); // this one may be a link: the user put it there
    while (!pending.isEmpty())
        look(pending.takeLast(), O_NOFOLLOW, logs, pending);
    return logs.paths();
}

} // namespace kestro::CodexLimitsReader
