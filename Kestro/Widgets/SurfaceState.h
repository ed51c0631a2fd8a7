#pragma once

#include "KestroCore/Layout/WidgetKind.h"

#include <QObject>
#include <optional>

namespace kestro {

/// The visible state of the active surface, for features that work only while it is seen. The surfaces write
/// it. Main thread.
class SurfaceState final : public QObject {
    Q_OBJECT
public:
    /// The notch is open, or the sidebar shows a card.
    bool expanded() const { return m_expanded; }
    void setExpanded(bool expanded);
    /// The widget that the user picked on the open surface. Closing forgets it.
    std::optional<WidgetKind> selectedWidget() const { return m_selectedWidget; }
    void setSelectedWidget(std::optional<WidgetKind> kind);
    /// The sidebar's strip is on the screen, and not as a pill.
    bool dockVisible() const { return m_dockVisible; }
    void setDockVisible(bool visible);
    bool displaysAsleep() const { return m_displaysAsleep; }
    void setDisplaysAsleep(bool asleep);

Q_SIGNALS:
    void expandedChanged();
    void selectedWidgetChanged();
    /// The user picked a widget, perhaps the one that was picked already.
    void widgetPicked();
    /// `dockVisible` or `displaysAsleep` changed.
    void visibilityChanged();

private:
    bool m_expanded = false;
    bool m_dockVisible = false;
    bool m_displaysAsleep = false;
    std::optional<WidgetKind> m_selectedWidget;
};

} // namespace kestro
