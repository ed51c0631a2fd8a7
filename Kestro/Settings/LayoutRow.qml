import QtQuick
import Kestro.Shortcuts
import Kestro.Style

// One item of the layout: a handle to drag it by, what it is, its shortcut, and the buttons that move and remove it.
Item {
    id: row

    required property int index
    required property string name
    required property string kind
    required property string symbol
    required property var picture
    required property bool isDivider
    required property string removeLabel
    required property var recorder
    required property string payload
    required property var list
    property bool selected: false
    property int gap: -1 // the row before which what is dragged would land; -1 while nothing is
    readonly property string error: recorder ? recorder.error : ""
    readonly property real dragY: drag.centroid.position.y + handle.y ///< the pointer's, in the row
    readonly property alias dragging: drag.active

    signal dragMoved
    signal dropped

    width: parent?.width ?? 0
    implicitHeight: line.height + (error === "" ? 0 : warning.height + 8)
    height: implicitHeight
    opacity: dragging ? 0.5 : 1

    Accessible.role: Accessible.ListItem
    Accessible.name: name
    Accessible.selected: selected
    Accessible.selectable: true

    Rectangle {
        anchors { fill: parent; margins: 2 }
        visible: row.selected
        radius: Theme.radius - 2
        color: "transparent"
        border { width: 2; color: Theme.accent }
    }
    Rectangle {
        anchors { left: parent.left; right: parent.right; leftMargin: Theme.horizontalPadding }
        height: 1
        visible: row.index > 0
        color: Theme.hairline
    }
    Rectangle {
        x: Theme.horizontalPadding
        y: row.gap === row.index ? -1 : row.height - 1
        z: 1
        width: row.width - 2 * x
        height: 2
        radius: 1
        visible: row.gap >= 0 && (row.gap === row.index || row.gap > row.index && row.index === row.list.count - 1)
        color: Theme.accent
    }
    Item {
        id: line

        width: parent.width
        height: Math.max(44, Math.ceil(title.implicitHeight) + 20)

        Item {
            id: handle

            width: 32
            height: parent.height

            Symbol {
                anchors.centerIn: parent
                name: Symbols.lineHorizontal3
                size: 14
                color: handlePointer.hovered || row.dragging ? Theme.ink : Theme.secondaryInk
            }
            HoverHandler {
                id: handlePointer

                cursorShape: row.dragging ? Qt.ClosedHandCursor : Qt.OpenHandCursor
            }
            DragHandler {
                id: drag

                target: null
                xAxis.enabled: false
                dragThreshold: 4
                onTranslationChanged: if (active) row.dragMoved()
                onActiveChanged: active ? row.dragMoved() : row.dropped()
            }
        }
        Tile {
            id: tile

            anchors { left: handle.right; verticalCenter: parent.verticalCenter }
            width: 24
            height: 24
            restSize: 24
            visible: !row.isDivider
            kind: row.kind
            symbol: row.symbol
            image: row.picture
            framed: row.symbol === Symbols.globe
        }
        Rectangle {
            anchors { left: handle.right; verticalCenter: parent.verticalCenter }
            width: 24
            height: 1
            visible: row.isDivider
            color: Theme.secondaryInk
        }
        Label {
            id: title

            anchors {
                left: tile.right
                leftMargin: 12
                right: shortcut.visible ? shortcut.left : buttons.left
                rightMargin: 8
                verticalCenter: parent.verticalCenter
            }
            text: row.name
            color: row.isDivider ? Theme.secondaryInk : Theme.ink
        }
        Loader {
            id: shortcut

            anchors { right: buttons.left; rightMargin: 8; verticalCenter: parent.verticalCenter }
            visible: active
            active: !row.isDivider
            sourceComponent: RecorderField {
                recorder: row.recorder
                subject: row.name
            }
        }
        Row {
            id: buttons

            anchors { right: parent.right; rightMargin: 12; verticalCenter: parent.verticalCenter }

            HoverButton {
                label: "Move Up"
                symbol: Symbols.chevronUp
                enabled: row.index > 0
                onPressed: row.list.moveBy(row.index, -1)

                Accessible.description: enabled ? row.name : "dimmed"
            }
            HoverButton {
                label: "Move Down"
                symbol: Symbols.chevronDown
                enabled: row.index < row.list.count - 1
                onPressed: row.list.moveBy(row.index, 1)

                Accessible.description: enabled ? row.name : "dimmed"
            }
            HoverButton {
                label: row.removeLabel
                symbol: Symbols.xmark
                symbolSize: 12
                onPressed: row.list.remove(row.index)

                Accessible.description: row.name
            }
        }
    }
    Caption {
        id: warning

        anchors { left: parent.left; right: parent.right; leftMargin: 68; rightMargin: 16; top: line.bottom }
        visible: row.error !== ""
        text: row.error
        warning: true
    }
}
