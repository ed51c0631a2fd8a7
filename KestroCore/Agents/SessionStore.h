#pragma once

#include "KestroCore/Agents/AgentEvent.h"
#include "KestroCore/Agents/Session.h"
#include "KestroCore/Support/Date.h"

#include <QString>
#include <map>
#include <optional>
#include <vector>

namespace kestro {

/// Every session that was heard of, by its id alone: two agents with the same id share one. In memory only.
struct SessionStore {
    static constexpr double doneWingDuration = 4; ///< seconds that a done session shows in the wing
    static constexpr double doneLifetime = 600; ///< the age in seconds at which a done session is pruned
    static constexpr double staleAfter = 1800; ///< the age in seconds at which any session is pruned

    /// Far more than anybody runs. With one more, the one that was silent longest goes.
    static constexpr std::size_t mostSessions = 1000;
    static constexpr qsizetype longestName = 255; ///< of a project, in UTF-16 units: no folder's name is longer

    std::map<QString, Session> sessions; ///< ordered, so that sessions of one moment keep their places

    /// Follows one event. A name that is not known changes nothing, not even the age.
    void apply(const AgentEvent& event, Date now);
    /// Drops what is too old.
    void prune(Date now);

    /// Nothing where there is no such session.
    std::optional<AgentState> state(const QString& id) const;
    /// Newest first; those of the same moment by id.
    std::vector<Session> sorted() const;
    int workingCount() const { return count(AgentState::working); }
    int needsInputCount() const { return count(AgentState::needsInput); }
    /// The sessions that work or wait for the user.
    int activeCount() const { return workingCount() + needsInputCount(); }
    /// What the wings show: the most urgent state there is. Never `idle`, and `done` only while it is fresh.
    std::optional<AgentState> wingState(Date now) const;

    bool operator==(const SessionStore&) const = default;

private:
    int count(AgentState state) const;
    void dropOldest();
};

} // namespace kestro
