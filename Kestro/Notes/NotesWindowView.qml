import QtQuick
import Kestro.Style
import Kestro.Notes

// The notes window: the note, or why it cannot be read, and below it what the user should know of it.
Rectangle {
    id: root

    required property NotesModel notes

    color: Theme.window
    Accessible.role: Accessible.Pane
    Accessible.name: "Notes"
    Component.onCompleted: editor.forceActiveFocus()

    NotesEditor {
        id: editor

        anchors { left: parent.left; right: parent.right; top: parent.top; bottom: footer.top }
        visible: root.notes.error === ""
        notes: root.notes
    }
    Caption {
        anchors { left: parent.left; right: parent.right; top: parent.top; margins: 20 }
        visible: root.notes.error !== ""
        warning: true
        text: root.notes.error
    }
    Rectangle {
        id: footer

        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        height: message.visible ? message.implicitHeight + 20 : 0
        color: Theme.group

        Rectangle {
            width: parent.width
            height: 1
            visible: message.visible
            color: Theme.hairline
        }
        Caption {
            id: message

            anchors { left: parent.left; right: parent.right; margins: 20; verticalCenter: parent.verticalCenter }
            visible: text !== ""
            warning: true
            text: root.notes.saveError !== ""
                ? root.notes.saveError + " Your text stays here, and is saved as soon as that works."
                : editor.full ? "A note holds 100,000 characters. What goes beyond them is not kept." : ""
        }
    }
}
