#include "Kestro/Application/AppModel.h"

#include "Kestro/Platform/PreferenceStore.h"
#include "KestroCore/Agents/HookInstaller.h"
#include "KestroCore/Support/StorageError.h"

#include <QFileInfo>
#include <QPointer>
#include <system_error>

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

void AppModel::applyAgents()
{
    m_agentErrors.clear();
    const auto apply = [this](Agent agent, bool wanted) {
        try {
            HookInstaller::apply(agentsEnabled() && wanted, agent, HookInstaller::configURL(agent, m_folders.home));
        } catch (const StorageError& error) {
            m_agentErrors.append(error.description());
        }
    };
    apply(Agent::claude, isOn(FeatureSwitch::claude));
    apply(Agent::codex, isOn(FeatureSwitch::codex));
    apply(Agent::cursor, isOn(FeatureSwitch::cursor) && cursorInstalled());

    const QString failure = syncSocket();
    if (agentsEnabled() && !failure.isEmpty())
        m_agentErrors.append(failure);
    if (!agentsEnabled())
        m_store = SessionStore();
    sessionsChanged();
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
    MainLoop& loop = m_platform.loop;
    const QPointer<AppModel> model(this);
    auto socket = std::make_unique<AgentSocket>(
        m_folders.data + QStringLiteral("/agents.sock"), [&loop, model](const SocketMessage& message) {
            loop.post([model, message] {
                if (model)
                    model->handle(message);
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

void AppModel::handle(const SocketMessage& message)
{
    if (const AgentEvent* event = message.event()) {
        if (!agentsEnabled())
            return;
        m_now = m_platform.loop.now();
        m_store.apply(*event, m_now);
        sessionsChanged();
    } else if (const AgentLimits* limits = message.claudeLimits()) {
        if (isOn(FeatureSwitch::limits))
            m_claudeLimits = *limits;
    }
}

void AppModel::tick()
{
    m_now = m_platform.loop.now();
    m_store.prune(m_now);
    sessionsChanged();
}

void AppModel::sessionsChanged()
{
    // Without sessions there is nothing to age, so the ticker sleeps.
    if (m_store.sessions.empty())
        m_ticker.cancel();
    else if (!m_ticker)
        m_ticker = m_platform.loop.every(1.0, [this] { tick(); });
    if (m_expanded)
        m_sessionRows.show(m_store.sorted(), m_now);
    Q_EMIT agentsChanged();
    Q_EMIT changed();
}

std::optional<AgentState> AppModel::agentBadge() const
{
    return agentsEnabled() ? m_store.wingState(m_now) : std::nullopt;
}

} // namespace kestro
