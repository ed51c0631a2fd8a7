#include "KestroCore/Agents/SessionStore.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kestro {

namespace {

constexpr std::array allStates{ AgentState::idle, AgentState::working, AgentState::needsInput, AgentState::done };

constexpr double lifetime(AgentState state)
{
    return state == AgentState::done ? SessionStore::doneLifetime : SessionStore::staleAfter;
}

enum class Effect { remove, keep, work, ask, finish, rest };

std::optional<Effect> effectOf(const QString& eventName)
{
    static const std::array<std::pair<QLatin1String, Effect>, 12> effects{ {
        { QLatin1String("SessionEnd"), Effect::remove },
        { QLatin1String("sessionEnd"), Effect::remove },
        { QLatin1String("SessionStart"), Effect::keep },
        { QLatin1String("sessionStart"), Effect::keep },
        { QLatin1String("UserPromptSubmit"), Effect::work },
        { QLatin1String("PostToolUse"), Effect::work },
        { QLatin1String("beforeSubmitPrompt"), Effect::work },
        { QLatin1String("postToolUse"), Effect::work },
        { QLatin1String("PermissionRequest"), Effect::ask },
        { QLatin1String("Stop"), Effect::finish },
        { QLatin1String("stop"), Effect::finish },
        { QLatin1String("Interrupt"), Effect::rest },
    } };
    const auto* const found = std::ranges::find_if(effects, [&](const auto& row) { return row.first == eventName; });
    if (found == effects.end())
        return std::nullopt;
    return found->second;
}

AgentState stateAfter(Effect effect, AgentState before)
{
    switch (effect) {
    case Effect::work:
        return AgentState::working;
    case Effect::ask:
        return AgentState::needsInput;
    case Effect::finish:
        return AgentState::done;
    case Effect::rest:
        return AgentState::idle;
    case Effect::remove:
    case Effect::keep:
        break;
    }
    return before;
}

/// The last component of a path, which for Qt's own function is empty behind a closing slash.
QString lastComponent(const QString& path)
{
    qsizetype end = path.size();
    while (end > 1 && path.at(end - 1) == u'/')
        --end;
    if (end == 1)
        return path.left(1);
    const qsizetype begin = path.lastIndexOf(u'/', end - 1) + 1;
    return path.mid(begin, end - begin);
}

} // namespace

void SessionStore::apply(const AgentEvent& event, Date now)
{
    const auto effect = effectOf(event.name);
    if (!effect)
        return;
    if (*effect == Effect::remove) {
        sessions.erase(event.sessionID);
        return;
    }
    const auto known = sessions.find(event.sessionID);
    Session session = known == sessions.end() ? Session() : known->second;
    session.id = event.sessionID;
    session.agent = event.agent;
    if (!event.cwd.isEmpty())
        session.project = lastComponent(event.cwd).left(mostProjectChars);
    session.state = stateAfter(*effect, session.state);
    session.lastEventAt = now;
    if (known == sessions.end() && sessions.size() >= mostSessions)
        sessions.erase(QString(sessions.oldest()->id));
    sessions.put(session);
}

void SessionStore::prune(Date now)
{
    for (const AgentState state : allStates) {
        for (const Session* oldest = sessions.oldest(state); oldest && now - oldest->lastEventAt >= lifetime(state);
             oldest = sessions.oldest(state))
            sessions.erase(QString(oldest->id));
    }
}

std::optional<Date> SessionStore::nextChange(Date now) const
{
    std::optional<Date> next;
    const auto consider = [&next](Date moment) { next = next ? std::min(*next, moment) : moment; };
    for (const AgentState state : allStates) {
        if (const Session* oldest = sessions.oldest(state))
            consider(oldest->lastEventAt + lifetime(state));
    }
    if (const Session* done = sessions.newest(AgentState::done); done && wingState(now) == AgentState::done)
        consider(done->lastEventAt + doneWingDuration);
    return next;
}

std::optional<AgentState> SessionStore::state(const QString& id) const
{
    const auto session = sessions.find(id);
    return session == sessions.end() ? std::nullopt : std::optional(session->second.state);
}

std::vector<Session> SessionStore::sorted() const
{
    std::vector<Session> all;
    all.reserve(sessions.size());
    for (const auto& [id, session] : sessions)
        all.push_back(session);
    std::ranges::stable_sort(all, std::ranges::greater(), &Session::lastEventAt);
    return all;
}

std::optional<AgentState> SessionStore::wingState(Date now) const
{
    if (needsInputCount() > 0)
        return AgentState::needsInput;
    if (workingCount() > 0)
        return AgentState::working;
    const Session* done = sessions.newest(AgentState::done);
    return done && now - done->lastEventAt < doneWingDuration ? std::optional(AgentState::done) : std::nullopt;
}

} // namespace kestro
