#pragma once

#include "KestroCore/Layout/DockLayout.h"
#include "KestroCore/Layout/LaunchItem.h"

#include <QObject>
#include <optional>
#include <set>
#include <vector>

namespace kestro {

class LauncherModel;
class PreferenceStore;
class Widget;
struct FeatureHost;

/// The widgets that there are, and their items in the layout: adding or removing an item switches its feature, and the
/// reverse. Main thread.
class WidgetItems final : public QObject {
    Q_OBJECT
public:
    /// All must outlive it.
    WidgetItems(FeatureHost& host, LauncherModel& launcher, PreferenceStore& preferences);

    /// `widget` must outlive it. Not after `start`.
    void add(Widget& widget);
    /// Brings the layout in line with the switches: one may have been turned in the file while nothing ran.
    void start();

    Widget* find(WidgetKind kind) const; ///< null where no feature has it
    Widget* find(std::optional<WidgetKind> kind) const { return kind ? find(*kind) : nullptr; }
    /// In the order of their kinds. The layout may name others, which wait in it unseen.
    QList<WidgetKind> available() const;
    std::set<WidgetKind> enabled() const;
    QList<LaunchItem> visibleItems() const;
    QList<WidgetKind> visibleWidgets() const;
    /// The selected one while it is visible, else the first that is.
    std::optional<WidgetKind> shown() const;

    /// The message to show where it fails, else nothing.
    std::optional<QString> addWidget(WidgetKind kind);
    void removeItem(const LaunchItem& item);
    void syncWidgetItem(WidgetKind kind);
    /// The effect of a click on the item's tile.
    void click(const LaunchItem& item);
    /// The effect of the item's shortcut.
    void perform(const LaunchItem& item);

Q_SIGNALS:
    /// `shown` is another.
    void shownChanged();
    /// The widget's tile looks otherwise.
    void tileChanged(WidgetKind kind);
    /// The height of the card that is shown is another.
    void heightChanged();

private:
    bool isEnabled(WidgetKind kind) const;
    void open(const LaunchItem& item, void (WidgetItems::*card)(WidgetKind));
    void select(WidgetKind kind);
    void showCard(WidgetKind kind);
    void updateShown();
    void switchTurned(const QString& key);

    FeatureHost& m_host;
    LauncherModel& m_launcher;
    PreferenceStore& m_preferences;
    std::vector<Widget*> m_widgets;
    std::optional<WidgetKind> m_shown;
    Widget* m_onScreen = nullptr; ///< whose card is on the open surface
    bool m_suppressItemSync = false;
};

/// One size for each item: an icon or a divider.
QList<DockItemSize> dockSizes(const QList<LaunchItem>& items);

} // namespace kestro
