#include "KestroCore/Agents/SessionStore.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kestro {

namespace {

enum class Effect { Remove, Keep, Work, Ask, Finish, Rest };

std::optional<Effect> effectOf(const QString& eventName)
{
    static const std::array<std::pair<QLatin1String, Effect>, 12> effects{ {
        { QLatin1String("SessionEnd"), Effect::Remove },
        { QLatin1String("sessionEnd"), Effect::Remove },
        { QLatin1String("SessionStart"), Effect::Keep },
        { QLatin1String("sessionStart"), Effect::Keep },
        { QLatin1String("UserPromptSubmit"), Effect::Work },
        { QLatin1String("PostToolUse"), Effect::Work },
        { QLatin1String("beforeSubmitPrompt"), Effect::Work },
        { QLatin1String("postToolUse"), Effect::Work },
        { QLatin1String("PermissionRequest"), Effect::Ask },
        { QLatin1String("Stop"), Effect::Finish },
        { QLatin1String("stop"), Effect::Finish },
        { QLatin1String("Interrupt"), Effect::Rest },
    } };
    const auto* const found = std::ranges::find_if(effects, [&](const auto& row) { return row.first == eventName; });
    if (found == effects.end())
        return std::nullopt;
    return found->second;
}

AgentState stateAfter(Effect effect, AgentState before)
{
    switch (effect) {
    case Effect::Work:
        return AgentState::working;
    case Effect::Ask:
        return AgentState::needsInput;
    case Effect::Finish:
        return AgentState::done;
    case Effect::Rest:
        return AgentState::idle;
    case Effect::Remove:
    case Effect::Keep:
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
    if (*effect == Effect::Remove) {
        sessions.erase(event.sessionID);
        return;
    }
    Session& session = sessions[event.sessionID];
    session.id = event.sessionID;
    session.agent = event.agent;
    if (!event.cwd.isEmpty())
        session.project = lastComponent(event.cwd).left(longestName);
    session.state = stateAfter(*effect, session.state);
    session.lastEventAt = now;
    if (sessions.size() > mostSessions)
        dropOldest();
}

void SessionStore::dropOldest()
{
    const auto age = [](const auto& entry) { return entry.second.lastEventAt; };
    sessions.erase(std::ranges::min_element(sessions, {}, age));
}

void SessionStore::prune(Date now)
{
    std::erase_if(sessions, [now](const auto& entry) {
        const double age = now - entry.second.lastEventAt;
        return age >= staleAfter || (age >= doneLifetime && entry.second.state == AgentState::done);
    });
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
    std::optional<AgentState> shown; // in one pass: it is asked for with every event, however many sessions there are
    for (const auto& [id, session] : sessions) {
        if (session.state == AgentState::needsInput)
            return AgentState::needsInput;
        if (session.state == AgentState::working)
            shown = AgentState::working;
        else if (session.state == AgentState::done && !shown && now - session.lastEventAt < doneWingDuration)
            shown = AgentState::done;
    }
    return shown;
}

int SessionStore::count(AgentState state) const
{
    return static_cast<int>(
        std::ranges::count_if(sessions, [state](const auto& entry) { return entry.second.state == state; }));
}

} // namespace kestro
