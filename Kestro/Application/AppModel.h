#pragma once

#include "Kestro/Agents/AgentsFeature.h"
#include "Kestro/Clipboard/ClipboardFeature.h"
#include "Kestro/Layout/LauncherModel.h"
#include "Kestro/Notes/NotesFeature.h"
#include "Kestro/Platform/Folders.h"
#include "Kestro/Platform/Platform.h"
#include "Kestro/Shortcuts/ShortcutAssignments.h"
#include "Kestro/Statistics/StatsFeature.h"
#include "Kestro/Timer/TimerFeature.h"
#include "Kestro/Widgets/ItemShortcuts.h"
#include "Kestro/Widgets/WidgetItems.h"

#include <QQmlEngine>
#include <QUuid>

namespace kestro {

/// The long-lived object that owns every feature and their shared state. It only constructs; `start` brings things to
/// life. Main thread.
class AppModel final : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made at start-up")
    /// The widget whose card the open surface shows; null where there is none.
    Q_PROPERTY(kestro::Widget* card READ card NOTIFY shownWidgetChanged)
    Q_PROPERTY(QString settingsPane READ settingsPane WRITE setSettingsPane NOTIFY settingsPaneChanged)
public:
    AppModel(const Platform& platform, const Folders& folders);
    ~AppModel() override;

    /// Once, by the delegate.
    void start();
    /// Once, when the process is about to end: what waits to be saved is saved.
    void finish();

    // State that the surfaces show and write
    bool expanded() const { return m_host.surface.expanded(); }
    void setExpanded(bool expanded) { m_host.surface.setExpanded(expanded); }
    std::optional<WidgetKind> selectedWidget() const { return m_host.surface.selectedWidget(); }
    void setSelectedWidget(std::optional<WidgetKind> kind) { m_host.surface.setSelectedWidget(kind); }
    void setDockVisible(bool visible) { m_host.surface.setDockVisible(visible); }
    void setDisplaysAsleep(bool asleep) { m_host.surface.setDisplaysAsleep(asleep); }
    QList<LaunchItem> visibleItems() const { return m_items.visibleItems(); }
    QList<WidgetKind> visibleWidgets() const { return m_items.visibleWidgets(); }
    std::optional<WidgetKind> shownWidget() const { return m_items.shown(); }

    // Shared state, then each feature
    SurfaceState& surface() { return m_host.surface; }
    LauncherModel& launcher() { return m_launcher; }
    WidgetItems& items() { return m_items; }
    ShortcutAssignments& shortcuts() { return m_shortcuts; }
    FeatureHost& host() { return m_host; }
    AgentsFeature& agents() { return m_agents; }
    StatsFeature& stats() { return m_stats; }
    const Platform& platform() const { return m_platform; }

    Widget* card() const { return m_items.find(m_items.shown()); }
    /// The height in points of the shown widget's body in its card.
    double cardBodyHeight(WidgetKind kind) const;
    Q_INVOKABLE void openShownWindow();

    // The Settings window
    QString settingsPane() const { return m_settingsPane; }
    void setSettingsPane(const QString& pane);
    /// The item of the layout that the Layout pane has selected.
    std::optional<QUuid> settingsTarget() const { return m_settingsTarget; }
    void setSettingsTarget(const std::optional<QUuid>& id);

    /// Open or close the surface that is active; bound by the delegate.
    std::function<void()> toggleNotch = [] {};

Q_SIGNALS:
    void shownWidgetChanged();
    /// The user picked a widget, perhaps the one that was picked already.
    void widgetSelected();
    void settingsPaneChanged();
    void settingsTargetChanged();
    /// Items came, went or moved, or the card has another widget or height: the surface places itself anew.
    void changed();
    /// Tiles look otherwise, where they are.
    void tilesChanged();

private:
    PreferenceShortcut::Description openNotchShortcut();

    Platform m_platform;
    Folders m_folders;
    FeatureHost m_host;
    LauncherModel m_launcher;
    WidgetItems m_items;
    HotKeyCenter m_hotKeys;
    ShortcutAssignments m_shortcuts;
    ItemShortcuts m_itemShortcuts;
    PreferenceShortcut m_openNotchShortcut;
    QString m_settingsPane = QStringLiteral("general");
    std::optional<QUuid> m_settingsTarget;

    // Every feature, in start order: a new one is one line here
    StatsFeature m_stats{ m_host, m_launcher, m_platform, m_folders.home };
    AgentsFeature m_agents{ m_host, m_platform, m_folders };
    TimerFeature m_timer{ m_host, m_launcher,
        { m_platform.loop, m_platform.preferences, m_platform.session, m_platform.sounds } };
    NotesFeature m_notes{ m_host, m_launcher, m_platform.loop, m_platform.log, NotesStorage::under(m_folders.home) };
    ClipboardFeature m_clipboard{ m_host, m_platform, m_folders };
};

} // namespace kestro
