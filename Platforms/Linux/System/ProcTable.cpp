#include "Platforms/Linux/System/ProcTable.h"

#include "KestroCore/Support/FileDescriptor.h"
#include "Platforms/Linux/System/ProcText.h"
#include "Platforms/Linux/System/SystemFiles.h"

#include <QFile>
#include <algorithm>
#include <charconv>
#include <climits>
#include <csignal>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <unordered_map>

namespace kestro {

namespace {

constexpr double entriesAge = 60; // seconds
constexpr int procFileFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK;

double secondsNow()
{
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return double(now.tv_sec) + double(now.tv_nsec) / 1e9;
}

quint64 microseconds(quint64 ticks)
{
    static const quint64 perSecond = quint64(std::max(1L, ::sysconf(_SC_CLK_TCK)));
    return ticks * (1'000'000 / perSecond);
}

/// A file of a process in a buffer that is used again for the next.
class ProcessFile {
public:
    /// `name` is "PID/FILE", below the descriptor `folder`.
    std::string_view read(int folder, const char* name)
    {
        const FileDescriptor file(::openat(folder, name, procFileFlags));
        const ssize_t count = file ? ::read(file.get(), m_buffer.data(), m_buffer.size()) : 0;
        return { m_buffer.data(), count > 0 ? size_t(count) : 0 };
    }
    std::string_view link(int folder, const char* name)
    {
        const ssize_t count = ::readlinkat(folder, name, m_buffer.data(), m_buffer.size());
        std::string_view target(m_buffer.data(), count > 0 ? size_t(count) : 0);
        constexpr std::string_view replaced = " (deleted)";
        if (target.ends_with(replaced))
            target.remove_suffix(replaced.size());
        return target;
    }

private:
    std::array<char, PATH_MAX> m_buffer{};
};

std::optional<QString> applicationOf(
    const AppEntries& entries, int folder, const QByteArray& pid, std::string_view executable, ProcessFile& file)
{
    const QByteArray path(executable.data(), qsizetype(executable.size()));
    if (auto entry = entries.byIds(procText::applicationIds(file.read(folder, (pid + "/cgroup").constData()))))
        return entry;
    return path.isEmpty() ? std::nullopt : entries.byExecutable(path);
}

class ProcLister final : public ProcessLister {
public:
    ProcLister(const QByteArray& proc, std::shared_ptr<AppLookup> applications)
        : m_entries(std::move(applications))
        , m_folder(::opendir(proc.constData()), ::closedir)
    {
    }

    std::optional<ProcessList> list() override
    {
        if (!m_folder)
            return std::nullopt;
        m_applications = m_entries->entries();
        m_descriptor = ::dirfd(m_folder.get());
        ::rewinddir(m_folder.get());
        ProcessList list{ secondsNow(), {} };
        list.processes.reserve(m_known.size() + 64);
        std::unordered_map<qint32, Known> seen;
        seen.reserve(m_known.size() + 64);
        while (const dirent* each = ::readdir(m_folder.get())) {
            const char first = each->d_name[0];
            if (first >= '1' && first <= '9')
                add(each->d_name, list.processes, seen);
        }
        m_known = std::move(seen); // those that have ended go
        return list.processes.empty() ? std::nullopt : std::optional(std::move(list));
    }

private:
    struct Known {
        std::string comm;
        quint64 started = 0;
        quint64 ticks = 0;
        QString name;
        std::optional<QString> path;
        std::optional<QString> app;
        std::optional<quint64> diskBytes;
        bool tellsDisk = true;
    };

    void add(const char* name, std::vector<ProcessCPUTime>& processes, std::unordered_map<qint32, Known>& seen)
    {
        qint32 pid = 0;
        const std::string_view digits(name);
        const auto [end, fault] = std::from_chars(digits.data(), digits.data() + digits.size(), pid);
        if (fault != std::errc() || *end != '\0')
            return;
        m_path.assign(digits);
        m_path += "/stat";
        const auto stat = procText::process(m_file.read(m_descriptor, m_path.c_str()));
        if (!stat || stat->name.empty())
            return; // it has ended since the folder was read
        const auto before = m_known.find(pid);
        const bool same =
            before != m_known.end() && before->second.started == stat->started && before->second.comm == stat->name;
        const bool idle = same && before->second.ticks == stat->ticks;
        // Copied: the file's buffer is used again below.
        const procText::Process process{ {}, stat->state, stat->isKernels, stat->ticks, stat->started, stat->pages };
        Known known = same ? std::move(before->second) : look(name, std::string(stat->name), process);
        known.ticks = process.ticks;
        if (!idle && known.tellsDisk) {
            m_path.resize(digits.size());
            m_path += "/io";
            known.diskBytes = procText::diskBytes(m_file.read(m_descriptor, m_path.c_str()));
            known.tellsDisk = known.diskBytes.has_value();
        }
        static const auto page = quint64(::sysconf(_SC_PAGESIZE));
        processes.push_back({ pid, known.name, microseconds(process.ticks) * 1000, process.pages * page, known.path,
            microseconds(process.started), known.diskBytes, known.app });
        seen.emplace(pid, std::move(known));
    }

    Known look(const char* pid, std::string comm, const procText::Process& process)
    {
        Known known{ std::move(comm), process.started, process.ticks, {}, {}, {}, {}, !process.isKernels };
        std::string_view name = known.comm;
        std::string executable;
        if (!process.isKernels) {
            executable = m_file.link(m_descriptor, (QByteArray(pid) + "/exe").constData());
            const std::string_view base = std::string_view(executable).substr(executable.rfind('/') + 1);
            constexpr size_t commLimit = 15;
            if (name.size() == commLimit && base.starts_with(name))
                name = base;
            if (!executable.empty() && !executable.starts_with("/memfd:")) // a file without a place tells no name
                known.path = QFile::decodeName(QByteArray::fromStdString(executable));
            known.app = applicationOf(*m_applications, m_descriptor, pid, executable, m_file);
        }
        known.name = procText::printable(name);
        return known;
    }

    std::shared_ptr<AppLookup> m_entries;
    std::shared_ptr<const AppEntries> m_applications; ///< while listing
    std::unique_ptr<DIR, int (*)(DIR*)> m_folder;
    int m_descriptor = -1;
    ProcessFile m_file;
    std::string m_path;
    std::unordered_map<qint32, Known> m_known;
};

} // namespace

std::shared_ptr<const AppEntries> AppLookup::entries()
{
    const std::lock_guard lock(m_mutex);
    if (!m_entries || (!m_isFixed && secondsNow() - m_readAt > entriesAge)) {
        m_entries = std::make_shared<const AppEntries>(AppEntries::ofDesktop());
        m_readAt = secondsNow();
    }
    return m_entries;
}

void AppLookup::set(AppEntries entries)
{
    const std::lock_guard lock(m_mutex);
    m_entries = std::make_shared<const AppEntries>(std::move(entries));
    m_isFixed = true;
}

ProcTable::ProcTable(const QByteArray& root)
    : m_proc(root + "/proc")
{
}

std::unique_ptr<ProcessLister> ProcTable::lister() { return std::make_unique<ProcLister>(m_proc, m_applications); }

ProcessTable::End ProcTable::end(const ProcessKey& process, bool force)
{
    const FileDescriptor descriptor(int(::syscall(SYS_pidfd_open, process.pid, 0)));
    if (!descriptor)
        return errno == ESRCH ? End::gone : End::refused;
    // Looked at behind the opening, so that both are the same process.
    if (!isAlive(process))
        return End::gone;
    if (::syscall(SYS_pidfd_send_signal, descriptor.get(), force ? SIGKILL : SIGTERM, nullptr, 0) == 0)
        return End::sent;
    return errno == ESRCH ? End::gone : End::refused;
}

bool ProcTable::isAlive(const ProcessKey& process) const { return key(process.pid) == process; }

std::optional<ProcessKey> ProcTable::key(qint32 pid) const
{
    const QByteArray text = SystemFiles(m_proc).read('/' + QByteArray::number(pid) + "/stat", PATH_MAX);
    const auto stat = procText::process(view(text));
    if (!stat || stat->state == 'Z')
        return std::nullopt;
    return ProcessKey{ pid, microseconds(stat->started) };
}

QString ProcTable::commandLine(const ProcessKey& process) const
{
    constexpr qsizetype longest = 4096;
    QByteArray words = SystemFiles(m_proc).read('/' + QByteArray::number(process.pid) + "/cmdline", longest);
    if (!isAlive(process))
        return {};
    while (words.endsWith('\0'))
        words.chop(1);
    return procText::printable(view(words.replace('\0', ' ')));
}

std::vector<QByteArray> ProcTable::openPaths(const QByteArray& below) const
{
    std::vector<QByteArray> found;
    // The kernel tells paths without links, while the folder's own may lead through some.
    std::array<char, PATH_MAX> resolved{};
    const QByteArray real = ::realpath(below.constData(), resolved.data()) ? QByteArray(resolved.data()) : below;
    const auto add = [&](std::string_view path) {
        if (path.starts_with(view(real)) && path.size() > size_t(real.size()) && path[size_t(real.size())] == '/')
            found.push_back(below + QByteArray(path.data() + real.size(), qsizetype(path.size()) - real.size()));
    };
    const SystemFiles files(m_proc);
    const FileDescriptor folder(::open(m_proc.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    ProcessFile file;
    constexpr qsizetype longestMaps = 16'777'216;
    for (const QByteArray& pid : files.names("/")) {
        if (pid.front() < '1' || pid.front() > '9')
            continue;
        add(file.link(folder.get(), (pid + "/cwd").constData()));
        for (const QByteArray& each : files.names('/' + pid + "/fd"))
            add(file.link(folder.get(), (pid + "/fd/" + each).constData()));
        // What is mapped needs no descriptor any more.
        const QByteArray maps = files.read('/' + pid + "/maps", longestMaps);
        for (qsizetype at = maps.indexOf(real); at >= 0; at = maps.indexOf(real, at + 1)) {
            const qsizetype end = maps.indexOf('\n', at);
            add(view(maps).substr(size_t(at), end < 0 ? std::string_view::npos : size_t(end - at)));
        }
    }
    return found;
}

qint32 ProcTable::ownPID() const { return qint32(::getpid()); }

QString ProcTable::resolved(const QString& path) const
{
    std::array<char, PATH_MAX> target{};
    return ::realpath(QFile::encodeName(path).constData(), target.data()) ? QFile::decodeName(target.data()) : path;
}

std::optional<QString> ProcTable::application(qint32 pid) const
{
    const FileDescriptor folder(::open(m_proc.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    ProcessFile file;
    const QByteArray number = QByteArray::number(pid);
    const std::string executable(file.link(folder.get(), (number + "/exe").constData()));
    return applicationOf(*m_applications->entries(), folder.get(), number, executable, file);
}

} // namespace kestro
