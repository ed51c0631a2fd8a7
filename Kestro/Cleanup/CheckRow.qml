import QtQuick
import Kestro.Style

/// A line with a box to be checked, a name and a figure.
Pressable {
    id: row

    property string figure: ""
    property bool checked: false
    property bool strong: false

    signal checkWanted(bool on)

    role: Accessible.CheckBox
    implicitHeight: Theme.rowHeight
    onPressed: checkWanted(!checked)

    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.description: figure
    Accessible.onToggleAction: if (row.enabled) row.checkWanted(!row.checked)

    Rectangle {
        id: box

        x: row.strong ? 4 : 24
        anchors.verticalCenter: parent.verticalCenter
        width: 16
        height: 16
        radius: 4
        color: row.checked ? Theme.accent : Theme.control
        border { width: row.checked ? 0 : 1; color: Theme.line }

        Symbol {
            anchors.centerIn: parent
            visible: row.checked
            name: Symbols.checkmark
            size: 12
            color: Theme.onAccent
        }
    }
    Label {
        anchors {
            left: box.right
            leftMargin: 8
            right: size.left
            rightMargin: 12
            verticalCenter: parent.verticalCenter
        }
        text: row.label
        font: row.strong ? Theme.strongFont : Theme.bodyFont
    }
    Figures {
        id: size

        anchors { right: parent.right; rightMargin: 16; verticalCenter: parent.verticalCenter }
        text: row.figure
        font: Theme.captionFont
        color: Theme.secondaryInk
    }
}
