import QtQuick
import Kestro.Style

// The strip along a screen's edge: the ground and the icons that stand on it.
Item {
    id: root

    required property var controller
    required property var dock

    opacity: dock.revealed ? 1 : 0
    Behavior on opacity {
        enabled: root.dock.fades
        NumberAnimation { duration: Theme.reduceMotion ? 0 : 200 }
    }

    DockSurface {
        x: root.dock.dockRect.x
        y: root.dock.dockRect.y
        width: root.dock.dockRect.width
        height: root.dock.dockRect.height
        anchorEdge: root.dock.edge
        collapsed: root.dock.collapsed
        placement: root.dock.placement
        material: root.dock.material
        tintName: root.dock.tint
    }

    Repeater {
        model: root.dock.items
        delegate: DockItem {
            controller: root.controller
            dock: root.dock
        }
    }
}
