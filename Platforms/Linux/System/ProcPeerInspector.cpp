#include "Platforms/Linux/System/ProcPeerInspector.h"

#include "Platforms/Linux/System/ProcProcess.h"

#include <QFile>
#include <QSocketNotifier>
#include <algorithm>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace kestro {

namespace {

constexpr std::size_t deepest = 64;
constexpr qint64 init = 1;
// How far up: a program may clear the environment of what it starts: the hook's, its shell's, or the agent's own.
constexpr std::size_t withEnvironment = 3;
constexpr std::size_t mostKnown = 256;

class PidWatch final : public ProcessWatch {
public:
    PidWatch(FileDescriptor descriptor, std::function<void()> ended)
        : m_descriptor(std::move(descriptor))
        , m_notifier(new QSocketNotifier(m_descriptor.get(), QSocketNotifier::Read))
    {
        QObject::connect(m_notifier, &QSocketNotifier::activated, m_notifier, [this, ended = std::move(ended)] {
            m_notifier->setEnabled(false); // it stays readable
            const auto call = ended; // which may destroy this
            call();
        });
    }
    ~PidWatch() override
    {
        // It may be telling right now.
        m_notifier->setEnabled(false);
        m_notifier->deleteLater();
    }

private:
    FileDescriptor m_descriptor;
    QSocketNotifier* m_notifier; // goes by itself
};

/// Whether one of the variables was found.
bool readVariables(int root, qint64 pid, HookOrigin& origin)
{
    const auto values = proc::variables(root, pid, { "WINDOWID", "TMUX", "TMUX_PANE" });
    origin.windowID = values[0];
    origin.tmux = values[1];
    origin.tmuxPane = values[2];
    return !std::ranges::all_of(values, &QByteArray::isEmpty);
}

} // namespace

ProcPeerInspector::ProcPeerInspector(const QString& root)
    : m_root(::open(QFile::encodeName(root).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
}

HookOrigin ProcPeerInspector::peer(int connection) const
{
    ucred credentials{};
    socklen_t size = sizeof credentials;
    // A process of another namespace has no number here; another user's is none of our business.
    if (::getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0 || credentials.pid <= 0
        || credentials.uid != ::geteuid())
        return {};
    return process(credentials.pid);
}

HookOrigin ProcPeerInspector::process(qint64 pid) const
{
    HookOrigin origin;
    bool found = false;
    while (pid > init && origin.ancestors.size() < deepest) {
        const auto stat = proc::stat(m_root.get(), pid);
        // One that is younger than its child has the number of the child's real parent, which has ended.
        if (!stat || (!origin.ancestors.empty() && stat->startTime > origin.ancestors.back().id.startTime))
            break;
        const ProcessId id{ pid, stat->startTime };
        origin.ancestors.push_back({ id, namesOf(id, stat->name) });
        if (!found && origin.ancestors.size() <= withEnvironment)
            found = readVariables(m_root.get(), pid, origin);
        pid = stat->parent;
    }
    return origin;
}

std::vector<QByteArray> ProcPeerInspector::namesOf(const ProcessId& id, const QByteArray& name) const
{
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_known.find(id);
        if (found != m_known.end() && found->second.front() == name)
            return found->second;
    }
    std::vector<QByteArray> names = proc::programNames(m_root.get(), id.pid);
    names.insert(names.begin(), name);
    const std::lock_guard lock(m_mutex);
    if (m_known.size() >= mostKnown)
        m_known.clear();
    m_known.insert_or_assign(id, names);
    return names;
}

std::unique_ptr<ProcessWatch> ProcPeerInspector::watch(const ProcessId& process, std::function<void()> ended)
{
    FileDescriptor descriptor(static_cast<int>(::syscall(SYS_pidfd_open, static_cast<pid_t>(process.pid), 0)));
    // Looked at behind the opening, so that both are the same process.
    const auto stat = proc::stat(m_root.get(), process.pid);
    if (!descriptor || !stat || stat->startTime != process.startTime || stat->state == 'Z')
        return nullptr;
    return std::make_unique<PidWatch>(std::move(descriptor), std::move(ended));
}

} // namespace kestro
