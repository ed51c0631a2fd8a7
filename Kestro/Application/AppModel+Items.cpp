#include "Kestro/Application/AppModel.h"
#include "Kestro/Application/FeatureSwitches.h"
#include "Kestro/Platform/PreferenceStore.h"

#include <QScopedValueRollback>

namespace kestro {

namespace {

LaunchItem newWidget(WidgetKind kind) { return { QUuid::createUuid(), LaunchItem::Widget{ kind } }; }

} // namespace

std::optional<QString> AppModel::addWidget(WidgetKind kind)
{
    const QStringList toggles = toggleKeys(kind);
    if (toggles.isEmpty())
        return m_launcher.add(newWidget(kind));

    const auto feature = switchNamed(toggles.first());
    if (feature && !isOn(*feature))
        turn(*feature, true);
    else
        syncWidgetItem(kind);
    if (m_launcher.store().contains(kind))
        return std::nullopt;
    return m_launcher.add(newWidget(kind)); // says what was in the way
}

void AppModel::removeItem(const LaunchItem& item)
{
    if (const auto kind = item.widget()) {
        const QScopedValueRollback guard(m_suppressItemSync, true);
        for (const QString& key : toggleKeys(*kind)) {
            m_platform.preferences.setValue(key, false);
            if (const auto feature = switchNamed(key); feature && isOn(*feature))
                turn(*feature, false);
        }
    }
    removeLaunchItem(item.id);
}

void AppModel::removeLaunchItem(const QUuid& id) { m_launcher.remove(id); }

void AppModel::syncWidgetItem(WidgetKind kind)
{
    if (m_suppressItemSync)
        return;
    const bool wanted = enabledWidgets().contains(kind);
    const bool there = m_launcher.store().contains(kind);
    if (wanted && !there) {
        m_launcher.add(newWidget(kind)); // a layout that is full simply stays as it is
    } else if (!wanted && there) {
        for (const LaunchItem& item : m_launcher.store().items()) {
            if (item.widget() == kind)
                return removeLaunchItem(item.id);
        }
    }
}

void AppModel::click(const LaunchItem& item)
{
    const auto kind = item.widget();
    if (!kind)
        m_launcher.open(item);
    else if (hasWindow(*kind))
        openWindow(*kind);
    else
        setSelectedWidget(*kind);
}

void AppModel::perform(const LaunchItem& item)
{
    const auto kind = item.widget();
    if (!kind)
        m_launcher.open(item);
    else if (hasWindow(*kind))
        openWindow(*kind);
    else
        showCard(*kind);
}

bool AppModel::shownWidgetHasWindow() const
{
    const auto kind = shownWidget();
    return kind && hasWindow(*kind);
}

void AppModel::openShownWindow()
{
    if (const auto kind = shownWidget(); kind && hasWindow(*kind))
        openWindow(*kind);
}

} // namespace kestro
