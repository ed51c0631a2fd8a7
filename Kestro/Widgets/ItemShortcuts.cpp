#include "Kestro/Widgets/ItemShortcuts.h"

#include "Kestro/Layout/LauncherModel.h"
#include "Kestro/Widgets/WidgetItems.h"

#include <algorithm>

namespace kestro {

ItemShortcuts::ItemShortcuts(LauncherModel& launcher, WidgetItems& items)
    : m_launcher(launcher)
    , m_items(items)
{
}

QList<ShortcutOwner> ItemShortcuts::owners() const
{
    QList<ShortcutOwner> owners;
    for (const LaunchItem& item : m_launcher.store().items()) {
        if (!item.isDivider())
            owners.append(ShortcutOwner::launchItem(item.id));
    }
    return owners;
}

std::optional<KeyCombo> ItemShortcuts::combo(const ShortcutOwner& owner) const
{
    const LaunchItem* item = m_launcher.store().item(owner.id());
    return item ? item->shortcut : std::nullopt;
}

void ItemShortcuts::store(const std::optional<KeyCombo>& combo, const ShortcutOwner& owner)
{
    m_launcher.setShortcut(combo, owner.id());
}

QString ItemShortcuts::name(const ShortcutOwner& owner) const
{
    const LaunchItem* item = m_launcher.store().item(owner.id());
    return item ? m_launcher.displayName(*item) : QStringLiteral("a launcher item");
}

bool ItemShortcuts::isActive(const ShortcutOwner& owner) const
{
    const QList<LaunchItem> items = m_items.visibleItems();
    return std::any_of(items.begin(), items.end(), [id = owner.id()](const LaunchItem& item) { return item.id == id; });
}

void ItemShortcuts::perform(const ShortcutOwner& owner)
{
    if (const LaunchItem* item = m_launcher.store().item(owner.id()))
        m_items.perform(LaunchItem(*item)); // what is performed may change the layout
}

} // namespace kestro
