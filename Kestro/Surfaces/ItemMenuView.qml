import QtQuick
import Kestro.Style

// The rows of an open menu, and round them the room for the shadow, which the implicit size leaves out.
// `current` is the row under the pointer or the arrow keys, -1 for none.
Item {
    id: root

    required property var menu
    required property var entries
    required property real shadowRoom
    property int current: -1

    implicitWidth: Math.max(180, rows.implicitWidth + 12)
    implicitHeight: rows.implicitHeight + 12

    Accessible.role: Accessible.PopupMenu
    Accessible.name: "Item menu"

    CardSurface {
        anchors.fill: parent
        anchors.margins: root.shadowRoom
    }

    Column {
        id: rows

        x: root.shadowRoom + 6
        y: root.shadowRoom + 6
        width: root.width - 2 * x

        Repeater {
            model: root.entries
            delegate: Loader {
                id: entry

                required property int index
                required property var modelData

                width: Math.max(implicitWidth, rows.width)
                sourceComponent: modelData.title === "" ? divider : row

                Component {
                    id: divider

                    MenuDivider { }
                }
                Component {
                    id: row

                    MenuRow {
                        label: entry.modelData.title
                        enabled: entry.modelData.enabled
                        shortcut: entry.modelData.shortcut
                        focus: root.current === entry.index
                        onHoveredChanged: if (hovered) root.current = entry.index
                        onPressed: root.menu.choose(entry.index)
                    }
                }
            }
        }
    }
}
