#include "Kestro/Widgets/WidgetItems.h"

#include "Kestro/Layout/LauncherModel.h"
#include "Kestro/Preferences/Preference.h"
#include "Kestro/Widgets/Feature.h"
#include "Kestro/Widgets/Widget.h"

#include <QScopedValueRollback>
#include <algorithm>

namespace kestro {

namespace {

LaunchItem newWidget(WidgetKind kind) { return { QUuid::createUuid(), LaunchItem::Widget{ kind } }; }

} // namespace

WidgetItems::WidgetItems(FeatureHost& host, LauncherModel& launcher, PreferenceStore& preferences)
    : m_host(host)
    , m_launcher(launcher)
    , m_preferences(preferences)
{
    connect(&launcher, &LauncherModel::storeChanged, this, &WidgetItems::updateShown);
    connect(&host.surface, &SurfaceState::expandedChanged, this, &WidgetItems::updateShown);
    connect(&host.surface, &SurfaceState::selectedWidgetChanged, this, &WidgetItems::updateShown);
    connect(&host.switches, &FeatureSwitches::turned, this, &WidgetItems::switchTurned);
}

void WidgetItems::add(Widget& widget)
{
    const auto place = std::find_if(
        m_widgets.begin(), m_widgets.end(), [&widget](const Widget* each) { return each->kind() > widget.kind(); });
    m_widgets.insert(place, &widget);
    connect(&widget, &Widget::tileChanged, this, [this, kind = widget.kind()] { Q_EMIT tileChanged(kind); });
    connect(&widget, &Widget::heightChanged, this, [this, kind = widget.kind()] {
        if (kind == m_shown)
            Q_EMIT heightChanged();
    });
}

void WidgetItems::start()
{
    m_launcher.migrate(enabled());
    for (const WidgetKind kind : WidgetKinds::migrationOrder)
        syncWidgetItem(kind);
    updateShown();
}

Widget* WidgetItems::find(WidgetKind kind) const
{
    const auto found =
        std::find_if(m_widgets.begin(), m_widgets.end(), [kind](const Widget* each) { return each->kind() == kind; });
    return found == m_widgets.end() ? nullptr : *found;
}

QList<WidgetKind> WidgetItems::available() const
{
    QList<WidgetKind> kinds;
    for (const Widget* widget : m_widgets)
        kinds.append(widget->kind());
    return kinds;
}

bool WidgetItems::isEnabled(WidgetKind kind) const
{
    const QStringList keys = toggleKeys(kind);
    return keys.isEmpty() || std::any_of(keys.begin(), keys.end(), [this](const QString& key) {
        return Stored<bool>::from(m_preferences.value(key)).value_or(false);
    });
}

std::set<WidgetKind> WidgetItems::enabled() const
{
    std::set<WidgetKind> kinds;
    for (const WidgetKind kind : allCases<WidgetKind>()) {
        if (isEnabled(kind))
            kinds.insert(kind);
    }
    return kinds;
}

QList<LaunchItem> WidgetItems::visibleItems() const
{
    return LauncherStore::visibleItems(m_launcher.store().items(), enabled(), available());
}

QList<WidgetKind> WidgetItems::visibleWidgets() const
{
    QList<WidgetKind> kinds;
    for (const LaunchItem& item : visibleItems()) {
        if (const auto kind = item.widget())
            kinds.append(*kind);
    }
    return kinds;
}

std::optional<WidgetKind> WidgetItems::shown() const
{
    const QList<WidgetKind> kinds = visibleWidgets();
    const auto selected = m_host.surface.selectedWidget();
    if (selected && kinds.contains(*selected))
        return selected;
    return kinds.isEmpty() ? std::nullopt : std::optional(kinds.first());
}

void WidgetItems::updateShown()
{
    const auto now = shown();
    Widget* const onScreen = m_host.surface.expanded() ? find(now) : nullptr;
    if (onScreen != m_onScreen) {
        if (Widget* const before = std::exchange(m_onScreen, onScreen))
            before->shown(false);
        if (onScreen)
            onScreen->shown(true);
    }
    if (std::exchange(m_shown, now) != now)
        Q_EMIT shownChanged();
}

std::optional<QString> WidgetItems::addWidget(WidgetKind kind)
{
    const QStringList toggles = toggleKeys(kind);
    if (toggles.isEmpty())
        return m_launcher.add(newWidget(kind));

    FeatureSwitch* const feature = m_host.switches.find(toggles.first());
    if (feature && !feature->isOn())
        feature->turn(true);
    else
        syncWidgetItem(kind);
    if (m_launcher.store().contains(kind))
        return std::nullopt;
    return m_launcher.add(newWidget(kind)); // says what was in the way
}

void WidgetItems::removeItem(const LaunchItem& item)
{
    if (const auto kind = item.widget()) {
        const QScopedValueRollback guard(m_suppressItemSync, true);
        for (const QString& key : toggleKeys(*kind)) {
            FeatureSwitch* const feature = m_host.switches.find(key);
            if (feature && feature->isOn())
                feature->turn(false);
            else
                m_preferences.setValue(key, false);
        }
    }
    m_launcher.remove(item.id);
}

void WidgetItems::syncWidgetItem(WidgetKind kind)
{
    if (m_suppressItemSync)
        return;
    const bool wanted = isEnabled(kind);
    const bool there = m_launcher.store().contains(kind);
    if (wanted && !there) {
        m_launcher.add(newWidget(kind)); // a layout that is full simply stays as it is
    } else if (!wanted && there) {
        for (const LaunchItem& item : m_launcher.store().items()) {
            if (item.widget() == kind)
                return m_launcher.remove(item.id);
        }
    }
}

void WidgetItems::switchTurned(const QString& key)
{
    for (const WidgetKind kind : WidgetKinds::migrationOrder) {
        if (toggleKeys(kind).contains(key))
            syncWidgetItem(kind);
    }
    updateShown();
}

void WidgetItems::open(const LaunchItem& item, void (WidgetItems::*card)(WidgetKind))
{
    const auto kind = item.widget();
    Widget* const widget = find(kind);
    if (!kind)
        m_launcher.open(item);
    else if (widget && widget->open())
        return;
    else if (widget && widget->hasWindow())
        m_host.openWindow(*kind);
    else
        (this->*card)(*kind);
}

void WidgetItems::click(const LaunchItem& item) { open(item, &WidgetItems::select); }

void WidgetItems::perform(const LaunchItem& item) { open(item, &WidgetItems::showCard); }

void WidgetItems::select(WidgetKind kind) { m_host.surface.setSelectedWidget(kind); }

void WidgetItems::showCard(WidgetKind kind) { m_host.showCard(kind); }

QList<DockItemSize> dockSizes(const QList<LaunchItem>& items)
{
    QList<DockItemSize> sizes;
    sizes.reserve(items.size());
    for (const LaunchItem& item : items)
        sizes.append(item.isDivider() ? DockItemSize::divider : DockItemSize::icon);
    return sizes;
}

} // namespace kestro
