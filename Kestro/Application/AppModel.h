#pragma once

#include "Kestro/Agents/AgentHealth.h"
#include "Kestro/Agents/AgentProcesses.h"
#include "Kestro/Agents/SessionRows.h"
#include "Kestro/Agents/WayBack.h"
#include "Kestro/Application/SettingsPane.h"
#include "Kestro/Layout/LauncherModel.h"
#include "Kestro/Platform/MainLoop.h"
#include "Kestro/Platform/Platform.h"
#include "Kestro/Preferences/PreferenceKeys.h"
#include "Kestro/Shortcuts/HotKeyCenter.h"
#include "Kestro/Statistics/StatsCard.h"
#include "KestroCore/Agents/AgentLimits.h"
#include "KestroCore/Agents/AgentSocket.h"
#include "KestroCore/Agents/HookOrigin.h"
#include "KestroCore/Agents/SessionStore.h"
#include "KestroCore/Layout/DockGeometry.h"
#include "KestroCore/Statistics/Stats.h"
#include "KestroCore/Support/SerialQueue.h"

#include <QObject>
#include <QQmlEngine>
#include <QUuid>
#include <QVariantList>
#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <utility>

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

class ShortcutRecorder;

/// The one long-lived object that owns every feature object, holds the state that views observe and runs the shared
/// timers. Main thread. It only constructs; `start` brings things to life.
class AppModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made at start-up")
    Q_PROPERTY(QString shownWidget READ shownWidgetName NOTIFY shownWidgetChanged)
    Q_PROPERTY(bool shownWidgetHasWindow READ shownWidgetHasWindow NOTIFY shownWidgetChanged)
    Q_PROPERTY(bool agentsEnabled READ agentsEnabled WRITE setAgentsEnabled NOTIFY switchesChanged)
    Q_PROPERTY(bool claudeEnabled READ claudeEnabled WRITE setClaudeEnabled NOTIFY switchesChanged)
    Q_PROPERTY(bool codexEnabled READ codexEnabled WRITE setCodexEnabled NOTIFY switchesChanged)
    Q_PROPERTY(bool cursorEnabled READ cursorEnabled WRITE setCursorEnabled NOTIFY switchesChanged)
    /// Whether there is a folder of Cursor's for its hook to go into; looked at each time.
    Q_PROPERTY(bool cursorInstalled READ cursorInstalled NOTIFY switchesChanged)
    Q_PROPERTY(bool limitsEnabled READ limitsEnabled WRITE setLimitsEnabled NOTIFY switchesChanged)
    Q_PROPERTY(QStringList limitErrorLines READ limitErrorLines NOTIFY limitsChanged)
    /// A map for Claude Code and one for Codex: "symbol", "name", "gauges", "note", and "source", which says when and
    /// from where they came. A gauge is a map of "label", "text", "fill" in points, and "level": "low", "medium",
    /// "high". The texts are those of the moment of reading.
    Q_PROPERTY(QVariantList limitRows READ limitRows NOTIFY limitsChanged)
    Q_PROPERTY(QStringList agentErrorLines READ agentErrorLines NOTIFY agentsChanged)
    Q_PROPERTY(QString settingsPane READ settingsPaneName WRITE setSettingsPaneName NOTIFY settingsPaneChanged)
    Q_PROPERTY(kestro::SessionRows* sessionRows READ sessionRows CONSTANT)
    Q_PROPERTY(kestro::AgentHealth* agentHealth READ agentHealth CONSTANT)
    Q_PROPERTY(kestro::StatsCard* statsCard READ statsCard CONSTANT)
public:
    AppModel(const Platform& platform, Folders folders);
    ~AppModel() override;

    /// Once, by the delegate.
    void start();

    // What the surfaces show
    std::set<WidgetKind> enabledWidgets() const;
    /// The widgets that there are; the layout may name others, which wait in it unseen.
    static QList<WidgetKind> availableWidgets() { return { WidgetKind::stats, WidgetKind::ai }; }
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

    /// Whether the widget has a window beside its card.
    static bool hasWindow(WidgetKind kind) { return kind == WidgetKind::ai; }
    bool shownWidgetHasWindow() const;
    Q_INVOKABLE void openShownWindow();
    /// Keeps `sessionRows` up to date, also while no card is open, for as long as what it gives is kept.
    std::shared_ptr<void> watchSessions();

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
    void setAgentsEnabled(bool on) { turn(FeatureSwitch::agents, on); }
    bool claudeEnabled() const { return isOn(FeatureSwitch::claude); }
    void setClaudeEnabled(bool on) { turn(FeatureSwitch::claude, on); }
    bool codexEnabled() const { return isOn(FeatureSwitch::codex); }
    void setCodexEnabled(bool on) { turn(FeatureSwitch::codex, on); }
    bool cursorEnabled() const { return isOn(FeatureSwitch::cursor); }
    void setCursorEnabled(bool on) { turn(FeatureSwitch::cursor, on); }
    bool cursorInstalled() const;
    bool limitsEnabled() const { return isOn(FeatureSwitch::limits); }
    void setLimitsEnabled(bool on) { turn(FeatureSwitch::limits, on); }

    // Global shortcuts
    /// Every shortcut that is set, live or not.
    ShortcutTable shortcutAssignments() const;
    std::optional<KeyCombo> shortcut(const ShortcutOwner& owner) const;
    /// Who that is, in a message.
    QString shortcutName(const ShortcutOwner& owner) const;
    /// Stores `combo`, or that there is none, and makes it live if its owner is. The message where it cannot be.
    std::optional<QString> setShortcut(const std::optional<KeyCombo>& combo, const ShortcutOwner& owner);
    void syncShortcut(const ShortcutOwner& owner);
    void registerShortcuts();
    /// A control for the shortcut of `owner`, which follows what is stored.
    std::unique_ptr<ShortcutRecorder> makeRecorder(const ShortcutOwner& owner);
    HotKeyCenter& hotKeys() { return m_hotKeys; }

    // The Settings window
    SettingsPane settingsPane() const { return m_settingsPane; }
    void setSettingsPane(SettingsPane pane);
    QString settingsPaneName() const { return rawValue(m_settingsPane); }
    void setSettingsPaneName(const QString& name);
    /// The item of the layout that the Layout pane has selected.
    std::optional<QUuid> settingsTarget() const { return m_settingsTarget; }
    void setSettingsTarget(const std::optional<QUuid>& id);

    void applyAgents();
    void syncStats();
    QStringList agentErrorLines() const;
    void applyLimits();
    /// Reads Codex's logs, off the main thread.
    void refreshCodexLimits();
    QStringList limitErrorLines() const { return m_limitErrors; }
    QVariantList limitRows() const;
    /// How much of the five hours is used, 0 to 1, for the agents' tile: Claude's where they are known, else Codex's.
    std::optional<double> limitsTileShare() const;
    /// Goes to the window in which the session runs.
    Q_INVOKABLE void raiseSession(const QString& id);
    /// Goes to the session that has waited for the user longest, if any waits.
    void raiseWaitingAgent();

    const SessionStore& store() const { return m_store; }
    Date now() const { return m_now; }
    const std::optional<AgentLimits>& claudeLimits() const { return m_claudeLimits; }
    const std::optional<AgentLimits>& codexLimits() const { return m_codexLimits; }
    LauncherModel& launcher() { return m_launcher; }
    SessionRows* sessionRows() { return &m_sessionRows; }
    AgentHealth* agentHealth() { return &m_agentHealth; }
    StatsCard* statsCard() { return &m_statsCard; }
    const Platform& platform() const { return m_platform; }

    /// Open or close the surface that is active; bound by the delegate.
    std::function<void()> toggleNotch = [] {};
    /// Open the active surface on a widget; bound by the delegate.
    std::function<void(WidgetKind)> showCard = [](WidgetKind) {};
    /// Open the window of a widget that has one, or bring it to the front; bound by the delegate.
    std::function<void(WidgetKind)> openWindow = [](WidgetKind) {};
    /// Bring the Settings window to the front; bound by the delegate.
    std::function<void()> openSettings = [] {};

Q_SIGNALS:
    void expandedChanged();
    void shownWidgetChanged();
    /// The user picked a widget, perhaps the one that was picked already.
    void widgetSelected();
    void agentsChanged();
    void limitsChanged();
    void switchesChanged();
    void shortcutsChanged();
    void settingsPaneChanged();
    void settingsTargetChanged();
    /// Anything that a surface draws may have changed, the above included.
    void changed();

private:
    void preferencesChanged();
    bool isShortcutActive(const ShortcutOwner& owner) const;
    bool isItemShortcutActive(const QUuid& id) const;
    void performShortcut(const ShortcutOwner& owner);
    qint32 registerShortcut(const KeyCombo& combo, const ShortcutOwner& owner);
    void storeShortcut(const std::optional<KeyCombo>& combo, const ShortcutOwner& owner);
    /// Makes live what should be and is not, and the reverse. What was refused rests until the keyboard changes.
    void syncShortcuts();
    void readShortcuts();

    /// Whether the agent's hook is to stand in its file.
    bool isWatched(Agent agent) const;
    QString cursorFolder() const;
    void adoptCursorDefault();
    QString syncSocket();
    void handle(const SocketMessage& message, const HookOrigin& origin);
    void handle(const AgentEvent& event, const HookOrigin& origin);
    void startLimitsTimer();
    void setCodexLimits(const std::optional<AgentLimits>& limits);
    void setClaudeLimits(AgentLimits limits);
    void limitsDidChange();
    std::optional<UsageWindow> tileWindow() const;
    void sampleStats();
    void tick();
    void agentEnded(const QString& id);
    void showSessions();
    void sessionsChanged();
    bool sessionsAreSeen() const { return m_expanded || !m_sessionsWatch.expired(); }

    Platform m_platform;
    Folders m_folders;
    bool m_expanded = false;
    Stats m_stats;
    std::optional<CPUTicks> m_lastTicks;
    SessionStore m_store;
    Date m_now;
    QStringList m_agentErrors;
    QStringList m_limitErrors;
    std::optional<AgentLimits> m_claudeLimits;
    std::optional<AgentLimits> m_codexLimits;
    Date m_codexRefreshedAt = Date::distantPast();
    std::array<bool, featureSwitchCount> m_on; // as last applied: a change of the file is told from these
    std::optional<WidgetKind> m_selectedWidget;
    LauncherModel m_launcher;
    std::optional<KeyCombo> m_openNotchShortcut;
    std::optional<KeyCombo> m_waitingAgentShortcut;
    HotKeyCenter m_hotKeys;
    ShortcutTable m_refused; ///< what the platform would not register
    SettingsPane m_settingsPane = SettingsPane::general;
    std::optional<QUuid> m_settingsTarget;
    bool m_started = false;
    std::size_t m_sessionCount = 0;
    SessionRows m_sessionRows;
    std::pair<std::optional<AgentState>, double> m_drawnOfSessions; ///< the badge, and the card's height
    std::weak_ptr<void> m_sessionsWatch;
    StatsCard m_statsCard;
    bool m_suppressItemSync = false;
    bool m_dockVisible = false;
    bool m_displaysAsleep = false;
    Timer m_statsTimer;
    Timer m_ticker;
    Timer m_limitsTimer;
    WorkItem m_limitsExpiry;
    AgentHealth m_agentHealth;
    AgentProcesses m_agentProcesses;
    WayBack m_wayBack;
    SerialQueue m_limitsQueue{ "kestro.limits" };
    std::unique_ptr<AgentSocket> m_socket;
};

} // namespace kestro
