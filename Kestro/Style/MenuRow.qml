import QtQuick
import Kestro.Style

/// A row of our own menus. The highlight follows the pointer and the keyboard alike.
Pressable {
    id: row

    property string symbol: ""
    property string shortcut: ""
    readonly property bool highlighted: enabled && (hovered || activeFocus)

    role: Accessible.MenuItem
    implicitHeight: Math.max(Theme.rowHeight, Math.ceil(title.implicitHeight) + 6)
    implicitWidth: title.implicitWidth + 24 + (symbol === "" ? 0 : 22) + (shortcut === "" ? 0 : keys.implicitWidth + 24)
    focusRadius: 6

    Rectangle {
        anchors.fill: parent
        z: -1
        radius: row.focusRadius
        visible: row.highlighted
        color: Theme.accent
    }
    Symbol {
        id: icon

        anchors { left: parent.left; leftMargin: 12; verticalCenter: parent.verticalCenter }
        visible: row.symbol !== ""
        name: row.symbol
        size: 14
        color: title.color
    }
    Label {
        id: title

        anchors {
            left: parent.left
            leftMargin: icon.visible ? 34 : 12
            right: keys.left
            verticalCenter: parent.verticalCenter
        }
        text: row.label
        color: row.highlighted ? "white" : Theme.ink
    }
    Label {
        id: keys

        anchors { right: parent.right; rightMargin: 12; verticalCenter: parent.verticalCenter }
        text: row.shortcut
        font: Theme.captionFont
        color: row.highlighted ? "white" : Theme.secondaryInk
    }
}
