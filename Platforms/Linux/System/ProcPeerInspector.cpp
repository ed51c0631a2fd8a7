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
    HookOrigin origin;
    bool found = false;
    bool asBefore = false;
    while (pid > init && origin.ancestors.size() < deepest) {
        auto known = look(pid, asBefore);
        // A parent younger than its child: the real parent has ended and its PID was reused.
        if (!known || (!origin.ancestors.empty() && known->info.id.startTime > origin.ancestors.back().id.startTime))
            break;
        origin.ancestors.push_back(known->info);
        if (!found && origin.ancestors.size() <= withEnvironment) {
            if (!known->variables) {
                known->variables = proc::variables(m_root.get(), pid, { "WINDOWID", "TMUX", "TMUX_PANE" });
                remember(*known);
            }
            found = !std::ranges::all_of(*known->variables, &QByteArray::isEmpty);
            origin.windowID = known->variables->at(0);
            origin.tmux = known->variables->at(1);
            origin.tmuxPane = known->variables->at(2);
        }
        pid = known->parent;
    }
    return origin;
}

/// Nothing where there is no such process. The agent waits meanwhile, and each file costs it some twenty microseconds:
/// above a process that is `asBefore`, its parent included, nothing is read again.
std::optional<ProcPeerInspector::Known> ProcPeerInspector::look(qint64 pid, bool& asBefore) const
{
    auto known = recall(pid);
    if (asBefore && known)
        return known;
    const auto stat = proc::stat(m_root.get(), pid);
    if (!stat)
        return std::nullopt;
    const ProcessId id{ pid, stat->startTime };
    const bool same = known && known->info.id == id && known->info.names.front() == stat->name;
    asBefore = same && known->parent == stat->parent;
    if (asBefore)
        return known;
    if (!same)
        known = Known{ { id, QByteArrayList{ stat->name } + proc::programNames(m_root.get(), pid) }, 0, std::nullopt };
    known->parent = stat->parent;
    remember(*known);
    return known;
}

// Only these two lock: a file of a process that hangs may hold its reader, and the other threads must go on.

std::optional<ProcPeerInspector::Known> ProcPeerInspector::recall(qint64 pid) const
{
    const std::lock_guard lock(m_mutex);
    const auto known = m_known.find(pid);
    return known == m_known.end() ? std::nullopt : std::optional(known->second);
}

void ProcPeerInspector::remember(const Known& known) const
{
    const std::lock_guard lock(m_mutex);
    if (m_known.size() >= mostKnown)
        m_known.clear();
    m_known.insert_or_assign(known.info.id.pid, known);
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
