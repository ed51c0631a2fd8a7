#pragma once

#include <cstddef> // first: Qt 6.4's moc trips over <compare> where no other header came before it

#include <QByteArrayList>
#include <QtGlobal>
#include <compare>
#include <vector>

namespace kestro {

/// A process, told apart from a later one with its number by the moment of its start.
struct ProcessId {
    qint64 pid = 0;
    quint64 startTime = 0; ///< in the kernel's clock ticks since it booted

    auto operator<=>(const ProcessId&) const = default;
};

struct ProcessInfo {
    ProcessId id;
    /// The names it may be recognised by: the kernel's name for it, the base names of its executable and of its first
    /// two arguments.
    QByteArrayList names;

    bool operator==(const ProcessInfo&) const = default;
};

/// Where a hook's connection came from. All of it is empty where it cannot be seen: another user's process, one in
/// another namespace, one that has ended.
struct HookOrigin {
    std::vector<ProcessInfo> ancestors; ///< the process itself first, then its parent, and so on
    QByteArray windowID; ///< the variable WINDOWID of its environment, as all that follow
    QByteArray tmux; ///< TMUX: the server's socket, its process and a session, with commas between
    QByteArray tmuxPane; ///< TMUX_PANE

    bool operator==(const HookOrigin&) const = default;
};

/// Those of its ancestors that go by the name of an agent, the nearest first.
std::vector<ProcessId> agentCandidates(const HookOrigin& origin);

} // namespace kestro
