#include "Kestro/Application/AppModel.h"

#include "Kestro/Platform/PeerInspector.h"
#include "Kestro/Platform/PreferenceStore.h"
#include "KestroCore/Agents/HookInstaller.h"
#include "KestroCore/Support/StorageError.h"

#include <QFileInfo>
#include <QPointer>
#include <system_error>
#include <utility>

namespace kestro {

QString AppModel::cursorFolder() const
{
    return QFileInfo(HookInstaller::configURL(Agent::cursor, m_folders.home)).path();
}

bool AppModel::cursorInstalled() const { return QFileInfo(cursorFolder()).isDir(); }

void AppModel::adoptCursorDefault()
{
    if (!prefs::cursorStored.read(m_platform.preferences) && cursorInstalled())
        turn(FeatureSwitch::cursor, true);
}

bool AppModel::isWatched(Agent agent) const
{
    switch (agent) {
    case Agent::claude:
        return agentsEnabled() && isOn(FeatureSwitch::claude);
    case Agent::codex:
        return agentsEnabled() && isOn(FeatureSwitch::codex);
    case Agent::cursor:
        return agentsEnabled() && isOn(FeatureSwitch::cursor) && cursorInstalled();
    }
    Q_UNREACHABLE();
}

void AppModel::applyAgents()
{
    m_agentErrors.clear();
    for (const Agent agent : allAgents) {
        try {
            HookInstaller::apply(isWatched(agent), agent, HookInstaller::configURL(agent, m_folders.home));
        } catch (const StorageError& error) {
            m_agentErrors.append(error.description());
        }
    }
    const QString failure = syncSocket();
    if (agentsEnabled() && !failure.isEmpty())
        m_agentErrors.append(failure);
    if (!agentsEnabled())
        m_store = SessionStore();
    sessionsChanged();
    Q_EMIT agentsChanged();
}

QStringList AppModel::agentErrorLines() const { return m_agentErrors; }

QString AppModel::syncSocket()
{
    if (!agentsEnabled() && !isOn(FeatureSwitch::limits)) {
        m_socket.reset();
        return {};
    }
    if (m_socket)
        return {};
    auto socket = std::make_unique<AgentSocket>(m_folders.data + QStringLiteral("/agents.sock"),
        [&loop = m_platform.loop, &peers = m_platform.peers, model = QPointer(this)](
            const SocketMessage& message, int connection) {
            // While its connection is open the hook lives, and with it the way up to its agent.
            HookOrigin origin = message.event() ? peers.peer(connection) : HookOrigin();
            loop.post([model, message = message, origin = std::move(origin)] {
                if (model)
                    model->handle(message, origin);
            });
        });
    try {
        socket->start();
    } catch (const std::exception&) {
        return QStringLiteral("Agent status unavailable");
    }
    m_socket = std::move(socket);
    return {};
}

void AppModel::handle(const SocketMessage& message, const HookOrigin& origin)
{
    if (const AgentEvent* event = message.event())
        handle(*event, origin);
    else if (const AgentLimits* limits = message.claudeLimits())
        setClaudeLimits(*limits);
}

void AppModel::handle(const AgentEvent& event, const HookOrigin& origin)
{
    m_now = m_platform.loop.now();
    m_agentHealth.heard(event, m_now);
    // Cursor runs Claude's hooks as well as its own: one conversation would be two sessions.
    if (!agentsEnabled() || (event.fromCursor && isWatched(Agent::cursor)))
        return;
    const auto before = m_store.state(event.sessionID);
    m_store.apply(event, m_now);
    if (const auto session = m_store.sessions.find(event.sessionID); session != m_store.sessions.end()) {
        m_agentProcesses.heard(event.sessionID, origin);
        m_wayBack.heard(event, origin, session->second);
    }
    // Most events find an agent at work and leave it so: then its age alone is new, which only rows show.
    const auto after = m_store.state(event.sessionID);
    if (after != before || after == AgentState::done || sessionsAreSeen())
        sessionsChanged();
    if (event.agent == Agent::codex && event.name == QLatin1String("Stop") && isOn(FeatureSwitch::limits))
        refreshCodexLimits();
}

void AppModel::agentEnded(const QString& id)
{
    m_now = m_platform.loop.now();
    m_store.sessions.erase(id);
    sessionsChanged();
}

void AppModel::raiseSession(const QString& id)
{
    if (const auto session = m_store.sessions.find(id); session != m_store.sessions.end())
        m_wayBack.raise(session->second);
}

void AppModel::raiseWaitingAgent()
{
    const auto waiting = m_wayBack.longestWaiting();
    if (!waiting)
        return;
    raiseSession(*waiting);
    // A key that does nothing would leave the user guessing; the row says why.
    if (m_wayBack.lost().contains(*waiting))
        showCard(WidgetKind::ai);
}

void AppModel::tick()
{
    m_now = m_platform.loop.now();
    m_store.prune(m_now);
    sessionsChanged();
}

void AppModel::sessionsChanged()
{
    // What is known beside a session goes with it, whichever way it went.
    if (std::exchange(m_sessionCount, m_store.sessions.size()) > m_store.sessions.size()) {
        const auto lives = [this](const QString& id) { return m_store.sessions.contains(id); };
        m_agentProcesses.keep(lives);
        m_wayBack.keep(lives);
    }
    // Without sessions there is nothing to age, so the ticker sleeps.
    if (m_store.sessions.empty())
        m_ticker.cancel();
    else if (!m_ticker)
        m_ticker = m_platform.loop.every(1.0, [this] { tick(); });
    showSessions();
    // The rows tell their own changes; of all else that surfaces draw, most events change nothing.
    const auto drawn = std::pair(agentBadge(), cardBodyHeight(WidgetKind::ai));
    if (std::exchange(m_drawnOfSessions, drawn) != drawn)
        Q_EMIT changed();
}

void AppModel::showSessions()
{
    if (sessionsAreSeen())
        m_sessionRows.show(m_store.sorted(), m_now, m_wayBack.lost());
}

std::shared_ptr<void> AppModel::watchSessions()
{
    auto watch = m_sessionsWatch.lock();
    if (!watch) {
        watch = std::make_shared<bool>();
        m_sessionsWatch = watch;
        showSessions();
    }
    return watch;
}

std::optional<AgentState> AppModel::agentBadge() const
{
    return agentsEnabled() ? m_store.wingState(m_now) : std::nullopt;
}

} // namespace kestro
