#pragma once

#include "Kestro/Surfaces/NotchPanel.h"
#include "Kestro/Surfaces/TrackingHostingView.h"
#include "KestroCore/Layout/DockTypes.h"

#include <optional>

namespace kestro {

class AppModel;
class ToolTip;

/// The card beside the dock: its window, and the animation with which it appears. The window is larger than the card by
/// the room for the shadow, and stands at the card's final place, so that the window manager moves it once and not in
/// every frame.
class CardPanel final {
public:
    /// `toolTips` are for the rows of the card. All must outlive it.
    CardPanel(AppModel& model, QQmlEngine& engine, ToolTip& toolTips);

    /// Shows the card at `target`, in screen coordinates, coming from the side of `edge` if it was hidden.
    void place(const QRectF& target, SidebarEdge edge);
    void orderOut();

    bool isShown() const { return m_target.has_value(); }
    /// Where the card is, or is going.
    const std::optional<QRectF>& target() const { return m_target; }
    TrackingHostingView& host() { return m_host; }

private:
    NotchPanel m_panel;
    TrackingHostingView m_host;
    std::optional<QRectF> m_target;
};

} // namespace kestro
