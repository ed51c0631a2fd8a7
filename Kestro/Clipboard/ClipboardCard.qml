import QtQuick
import Kestro.Style
import Kestro.Clipboard

// The latest entries, to copy back with one press.
Item {
    id: root

    required property ClipboardWidget widget
    required property QtObject toolTips

    Column {
        x: -8
        width: parent.width + 16

        Label {
            x: 8
            height: 32 * Theme.growth
            visible: root.widget.rows.count === 0
            verticalAlignment: Text.AlignVCenter
            text: "Nothing copied yet"
            color: Theme.secondaryInk
            Accessible.role: Accessible.StaticText
            Accessible.name: text
            Accessible.ignored: !visible
        }
        Repeater {
            model: root.widget.rows

            Pressable {
                id: row

                required property string entryId
                required property string line
                required property string mask
                required property string kindSymbol
                required property var thumbnail
                required property var appIcon
                required property bool pinned
                required property bool copied
                required property string age
                required property string name
                property bool unveiled: false

                width: parent.width
                height: 32 * Theme.growth
                label: name
                onPressed: root.widget.copyBack(entryId)
                onHoveredChanged: if (!hovered) unveiled = false

                Accessible.description: copied ? "Copied" : ""

                Timer {
                    interval: 500
                    running: row.hovered && row.mask !== ""
                    onTriggered: row.unveiled = true
                }
                Rectangle {
                    anchors.fill: parent
                    z: -1
                    radius: 6
                    visible: row.hovered
                    color: row.down ? Theme.line : Theme.hover
                }
                ClipIcon {
                    id: icon

                    anchors { left: parent.left; leftMargin: 8; verticalCenter: parent.verticalCenter }
                    symbol: row.kindSymbol
                    thumbnail: row.thumbnail
                    appIcon: row.appIcon
                }
                Label {
                    anchors {
                        left: icon.right
                        leftMargin: 8
                        right: buttons.visible ? buttons.left : word.left
                        rightMargin: 8
                        verticalCenter: parent.verticalCenter
                    }
                    text: row.mask !== "" && !row.unveiled ? row.mask : row.line
                }
                Label {
                    id: word

                    anchors { right: parent.right; rightMargin: 8; verticalCenter: parent.verticalCenter }
                    visible: !buttons.visible
                    text: row.copied ? "Copied" : row.age
                    font: Theme.captionFont
                    color: row.copied ? Theme.greenInk : Theme.secondaryInk
                }
                Row {
                    id: buttons

                    anchors { right: parent.right; rightMargin: 6; verticalCenter: parent.verticalCenter }
                    visible: row.hovered && !row.copied

                    HoverButton {
                        visible: root.widget.pastes
                        symbol: Symbols.docOnClipboard
                        symbolSize: 12
                        label: "Paste"
                        activeFocusOnTab: false
                        onPressed: root.widget.paste(row.entryId)
                        Accessible.ignored: !buttons.visible || !visible
                    }
                    HoverButton {
                        symbol: row.pinned ? Symbols.pinFill : Symbols.pin
                        symbolSize: 12
                        label: row.pinned ? "Unpin" : "Pin"
                        activeFocusOnTab: false
                        onPressed: root.widget.togglePin(row.entryId)
                        Accessible.ignored: !buttons.visible
                    }
                }
            }
        }
    }
    PushButton {
        anchors { left: parent.left; bottom: parent.bottom }
        label: "Show all"
        onPressed: root.widget.showAll()
    }
    PushButton {
        anchors { right: parent.right; bottom: parent.bottom }
        visible: root.widget.rows.count > 0
        label: "Forget the last copy"
        onPressed: root.widget.forgetLast()
        Accessible.ignored: !visible
    }
}
