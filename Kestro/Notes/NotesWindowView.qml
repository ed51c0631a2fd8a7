import QtQuick
import Kestro.Style
import Kestro.Notes

// The notes window: the editor or the load error, above a footer with the save error or the length limit.
Rectangle {
    id: root

    required property NotesWidget widget
    required property QtObject toolTips
    readonly property NotesModel notes: widget.notes

    color: Theme.window
    Accessible.role: Accessible.Pane
    Accessible.name: "Notes"
    Component.onCompleted: editor.forceActiveFocus()

    Connections {
        target: root.widget

        function onRemoved() {
            root.Window.window.close();
        }
    }

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
