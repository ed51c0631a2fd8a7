#pragma once

#include "Kestro/Agents/SessionRows.h"
#include "Kestro/Layout/LauncherModel.h"
#include "Kestro/Platform/MainLoop.h"
#include "Kestro/Platform/Platform.h"
#include "Kestro/Preferences/PreferenceKeys.h"
#include "Kestro/Statistics/StatsCard.h"
#include "KestroCore/Agents/AgentLimits.h"
#include "KestroCore/Agents/AgentSocket.h"
#include "KestroCore/Agents/SessionStore.h"
#include "KestroCore/Layout/DockGeometry.h"
#include "KestroCore/Statistics/Stats.h"

#include <QObject>
#include <QQmlEngine>
#include <QUuid>
#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <set>

namespace kestro {

/// Where the model finds the user's files.
struct Folders {
    QString home; ///< the user's home folder
    QString data; ///< `~/Library/Application Support/Kestro`
    QString caches; ///< `~/Library/Caches/com.lumbra.ombrel`

    static Folders under(const QString& home);
};

/// What the user turns on and off, each under the preference key of its name.
enum class FeatureSwitch { claude, codex, cursor, agents, limits, music, bluetooth, weather, clipboard };
inline constexpr std::size_t featureSwitchCount = 9;

/// The one long-lived object that owns every feature object, holds the state that views observe and runs the shared
/// timers. Main thread. It only constructs; `start` brings things to life.
class AppModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made at start-up")
    Q_PROPERTY(QString shownWidget READ shownWidgetName NOTIFY shownWidgetChanged)
    Q_PROPERTY(bool agentsEnabled READ agentsEnabled NOTIFY agentsChanged)
    Q_PROPERTY(QStringList agentErrorLines READ agentErrorLines NOTIFY agentsChanged)
    Q_PROPERTY(kestro::SessionRows* sessionRows READ sessionRows CONSTANT)
    Q_PROPERTY(kestro::StatsCard* statsCard READ statsCard CONSTANT)
public:
    AppModel(const Platform& platform, Folders folders);
    ~AppModel() override;

    /// Once, by the delegate.
    void start();

    // What the surfaces show
    std::set<WidgetKind> enabledWidgets() const;
    QList<LaunchItem> visibleItems() const;
    QList<WidgetKind> visibleWidgets() const;
    /// `selectedWidget` while it is visible, else the first that is.
    std::optional<WidgetKind> shownWidget() const;
    QString shownWidgetName() const;
    /// The height in points of the widget's body in its card.
    double cardBodyHeight(WidgetKind kind) const;
    QList<DockItemSize> dockSizes(const QList<LaunchItem>& items) const;
    /// The state that the agents' tile wears as its badge.
    std::optional<AgentState> agentBadge() const;

    bool expanded() const { return m_expanded; }
    void setExpanded(bool expanded);
    std::optional<WidgetKind> selectedWidget() const { return m_selectedWidget; }
    void setSelectedWidget(std::optional<WidgetKind> kind);
    void setDockVisible(bool visible);
    void setDisplaysAsleep(bool asleep);
    bool displaysAsleep() const { return m_displaysAsleep; }

    // Items of the layout
    /// The message to show where it fails, else nothing.
    std::optional<QString> addWidget(WidgetKind kind);
    void removeItem(const LaunchItem& item);
    void removeLaunchItem(const QUuid& id);
    void syncWidgetItem(WidgetKind kind);
    void click(const LaunchItem& item);
    void perform(const LaunchItem& item);

    bool isOn(FeatureSwitch feature) const { return m_on[std::size_t(feature)]; }
    /// Persists the switch and runs its reaction.
    void turn(FeatureSwitch feature, bool on);
    bool agentsEnabled() const { return isOn(FeatureSwitch::agents); }

    void applyAgents();
    void syncStats();
    QStringList agentErrorLines() const;

    const SessionStore& store() const { return m_store; }
    Date now() const { return m_now; }
    const std::optional<AgentLimits>& claudeLimits() const { return m_claudeLimits; }
    LauncherModel& launcher() { return m_launcher; }
    SessionRows* sessionRows() { return &m_sessionRows; }
    StatsCard* statsCard() { return &m_statsCard; }
    const Platform& platform() const { return m_platform; }

    /// Open or close the surface that is active; bound by the delegate.
    std::function<void()> toggleNotch = [] {};
    /// Open the active surface on a widget; bound by the delegate.
    std::function<void(WidgetKind)> showCard = [](WidgetKind) {};

Q_SIGNALS:
    void expandedChanged();
    void shownWidgetChanged();
    /// The user picked a widget, perhaps the one that was picked already.
    void widgetSelected();
    void agentsChanged();
    /// Anything that a surface draws may have changed, the above included.
    void changed();

private:
    void preferencesChanged();
    void store(FeatureSwitch feature, bool on);

    QString cursorFolder() const;
    void adoptCursorDefault();
    QString syncSocket();
    void handle(const SocketMessage& message);
    void sampleStats();
    void tick();
    void sessionsChanged();

    Platform m_platform;
    Folders m_folders;
    bool m_expanded = false;
    Stats m_stats;
    std::optional<CPUTicks> m_lastTicks;
    SessionStore m_store;
    Date m_now;
    QStringList m_agentErrors;
    std::optional<AgentLimits> m_claudeLimits;
    std::array<bool, featureSwitchCount> m_on; // as last applied: a change of the file is told from these
    std::optional<WidgetKind> m_selectedWidget;
    LauncherModel m_launcher;
    SessionRows m_sessionRows;
    StatsCard m_statsCard;
    bool m_suppressItemSync = false;
    bool m_dockVisible = false;
    bool m_displaysAsleep = false;
    Timer m_statsTimer;
    Timer m_ticker;
    std::unique_ptr<AgentSocket> m_socket;
};

} // namespace kestro
