#pragma once

#include "KestroCore/Agents/Session.h"

#include <QString>
#include <array>
#include <map>
#include <set>
#include <utility>

namespace kestro {

/// Sessions by their ids. How many are in each state, and which of them is the oldest or newest, is known without a
/// walk: it is asked for with every event.
class SessionTable {
public:
    auto begin() const { return m_sessions.begin(); }
    auto end() const { return m_sessions.end(); }
    auto find(const QString& id) const { return m_sessions.find(id); }
    const Session& at(const QString& id) const { return m_sessions.at(id); }
    bool contains(const QString& id) const { return m_sessions.contains(id); }
    std::size_t size() const { return m_sessions.size(); }
    bool empty() const { return m_sessions.empty(); }

    std::size_t count(AgentState state) const { return ages(state).size(); }
    /// That in which nothing happened for longest; nothing where there is none, as with the two below.
    const Session* oldest() const;
    const Session* oldest(AgentState state) const;
    const Session* newest(AgentState state) const;

    /// In the place of an earlier one with its id.
    void put(const Session& session);
    /// How many there were: 0 or 1.
    std::size_t erase(const QString& id);

    bool operator==(const SessionTable& other) const { return m_sessions == other.m_sessions; }

private:
    using Ages = std::set<std::pair<Date, QString>>;

    Ages& ages(AgentState state) { return m_ages.at(static_cast<std::size_t>(state)); }
    const Ages& ages(AgentState state) const { return m_ages.at(static_cast<std::size_t>(state)); }

    std::map<QString, Session> m_sessions; ///< ordered, so that sessions of one moment keep their places
    std::array<Ages, agentStateCount> m_ages;
};

} // namespace kestro
