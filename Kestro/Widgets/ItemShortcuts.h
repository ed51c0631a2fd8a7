#pragma once

#include "Kestro/Shortcuts/ShortcutSource.h"

namespace kestro {

class LauncherModel;
class WidgetItems;

/// The shortcuts of the layout's items, which the items themselves hold. One whose item is out of sight rests, and
/// still blocks its combination. Main thread.
class ItemShortcuts final : public ShortcutSource {
public:
    /// Both must outlive it.
    ItemShortcuts(LauncherModel& launcher, WidgetItems& items);

    QString family() const override { return ShortcutOwner::launchItem({}).family(); }
    QString section() const override { return QStringLiteral("Layout"); }
    QList<ShortcutOwner> owners() const override;
    std::optional<KeyCombo> combo(const ShortcutOwner& owner) const override;
    void store(const std::optional<KeyCombo>& combo, const ShortcutOwner& owner) override;
    QString name(const ShortcutOwner& owner) const override;
    bool isActive(const ShortcutOwner& owner) const override;
    void perform(const ShortcutOwner& owner) override;

private:
    LauncherModel& m_launcher;
    WidgetItems& m_items;
};

} // namespace kestro
