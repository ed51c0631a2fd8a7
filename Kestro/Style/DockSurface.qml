import QtQuick
import Kestro.Style

/// The ground of the strip. `placement` is "attached" or "detached", `anchorEdge` "left", "right" or "bottom",
/// `material` "solid", "translucent" or "glass", `tintName` the raw value of a tint; as the preferences have them.
/// Collapsed it is a capsule. An attached one takes the whole frame, the flares of 10 points at its ends included.
SurfaceItem {
    id: dock

    property bool collapsed: false
    property string placement: "attached"
    property string anchorEdge: "right"
    property string material: "translucent"
    property string tintName: "plain"
    property bool castsShadow: false

    readonly property real opacityOfMaterial: !Theme.composited || material === "solid" ? 1 : material === "glass" ? 0.72 : 0.88

    edge: collapsed || placement === "detached" ? SurfaceItem.Detached
        : anchorEdge === "left" ? SurfaceItem.LeftEdge
        : anchorEdge === "bottom" ? SurfaceItem.BottomEdge : SurfaceItem.RightEdge
    radius: collapsed ? Math.min(width, height) / 2 : Theme.radius
    fill: Qt.rgba(Theme.window.r, Theme.window.g, Theme.window.b, opacityOfMaterial)
    tint: Theme.tint(tintName)
    hairline: Theme.hairline
    shadow: castsShadow && Theme.composited ? 0.25 : 0
}
