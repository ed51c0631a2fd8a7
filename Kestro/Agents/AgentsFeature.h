#pragma once

#include "Kestro/Agents/AgentFiles.h"
#include "Kestro/Agents/AgentHealth.h"
#include "Kestro/Agents/AgentIntake.h"
#include "Kestro/Agents/AgentsModel.h"
#include "Kestro/Agents/AgentsWidget.h"
#include "Kestro/Agents/LimitsModel.h"
#include "Kestro/Shortcuts/ShortcutSource.h"
#include "Kestro/Widgets/Feature.h"

namespace kestro {

struct Folders;

/// The coding agents: their sessions and limits, which come through one socket. Main thread.
class AgentsFeature final : public Feature {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the application")
    Q_PROPERTY(kestro::AgentsModel* agents READ agents CONSTANT)
    Q_PROPERTY(kestro::LimitsModel* limits READ limits CONSTANT)
    Q_PROPERTY(kestro::AgentHealth* health READ health CONSTANT)
public:
    AgentsFeature(FeatureHost& host, const Platform& platform, const Folders& folders);

    void start() override;
    void finish() override { m_files.finish(); }
    std::vector<Widget*> widgets() override { return { &m_widget }; }
    std::vector<ShortcutSource*> shortcuts() override { return { &m_waitingShortcut }; }
    QList<SettingsPane> panes() override;

    AgentsModel* agents() { return &m_agents; }
    LimitsModel* limits() { return &m_limits; }
    AgentHealth* health() { return &m_health; }
    AgentFiles& files() { return m_files; }
    /// Brings files and socket in line with the switches. Safe at any time.
    void applyAgents();
    void applyLimits();

    /// To the session that has waited for the user longest.
    static ShortcutOwner waitingAgent() { return ShortcutOwner(QStringLiteral("waitingAgent")); }

private:
    void syncSocket();
    void receive(const SocketMessage& message, const HookOrigin& origin);
    void raiseWaiting();
    PreferenceShortcut::Description waitingShortcut();

    FeatureHost& m_host;
    MainLoop& m_loop;
    AgentFiles m_files;
    AgentsModel m_agents;
    LimitsModel m_limits;
    AgentHealth m_health;
    AgentIntake m_intake;
    AgentsWidget m_widget;
    PreferenceShortcut m_waitingShortcut;
};

} // namespace kestro
