import QtQuick
import Kestro.Style

/// A row of an open picker.
Pressable {
    id: row

    property bool checked: false
    property bool highlighted: false
    /// Whether any row has a dot: the titles stand in one column.
    property bool dotted: false
    property color dot: "transparent"
    readonly property color ink: highlighted ? Theme.onAccent : Theme.ink

    role: Accessible.ListItem
    activeFocusOnTab: false
    implicitWidth: Math.ceil(title.implicitWidth) + 44 + (dotted ? 20 : 0)

    // The list has the keys: a space may belong to a title that is being typed.
    Keys.enabled: false

    Accessible.selectable: true
    Accessible.selected: checked

    Rectangle {
        anchors.fill: parent
        z: -1
        radius: row.focusRadius
        visible: row.highlighted
        color: Theme.accent
    }
    Symbol {
        anchors { left: parent.left; leftMargin: 8; verticalCenter: parent.verticalCenter }
        visible: row.checked
        name: Symbols.checkmark
        size: 12
        color: row.ink
    }
    Rectangle {
        id: spot

        anchors { left: parent.left; leftMargin: 28; verticalCenter: parent.verticalCenter }
        width: 12
        height: 12
        radius: 6
        visible: row.dot.a > 0
        color: row.dot
        border { width: row.highlighted ? 1 : 0; color: Theme.onAccent }
    }
    Label {
        id: title

        anchors {
            left: parent.left
            leftMargin: row.dotted ? 48 : 28
            right: parent.right
            rightMargin: 8
            verticalCenter: parent.verticalCenter
        }
        text: row.label
        color: row.ink
    }
}
