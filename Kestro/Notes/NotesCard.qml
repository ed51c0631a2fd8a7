import QtQuick
import Kestro.Style
import Kestro.Notes

// The notes' card: the beginning of the note, and a button that opens the window.
Item {
    id: root

    required property NotesWidget widget
    required property QtObject toolTips
    readonly property NotesModel notes: widget.notes

    Label {
        anchors { left: parent.left; right: button.left; rightMargin: 12; top: parent.top; bottom: warning.top }
        wrapMode: Text.Wrap
        maximumLineCount: 100
        clip: true
        visible: root.notes.error === ""
        text: root.notes.text !== "" ? root.notes.preview : root.notes.loaded ? "Empty note" : ""
        color: root.notes.text !== "" ? Theme.ink : Theme.secondaryInk

        Accessible.role: Accessible.StaticText
        Accessible.name: text
        Accessible.ignored: text === ""
    }
    Caption {
        id: warning

        readonly property bool instead: root.notes.error !== ""

        anchors { left: parent.left; right: button.left; rightMargin: 12; bottom: parent.bottom }
        height: instead ? root.height : visible ? implicitHeight : 0
        visible: text !== ""
        warning: true
        text: instead ? root.notes.error : root.notes.saveError
    }
    Pressable {
        id: button

        anchors { right: parent.right; bottom: parent.bottom }
        implicitWidth: row.implicitWidth + 16
        implicitHeight: 24 * Theme.growth
        label: "Edit"
        onPressed: root.widget.openWindow()

        Rectangle {
            anchors.fill: parent
            z: -1
            radius: button.focusRadius
            color: button.down ? Theme.line : button.hovered ? Theme.hover : Theme.control
        }
        Row {
            id: row

            anchors.centerIn: parent
            spacing: 6

            Label {
                anchors.verticalCenter: parent.verticalCenter
                text: button.label
                font: Theme.captionFont
            }
            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                name: Symbols.arrowUpRight
                size: 10 * Theme.growth
                color: Theme.secondaryInk
            }
        }
    }
}
