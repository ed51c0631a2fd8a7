import QtQuick
import Kestro.Style

/// The control for one shortcut, and a button that takes it away. `subject` is what the shortcut is for. What went
/// wrong is `recorder.error`, which is up to the one who uses it to show below.
Item {
    id: field

    required property var recorder
    property string subject: ""

    implicitWidth: 176
    implicitHeight: record.implicitHeight

    // A recorder holds the keyboard of the whole desktop: not for longer than the user looks at it. That the
    // window is no longer active says nothing, since a held keyboard alone makes it so.
    Component.onDestruction: recorder?.stop()
    onVisibleChanged: if (!visible) recorder.stop()

    Pressable {
        id: record

        anchors { left: parent.left; right: parent.right }
        implicitHeight: Math.max(28, Math.ceil(title.implicitHeight) + 10)
        focusRadius: 8
        label: field.recorder.label
        onPressed: field.recorder.toggle()

        Accessible.description: enabled ? "Shortcut for " + field.subject : "dimmed"

        Rectangle {
            anchors.fill: parent
            z: -1
            radius: record.focusRadius
            color: record.hovered && !field.recorder.recording ? Theme.line : Theme.control
            border {
                width: field.recorder.recording ? 2 : 0
                color: Theme.accent
            }
        }
        Label {
            id: title

            anchors.centerIn: parent
            width: Math.min(implicitWidth, record.width - 2 * (clear.visible ? 28 : 10))
            text: record.label
            color: field.recorder.recording || !field.recorder.hasCombo ? Theme.secondaryInk : Theme.ink
        }
    }
    HoverButton {
        id: clear

        anchors { right: parent.right; rightMargin: 2; verticalCenter: parent.verticalCenter }
        visible: field.recorder.hasCombo && !field.recorder.recording
        label: "Remove Shortcut"
        symbol: Symbols.xmark
        symbolSize: 10
        onPressed: field.recorder.clear()

        Accessible.description: field.subject
    }
}
