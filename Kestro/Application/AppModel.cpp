#include "Kestro/Application/AppModel.h"

#include "Kestro/Application/FeatureSwitches.h"
#include "Kestro/Platform/Appearance.h"
#include "Kestro/Platform/PreferenceStore.h"
#include "Kestro/Platform/SystemCounters.h"

namespace kestro {

Folders Folders::under(const QString& home)
{
    return { home, home + QStringLiteral("/Library/Application Support/Kestro"),
        home + QStringLiteral("/Library/Caches/com.lumbra.ombrel") };
}

AppModel::AppModel(const Platform& platform, Folders folders)
    : m_platform(platform)
    , m_folders(std::move(folders))
    , m_now(platform.loop.now())
    , m_launcher(platform.loop, platform.preferences, platform.workspace, platform.fetcher, platform.log,
          m_folders.caches + QStringLiteral("/favicons"))
    , m_openNotchShortcut(
          KeyCombo::decodeStored(prefs::openNotchShortcut.read(platform.preferences), KeyCombo::openNotchDefault))
    , m_waitingAgentShortcut(
          KeyCombo::decodeStored(prefs::waitingAgentShortcut.read(platform.preferences), std::nullopt))
    , m_hotKeys(platform.hotKeys, platform.log)
    , m_statsCard(platform.preferences)
    , m_agentHealth(platform, m_folders.home, m_folders.data + QStringLiteral("/agents.sock"))
    , m_agentProcesses(platform.peers, platform.loop, [this](const QString& id) { agentEnded(id); })
    , m_wayBack(platform)
{
    for (std::size_t each = 0; each < featureSwitchCount; ++each)
        m_on[each] = switchKey(FeatureSwitch(each)).read(platform.preferences);
    m_agentHealth.repairAll = [this] {
        m_socket.reset();
        applyAgents();
        if (isOn(FeatureSwitch::limits))
            applyLimits();
    };
    m_agentHealth.isWanted = [this](Agent agent) { return isWatched(agent); };
    connect(&m_wayBack, &WayBack::lostChanged, this, &AppModel::showSessions);
    connect(&m_hotKeys, &HotKeyCenter::keyboardChanged, this, &AppModel::registerShortcuts);
    connect(&m_launcher, &LauncherModel::storeChanged, this, [this] {
        syncShortcuts();
        Q_EMIT shownWidgetChanged();
        Q_EMIT changed();
    });
    connect(&m_launcher, &LauncherModel::faviconsChanged, this, &AppModel::changed);
    connect(&m_launcher, &LauncherModel::noticeChanged, this, &AppModel::changed);
}

AppModel::~AppModel() = default;

void AppModel::start()
{
    m_lastTicks = m_platform.counters.cpuTicks(); // so that the first opening has a share to show
    m_launcher.migrate(enabledWidgets());
    // A switch that was turned in the file while nothing ran has no tile yet, or still has one.
    for (const WidgetKind kind : WidgetKinds::migrationOrder)
        syncWidgetItem(kind);
    if (isOn(FeatureSwitch::agents))
        applyAgents();
    if (isOn(FeatureSwitch::limits))
        applyLimits();
    m_started = true;
    registerShortcuts();
    connect(&m_platform.preferences, &PreferenceStore::changed, this, &AppModel::preferencesChanged);
}

std::set<WidgetKind> AppModel::enabledWidgets() const
{
    std::set<WidgetKind> enabled{ WidgetKind::stats, WidgetKind::keyboardCleaner, WidgetKind::shelf,
        WidgetKind::calendar, WidgetKind::timer, WidgetKind::notes, WidgetKind::colorPicker, WidgetKind::mirror,
        WidgetKind::captures, WidgetKind::windows, WidgetKind::displays };
    const auto addIf = [&](bool on, WidgetKind kind) {
        if (on)
            enabled.insert(kind);
    };
    addIf(isOn(FeatureSwitch::agents) || isOn(FeatureSwitch::limits), WidgetKind::ai);
    addIf(isOn(FeatureSwitch::music), WidgetKind::music);
    addIf(isOn(FeatureSwitch::bluetooth), WidgetKind::bluetooth);
    addIf(isOn(FeatureSwitch::weather), WidgetKind::weather);
    addIf(isOn(FeatureSwitch::clipboard), WidgetKind::clipboard);
    return enabled;
}

QList<LaunchItem> AppModel::visibleItems() const
{
    return LauncherStore::visibleItems(m_launcher.store().items(), enabledWidgets(), availableWidgets());
}

QList<WidgetKind> AppModel::visibleWidgets() const
{
    QList<WidgetKind> kinds;
    for (const LaunchItem& item : visibleItems()) {
        if (const auto kind = item.widget())
            kinds.append(*kind);
    }
    return kinds;
}

std::optional<WidgetKind> AppModel::shownWidget() const
{
    const QList<WidgetKind> kinds = visibleWidgets();
    if (m_selectedWidget && kinds.contains(*m_selectedWidget))
        return m_selectedWidget;
    return kinds.isEmpty() ? std::nullopt : std::optional(kinds.first());
}

QString AppModel::shownWidgetName() const
{
    const auto kind = shownWidget();
    return kind ? rawValue(*kind) : QString();
}

double AppModel::cardBodyHeight(WidgetKind kind) const
{
    const Look look = m_platform.appearance.look();
    const double row = look.grown(24);
    constexpr double divider = 9;
    switch (kind) {
    case WidgetKind::ai: {
        const qsizetype sessions = std::clamp<qsizetype>(qsizetype(m_store.sessions.size()), 1, 4);
        const qsizetype agents = agentsEnabled() ? m_agentErrors.size() + sessions : 0;
        const qsizetype limits = limitsEnabled() ? m_limitErrors.size() + 2 : 0;
        return row * double(agents + limits) + (agents > 0 && limits > 0 ? divider : 0);
    }
    case WidgetKind::stats:
    default:
        return look.grown(78);
    }
}

QList<DockItemSize> AppModel::dockSizes(const QList<LaunchItem>& items) const
{
    QList<DockItemSize> sizes;
    sizes.reserve(items.size());
    for (const LaunchItem& item : items)
        sizes.append(item.isDivider() ? DockItemSize::divider : DockItemSize::icon);
    return sizes;
}

void AppModel::setExpanded(bool expanded)
{
    if (m_expanded == expanded)
        return;
    m_expanded = expanded;
    if (expanded) {
        showSessions();
        startLimitsTimer();
        Q_EMIT limitsChanged(); // the rows tell the time that is left
    } else {
        m_limitsTimer.cancel();
        setSelectedWidget(std::nullopt);
    }
    syncStats();
    Q_EMIT expandedChanged();
    Q_EMIT changed();
}

void AppModel::setSelectedWidget(std::optional<WidgetKind> kind)
{
    const bool same = m_selectedWidget == kind;
    m_selectedWidget = kind;
    if (kind)
        Q_EMIT widgetSelected();
    if (same)
        return;
    Q_EMIT shownWidgetChanged();
    Q_EMIT changed();
}

void AppModel::setSettingsPane(SettingsPane pane)
{
    if (m_settingsPane == pane)
        return;
    m_settingsPane = pane;
    Q_EMIT settingsPaneChanged();
}

void AppModel::setSettingsPaneName(const QString& name)
{
    if (const auto pane = fromRaw<SettingsPane>(name))
        setSettingsPane(*pane);
}

void AppModel::setSettingsTarget(const std::optional<QUuid>& id)
{
    m_settingsTarget = id;
    Q_EMIT settingsTargetChanged();
}

void AppModel::setDockVisible(bool visible) { m_dockVisible = visible; }

void AppModel::setDisplaysAsleep(bool asleep) { m_displaysAsleep = asleep; }

} // namespace kestro
