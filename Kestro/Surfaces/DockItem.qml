import QtQuick
import Kestro.Style

// One item of the strip: a tile with its badge, or a divider's line.
Item {
    id: root

    required property int index
    required property string name
    required property string kind
    required property string symbol
    required property var picture
    required property real share
    required property string badge
    required property string badgeText
    required property bool isDivider
    required property rect frame
    required property var controller
    required property var dock

    x: frame.x
    y: frame.y
    width: frame.width
    height: frame.height
    visible: !dock.collapsed
    // So that a screen reader says where the keyboard is.
    focus: dock.focusedRow === index
    onFocusChanged: if (focus) forceActiveFocus()

    Accessible.role: isDivider ? Accessible.Separator : Accessible.Button
    Accessible.name: name
    Accessible.description: badgeText
    Accessible.focusable: true
    Accessible.onPressAction: root.controller.clickItem(root.index)

    Rectangle {
        readonly property bool upright: root.dock.edge === "bottom"

        visible: root.isDivider
        anchors.centerIn: parent
        width: upright ? 1 : parent.width - 8
        height: upright ? parent.height - 8 : 1
        color: Theme.line
    }

    Loader {
        active: !root.isDivider
        anchors.fill: parent
        sourceComponent: Tile {
            kind: root.kind
            symbol: root.symbol
            image: root.picture
            share: root.share
            framed: root.symbol === Symbols.globe
            monochrome: root.dock.monochrome
            restSize: root.dock.iconSize
        }
    }

    Rectangle {
        visible: root.focus
        anchors { fill: parent; margins: -3 }
        radius: root.isDivider ? 3 : width * 0.26
        color: "transparent"
        border { width: 2; color: Theme.accent }
    }

    Badge {
        anchors.horizontalCenter: parent.right
        anchors.verticalCenter: parent.top
        anchors.horizontalCenterOffset: -2
        anchors.verticalCenterOffset: 2
        wingState: root.badge
    }

    MouseArea {
        anchors.fill: parent
        hoverEnabled: true
        acceptedButtons: Qt.LeftButton | Qt.RightButton
        onEntered: root.controller.hoverItem(root.index)
        onExited: root.controller.leaveItem(root.index)
        onClicked: mouse => {
            if (mouse.button === Qt.LeftButton)
                root.controller.clickItem(root.index)
        }
        onPressed: mouse => {
            if (mouse.button === Qt.RightButton)
                root.controller.openMenu(root.index)
        }
    }
}
