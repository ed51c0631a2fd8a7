import QtQuick
import Kestro.Style
import Kestro.Clipboard

/// An entry in the picker's list. A press selects it, a second one picks it.
Item {
    id: row

    required property int index
    required property string entryId
    required property string line
    required property string mask
    required property string kindSymbol
    required property var thumbnail
    required property var appIcon
    required property bool pinned
    required property string header
    required property string age
    required property int number
    required property string name
    property bool selected: false

    signal select
    signal pick
    signal menu(real x, real y)

    // What is hidden shows when the pointer has come to rest on it, not in passing.
    property bool unveiled: false

    // One that waits to be used again is not painted, but would still be read out.
    ListView.onPooled: visible = false
    ListView.onReused: visible = true

    width: ListView.view?.width ?? 0
    height: (header === "" ? 0 : caption.height) + line0.height

    Label {
        id: caption

        x: 8
        height: 24 * Theme.growth
        visible: row.header !== ""
        verticalAlignment: Text.AlignVCenter
        text: row.header
        font: Theme.captionFont
        color: Theme.secondaryInk
    }
    Item {
        id: line0

        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        height: 34 * Theme.growth

        Accessible.role: Accessible.ListItem
        Accessible.name: row.name
        Accessible.selectable: true
        Accessible.selected: row.selected
        Accessible.onPressAction: row.select()

        Rectangle {
            anchors.fill: parent
            radius: 8
            visible: row.selected || hover.hovered
            color: row.selected ? Theme.line : Theme.hover
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
                leftMargin: 10
                right: when.left
                rightMargin: 8
                verticalCenter: parent.verticalCenter
            }
            text: row.mask !== "" && !row.unveiled ? row.mask : row.line
        }
        Label {
            id: when

            anchors { right: digit.left; rightMargin: 8; verticalCenter: parent.verticalCenter }
            text: row.age
            font: Theme.captionFont
            color: Theme.secondaryInk
        }
        Label {
            id: digit

            anchors { right: parent.right; rightMargin: 8; verticalCenter: parent.verticalCenter }
            width: 36 * Theme.growth
            horizontalAlignment: Text.AlignRight
            text: row.number > 0 ? "Ctrl " + row.number : ""
            font: Theme.captionFont
            color: Theme.secondaryInk
        }
        HoverHandler {
            id: hover

            onHoveredChanged: if (!hovered) row.unveiled = false
        }
        Timer {
            interval: 500
            running: hover.hovered && row.mask !== ""
            onTriggered: row.unveiled = true
        }
        TapHandler {
            onTapped: row.select()
            onDoubleTapped: row.pick()
        }
        TapHandler {
            acceptedButtons: Qt.RightButton
            onTapped: point => {
                row.select();
                const at = row.mapToItem(null, point.position.x, point.position.y + line0.y);
                row.menu(at.x, at.y);
            }
        }
    }
}
