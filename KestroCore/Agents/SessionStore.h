#pragma once

#include "KestroCore/Agents/AgentEvent.h"
#include "KestroCore/Agents/SessionTable.h"
#include "KestroCore/Support/Date.h"

#include <QString>
#include <optional>
#include <vector>

namespace kestro {

/// Every session that was heard of, by its id alone: two agents with the same id share one. In memory only.
struct SessionStore {
    static constexpr double doneWingDuration = 4; ///< seconds that a done session shows in the wing
    static constexpr double doneLifetime = 600; ///< the age in seconds at which a done session is pruned
    static constexpr double staleAfter = 1800; ///< the age in seconds at which any session is pruned

    static constexpr std::size_t mostSessions = 1000; ///< far more than anybody runs
    static constexpr qsizetype mostProjectChars = 255; ///< as many as a folder's name may have

    SessionTable sessions;

    /// Follows one event. A new session takes the place of the oldest where there are `mostSessions`. A name that is
    /// not known changes nothing, not even the age.
    void apply(const AgentEvent& event, Date now);
    /// Drops what is too old.
    void prune(Date now);
    /// The next moment at which time alone changes `wingState` or `prune` drops something; nothing without sessions.
    std::optional<Date> nextChange(Date now) const;

    /// Nothing where there is no such session.
    std::optional<AgentState> state(const QString& id) const;
    /// Newest first; those of the same moment by id.
    std::vector<Session> sorted() const;
    int workingCount() const { return static_cast<int>(sessions.count(AgentState::working)); }
    int needsInputCount() const { return static_cast<int>(sessions.count(AgentState::needsInput)); }
    /// The sessions that work or wait for the user.
    int activeCount() const { return workingCount() + needsInputCount(); }
    /// The state that the wings show: the most urgent one. Never `idle`, and `done` only while it is fresh.
    std::optional<AgentState> wingState(Date now) const;

    bool operator==(const SessionStore&) const = default;
};

} // namespace kestro
