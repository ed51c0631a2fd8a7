#include "Kestro/Application/AppModel.h"

#include "Kestro/Platform/Appearance.h"
#include "Kestro/Preferences/PreferenceKeys.h"

#include <utility>

namespace kestro {

AppModel::AppModel(const Platform& platform, const Folders& folders)
    : m_platform(platform)
    , m_folders(folders)
    , m_host(platform.preferences)
    , m_launcher(platform.loop, platform.preferences, platform.workspace, platform.fetcher, platform.log,
          folders.caches + QStringLiteral("/favicons"))
    , m_items(m_host, m_launcher, platform.preferences)
    , m_hotKeys(platform.hotKeys, platform.log)
    , m_shortcuts(m_hotKeys, platform.preferences, platform.loop, platform.keyboard, platform.session)
    , m_itemShortcuts(m_launcher, m_items)
    , m_openNotchShortcut(platform.preferences, openNotchShortcut())
{
    m_shortcuts.add(m_openNotchShortcut);
    for (Feature* feature : m_host.features) {
        for (Widget* widget : feature->widgets())
            m_items.add(*widget);
        for (ShortcutSource* source : feature->shortcuts())
            m_shortcuts.add(*source);
    }
    m_shortcuts.add(m_itemShortcuts);

    // An item or a feature that came or went took its shortcuts with it.
    connect(&m_launcher, &LauncherModel::storeChanged, &m_shortcuts, &ShortcutAssignments::sync);
    connect(&m_host.switches, &FeatureSwitches::turned, &m_shortcuts, &ShortcutAssignments::sync);

    connect(&m_items, &WidgetItems::shownChanged, this, &AppModel::shownWidgetChanged);
    connect(&m_items, &WidgetItems::shownChanged, this, &AppModel::changed);
    connect(&m_items, &WidgetItems::heightChanged, this, &AppModel::changed);
    connect(&m_items, &WidgetItems::tileChanged, this, &AppModel::tilesChanged);
    connect(&m_host.surface, &SurfaceState::expandedChanged, this, &AppModel::changed);
    connect(&m_host.surface, &SurfaceState::widgetPicked, this, &AppModel::widgetSelected);
    connect(&m_host.switches, &FeatureSwitches::turned, this, &AppModel::changed);
    connect(&m_launcher, &LauncherModel::storeChanged, this, &AppModel::changed);
    connect(&m_launcher, &LauncherModel::faviconsChanged, this, &AppModel::tilesChanged);
    connect(&m_launcher, &LauncherModel::noticeChanged, this, &AppModel::changed);
    connect(&m_stats.running(), &RunningAppsModel::changed, this, &AppModel::tilesChanged);
}

AppModel::~AppModel() = default;

PreferenceShortcut::Description AppModel::openNotchShortcut()
{
    return { .owner = ShortcutOwner::openNotch(),
        .key = prefs::openNotchShortcut.key,
        .fallback = KeyCombo::openNotchDefault,
        .section = QStringLiteral("Surface"),
        .name = QStringLiteral("Open / close notch"),
        .title = QStringLiteral("Open / close notch or dock"),
        .isActive = [] { return true; },
        .perform = [this] { toggleNotch(); } };
}

void AppModel::start()
{
    m_items.start();
    for (Feature* feature : m_host.features)
        feature->start();
    m_shortcuts.start();
}

void AppModel::finish()
{
    for (Feature* feature : m_host.features)
        feature->finish();
}

double AppModel::cardBodyHeight(WidgetKind kind) const
{
    const Widget* widget = m_items.find(kind);
    return widget ? widget->bodyHeight(m_platform.appearance.look()) : 0;
}

void AppModel::openShownWindow()
{
    if (const Widget* shown = card(); shown && shown->hasWindow())
        m_host.openWindow(shown->kind());
}

void AppModel::setSettingsPane(const QString& pane)
{
    if (std::exchange(m_settingsPane, pane) != pane)
        Q_EMIT settingsPaneChanged();
}

void AppModel::setSettingsTarget(const std::optional<QUuid>& id)
{
    m_settingsTarget = id;
    Q_EMIT settingsTargetChanged();
}

} // namespace kestro
