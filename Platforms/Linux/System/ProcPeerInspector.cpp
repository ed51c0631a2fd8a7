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
    const std::lock_guard lock(m_mutex);
    if (m_known.size() > mostKnown)
        m_known.clear();
    HookOrigin origin;
    bool found = false;
    bool asBefore = false;
    while (pid > init && origin.ancestors.size() < deepest) {
        Known* known = look(pid, asBefore);
        // One that is younger than its child has the number of the child's real parent, which has ended.
        if (!known || (!origin.ancestors.empty() && known->info.id.startTime > origin.ancestors.back().id.startTime))
            break;
        origin.ancestors.push_back(known->info);
        if (!found && origin.ancestors.size() <= withEnvironment) {
            if (!known->variables)
                known->variables = proc::variables(m_root.get(), pid, { "WINDOWID", "TMUX", "TMUX_PANE" });
            found = !std::ranges::all_of(*known->variables, &QByteArray::isEmpty);
            origin.windowID = known->variables->at(0);
            origin.tmux = known->variables->at(1);
            origin.tmuxPane = known->variables->at(2);
        }
        pid = known->parent;
    }
    return origin;
}

/// Null where there is no such process. The agent waits meanwhile, and each file costs it some twenty microseconds:
/// above a process that is as it was, its parent included, nothing is read again. Further up one may have ended since;
/// who acts on an ancestor looks at that one.
ProcPeerInspector::Known* ProcPeerInspector::look(qint64 pid, bool& asBefore) const
{
    const auto known = m_known.find(pid);
    if (asBefore && known != m_known.end())
        return &known->second;
    const auto stat = proc::stat(m_root.get(), pid);
    if (!stat)
        return nullptr;
    const ProcessId id{ pid, stat->startTime };
    const bool same =
        known != m_known.end() && known->second.info.id == id && known->second.info.names.front() == stat->name;
    asBefore = same && known->second.parent == stat->parent;
    if (same) {
        known->second.parent = stat->parent;
        return &known->second;
    }
    QByteArrayList names = proc::programNames(m_root.get(), pid);
    names.prepend(stat->name);
    const Known now{ { id, std::move(names) }, stat->parent, std::nullopt };
    return &m_known.insert_or_assign(pid, now).first->second;
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
