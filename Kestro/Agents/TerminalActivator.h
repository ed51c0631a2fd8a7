#pragma once

#include "KestroCore/Agents/AgentEvent.h"
#include "KestroCore/Agents/HookOrigin.h"
#include "KestroCore/Agents/Session.h"

#include <QObject>
#include <functional>
#include <map>
#include <optional>

namespace kestro {

class CommandRunner;
class DesktopWindows;
class PeerInspector;
struct CommandResult;
struct Platform;

/// Brings the terminal window in which a session runs to the front, also through tmux. Main thread; it waits for
/// nothing.
class TerminalActivator final : public QObject {
    Q_OBJECT
public:
    /// The ports must outlive it.
    explicit TerminalActivator(const Platform& platform);

    /// An event of `session`, which it has brought to its state, came from `origin`.
    void handleEvent(const AgentEvent& event, const HookOrigin& origin, const Session& session);
    /// Forgets the sessions that are over.
    void prune(const std::function<bool(const QString&)>& lives);

    /// How many sessions it knows of.
    std::size_t count() const { return m_terminals.size(); }

    /// Brings the session's window to the front, or finds that it cannot. The latest call counts.
    void raise(const Session& session);
    /// For each session whose window was not found, by its id, the word that says why.
    const std::map<QString, QString>& lost() const { return m_lost; }
    /// The session that has waited for the user longest.
    std::optional<QString> longestWaiting() const;

Q_SIGNALS:
    /// `lost` has changed.
    void lostChanged();

private:
    struct Terminal {
        HookOrigin origin;
        quint32 promptWindow = 0; ///< where the user was seen to write to it
        std::optional<Date> waitingSince;
    };
    struct Attempt {
        QString session;
        QString project;
        Terminal terminal;
        quint64 generation;
    };

    void rememberPrompt(const QString& id, const HookOrigin& origin);
    void raiseThroughTmux(const Attempt& attempt);
    void enterPane(const Attempt& attempt, const CommandResult& listing);
    void raiseWindow(const Attempt& attempt, const HookOrigin& terminal);
    HookOrigin stillThere(HookOrigin origin) const;
    void setLost(const QString& id, const QString& word);

    PeerInspector& m_peers;
    DesktopWindows& m_windows;
    CommandRunner& m_commands;
    std::map<QString, Terminal> m_terminals;
    std::map<QString, QString> m_lost;
    quint64 m_generation = 0;
};

} // namespace kestro
