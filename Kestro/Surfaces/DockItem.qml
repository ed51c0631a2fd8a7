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
    required property int windowCount
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
    Accessible.description: windowCount > 0 ? "Running" : badgeText
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
        id: tile

        // Resized rather than scaled, and by whole points on each side: the software renderer drops lines of a scaled
        // picture.
        property real size: mouse.pressedButtons & Qt.LeftButton ? 0.94 : 1
        readonly property int margin: Math.round(root.width * (1 - size) / 2)

        active: !root.isDivider
        anchors { fill: parent; margins: tile.margin }
        Behavior on size {
            NumberAnimation { duration: Theme.reduceMotion ? 0 : 80 }
        }
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

    // The light on a hovered tile.
    Rectangle {
        anchors.fill: tile
        radius: width * 0.24
        color: "white"
        opacity: mouse.containsMouse && !root.isDivider ? 0.14 : 0
        visible: opacity > 0
        Behavior on opacity {
            NumberAnimation { duration: Theme.reduceMotion ? 0 : 80 }
        }
    }

    Rectangle {
        visible: root.focus
        anchors { fill: parent; margins: -3 }
        radius: root.isDivider ? 3 : width * 0.26
        color: "transparent"
        border { width: 2; color: Theme.accent }
    }

    // One dot for an application with a window, two for one with several.
    Row {
        anchors { horizontalCenter: parent.horizontalCenter; top: parent.bottom; topMargin: 1 }
        spacing: 2

        Repeater {
            model: Math.min(root.windowCount, 2)

            Rectangle {
                width: 4
                height: 4
                radius: 2
                color: Theme.secondaryInk
            }
        }
    }

    Badge {
        anchors.horizontalCenter: parent.right
        anchors.verticalCenter: parent.top
        anchors.horizontalCenterOffset: -2
        anchors.verticalCenterOffset: 2
        wingState: root.badge
    }

    MouseArea {
        id: mouse

        anchors.fill: parent
        hoverEnabled: true
        acceptedButtons: Qt.LeftButton | Qt.RightButton
        onEntered: root.controller.hoverItem(root.index)
        onExited: root.controller.leaveItem(root.index)
        onClicked: event => {
            if (event.button === Qt.LeftButton)
                root.controller.clickItem(root.index)
        }
        onPressed: event => {
            if (event.button === Qt.RightButton)
                root.controller.openMenu(root.index)
        }
    }
}
