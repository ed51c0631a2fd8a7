import QtQuick
import Kestro.Style

// A pane in the list of panes. The chosen one is coloured while the list has the keyboard.
Pressable {
    id: row

    required property string symbol
    required property bool selected
    required property bool focused
    readonly property color ink: selected && focused ? Theme.onAccent : Theme.ink

    role: Accessible.PageTab
    activeFocusOnTab: false
    focusRadius: 8
    implicitWidth: Math.ceil(title.implicitWidth) + 46
    implicitHeight: Math.max(32, Math.ceil(title.implicitHeight) + 12)

    Accessible.selectable: true
    Accessible.selected: selected

    Rectangle {
        anchors.fill: parent
        z: -1
        radius: row.focusRadius
        visible: row.selected || row.hovered
        color: !row.selected ? Theme.hover : row.focused ? Theme.accent : Theme.line
    }
    Symbol {
        id: icon

        anchors { left: parent.left; leftMargin: 10; verticalCenter: parent.verticalCenter }
        name: row.symbol
        size: 16
        color: row.selected && row.focused ? Theme.onAccent : Theme.secondaryInk
    }
    Label {
        id: title

        anchors { left: icon.right; leftMargin: 10; right: parent.right; rightMargin: 8; verticalCenter: parent.verticalCenter }
        text: row.label
        color: row.ink
    }
}
