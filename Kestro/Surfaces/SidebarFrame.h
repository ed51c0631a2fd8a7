#pragma once

#include "Kestro/Preferences/SidebarPrefs.h"
#include "KestroCore/Layout/DockGeometry.h"
#include "KestroCore/Layout/DockLayout.h"
#include "KestroCore/Layout/LaunchItem.h"

#include <QList>
#include <QRectF>
#include <optional>

namespace kestro {

/// The items and their places along the strip.
struct DockArrangement {
    QList<LaunchItem> items;
    QList<DockItemSize> sizes; ///< one an item
    double iconSize = 0; ///< as fitted, in points
    DockLayout layout; ///< as drawn
    DockLayout measure; ///< at rest: no pointer, nothing magnified

    bool operator==(const DockArrangement&) const = default;

    /// The widget's row, or -1.
    qsizetype rowOf(WidgetKind kind) const;
};

/// One complete placement of the dock; rectangles are in screen coordinates.
struct SidebarFrame {
    QRectF band; ///< of the strip's window
    QRectF dock; ///< the dock as drawn, or the pill
    QRectF rest; ///< the dock at rest length, as thick as magnification makes it: where the pointer magnifies
    DockArrangement arrangement;
    double inset = 0; ///< the flare at each end of an attached dock
    bool collapsed = false; ///< the dock shows as a pill
    std::optional<QRectF> cap{}; ///< the stretch at the leading end that is kept free of icons

    bool operator==(const SidebarFrame&) const = default;

    /// An icon's place in the strip's window (y downwards), as drawn.
    QRectF iconRect(qsizetype index, SidebarEdge edge) const;
    /// Where along the edge the middle of an icon lies at rest, as a screen coordinate.
    double anchorOf(qsizetype index, SidebarEdge edge) const;
    /// The card of the widget in row `index`. It keeps clear of the dock at its thickest, so that it stays where it
    /// opened while the icons swell and shrink.
    QRectF cardRect(QSizeF size, qsizetype index, SidebarEdge edge, const QRectF& visible) const;
};

/// The circumstances of a placement, beside the items and the preferences.
struct DockMoment {
    std::optional<double> pointer{}; ///< where along the strip the pointer magnifies
    bool pillOpen = false;
    std::optional<double> pillCenter{}; ///< where along the edge the pill was touched
};

/// The placement of a dock of `items` on a screen of which `visible` is free.
SidebarFrame placeDock(const QList<LaunchItem>& items, const QList<DockItemSize>& sizes, const SidebarPrefs& prefs,
    const QRectF& visible, const DockMoment& moment);

} // namespace kestro
