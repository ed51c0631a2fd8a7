#include "KestroCore/Agents/SessionTable.h"

namespace kestro {

const Session* SessionTable::oldest() const
{
    const Session* found = nullptr;
    for (const Ages& each : m_ages) {
        if (each.empty())
            continue;
        const Session& first = at(each.begin()->second);
        if (!found || first.lastEventAt < found->lastEventAt)
            found = &first;
    }
    return found;
}

const Session* SessionTable::oldest(AgentState state) const
{
    return ages(state).empty() ? nullptr : &at(ages(state).begin()->second);
}

const Session* SessionTable::newest(AgentState state) const
{
    return ages(state).empty() ? nullptr : &at(ages(state).rbegin()->second);
}

void SessionTable::put(const Session& session)
{
    const auto [place, isNew] = m_sessions.try_emplace(session.id, session);
    if (!isNew) {
        ages(place->second.state).erase({ place->second.lastEventAt, session.id });
        place->second = session;
    }
    ages(session.state).emplace(session.lastEventAt, session.id);
}

std::size_t SessionTable::erase(const QString& id)
{
    const auto place = m_sessions.find(id);
    if (place == m_sessions.end())
        return 0;
    ages(place->second.state).erase({ place->second.lastEventAt, id });
    m_sessions.erase(place);
    return 1;
}

} // namespace kestro
