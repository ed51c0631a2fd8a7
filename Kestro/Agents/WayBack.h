#pragma once

#include "Kestro/Platform/Platform.h"
#include "KestroCore/Agents/AgentEvent.h"
#include "KestroCore/Agents/HookOrigin.h"
#include "KestroCore/Agents/Session.h"

#include <QObject>
#include <functional>
#include <map>
#include <optional>

namespace kestro {

struct CommandResult;

/// The way from a session back to the window in which it runs, also through tmux. Main thread; it waits for nothing.
class WayBack final : public QObject {
    Q_OBJECT
public:
    explicit WayBack(const Platform& platform);

    /// An event of `session`, which it has brought to its state, came from `origin`.
    void heard(const AgentEvent& event, const HookOrigin& origin, const Session& session);
    /// Forgets the sessions that are over.
    void keep(const std::function<bool(const QString&)>& lives);

    /// Brings the session's window to the front, or finds that it cannot. The latest call counts.
    void raise(const Session& session);
    /// For each session whose way was found to be lost, by its id, the word that says how.
    const std::map<QString, QString>& lost() const { return m_lost; }
    /// The session that has waited for the user longest.
    std::optional<QString> longestWaiting() const;

Q_SIGNALS:
    /// `lost` has changed.
    void lostChanged();

private:
    struct Way {
        HookOrigin origin;
        quint32 promptWindow = 0; ///< where the user was seen to write to it
        std::optional<Date> waitingSince;
    };
    struct Attempt {
        QString session;
        QString project;
        Way way;
        quint64 generation;
    };

    void rememberPrompt(const QString& id, const HookOrigin& origin);
    void raiseThroughTmux(const Attempt& attempt);
    void enterPane(const Attempt& attempt, const CommandResult& listing);
    void raiseWindow(const Attempt& attempt, const HookOrigin& terminal);
    HookOrigin stillThere(HookOrigin origin) const;
    void setLost(const QString& id, const QString& word);

    Platform m_platform;
    std::map<QString, Way> m_ways;
    std::map<QString, QString> m_lost;
    quint64 m_generation = 0;
};

} // namespace kestro
