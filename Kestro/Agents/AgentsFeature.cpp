#include "Kestro/Agents/AgentsFeature.h"

#include "Kestro/Agents/AgentsPreferences.h"
#include "Kestro/Platform/Folders.h"
#include "Kestro/Platform/Platform.h"
#include "Kestro/Style/Symbols.h"

namespace kestro {

namespace {

QString socketPath(const Folders& folders) { return folders.data + QStringLiteral("/agents.sock"); }

} // namespace

AgentsFeature::AgentsFeature(FeatureHost& host, const Platform& platform, const Folders& folders)
    : Feature(host)
    , m_host(host)
    , m_loop(platform.loop)
    , m_files(platform.loop, folders.home)
    , m_agents(platform, host.switches, host.surface, m_files)
    , m_limits(platform.loop, platform.preferences, host.switches, host.surface, m_files)
    , m_health(platform, folders.home, socketPath(folders))
    , m_intake(platform.loop, platform.peers, socketPath(folders))
    , m_widget(m_agents, m_limits)
    , m_waitingShortcut(platform.preferences, waitingShortcut())
{
    m_intake.received = [this](const SocketMessage& message, const HookOrigin& origin) { receive(message, origin); };
    m_health.repairAll = [this](std::function<void()> done) {
        m_intake.close();
        applyAgents();
        if (m_limits.isOn())
            applyLimits();
        m_files.afterwards(std::move(done));
    };
    m_health.isWanted = [this](Agent agent) { return m_agents.isWatched(agent); };
    // Each switch's own model has reacted by then.
    connect(m_agents.activity(), &FeatureSwitch::changed, this, &AgentsFeature::syncSocket);
    connect(m_limits.enabled(), &FeatureSwitch::changed, this, &AgentsFeature::syncSocket);
}

PreferenceShortcut::Description AgentsFeature::waitingShortcut()
{
    return { .owner = waitingAgent(),
        .key = prefs::waitingAgentShortcut.key,
        .fallback = std::nullopt,
        .section = QStringLiteral("Surface"),
        .name = QStringLiteral("Go to the waiting agent"),
        .title = {},
        .isActive = [this] { return m_agents.isOn(); },
        .perform = [this] { raiseWaiting(); } };
}

void AgentsFeature::start()
{
    if (m_agents.isOn())
        applyAgents();
    if (m_limits.isOn())
        applyLimits();
}

void AgentsFeature::applyAgents()
{
    m_agents.applyAgents();
    syncSocket();
}

void AgentsFeature::applyLimits()
{
    m_limits.applyLimits();
    syncSocket();
}

void AgentsFeature::syncSocket()
{
    QString failure;
    if (m_agents.isOn() || m_limits.isOn())
        failure = m_intake.open();
    else
        m_intake.close();
    if (!failure.isEmpty())
        m_health.refresh(); // which says what is in the way
    m_agents.setSocketError(failure);
    m_limits.setSocketFailed(!failure.isEmpty());
}

void AgentsFeature::receive(const SocketMessage& message, const HookOrigin& origin)
{
    if (const AgentLimits* limits = message.claudeLimits())
        m_limits.setClaudeLimits(*limits);
    const AgentEvent* event = message.event();
    if (!event)
        return;
    m_health.handleEvent(*event, m_loop.now());
    if (m_agents.handle(*event, origin) && event->agent == Agent::codex && event->name == QLatin1String("Stop")
        && m_limits.isOn())
        m_limits.refreshCodexLimits();
}

void AgentsFeature::raiseWaiting()
{
    // A key that does nothing would leave the user guessing; the row says why.
    if (!m_agents.raiseWaiting())
        m_host.showCard(WidgetKind::ai);
}

QList<SettingsPane> AgentsFeature::panes()
{
    return { { QStringLiteral("agents"), QStringLiteral("Agents"), symbols::sparkle,
        QStringLiteral("Agents/AgentsSection"),
        { QStringLiteral("AI activity hooks"), QStringLiteral("Claude Code"), QStringLiteral("Codex"),
            QStringLiteral("Cursor"), QStringLiteral("Plan usage limits status line"),
            QStringLiteral("Hooks test repair health") },
        this } };
}

} // namespace kestro
