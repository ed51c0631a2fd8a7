import QtQuick
import Kestro.Style

// The rows of an open menu. `current` is the row under the pointer or the arrow keys, -1 for none.
Item {
    id: root

    required property var menu
    required property var entries
    property int current: -1

    implicitWidth: Math.max(180, rows.implicitWidth + 12)
    implicitHeight: rows.implicitHeight + 12

    Accessible.role: Accessible.PopupMenu
    Accessible.name: "Item menu"

    CardSurface {
        anchors.fill: parent
        shadow: 0
    }

    Column {
        id: rows

        x: 6
        y: 6
        width: root.width - 12

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
                        focus: root.current === entry.index
                        onHoveredChanged: if (hovered) root.current = entry.index
                        onPressed: root.menu.choose(entry.index)
                    }
                }
            }
        }
    }
}
