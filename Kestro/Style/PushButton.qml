import QtQuick
import Kestro.Style

/// A button with its words on it. The `prominent` one is what the user most likely came for.
Pressable {
    id: button

    property bool prominent: false

    implicitWidth: Math.ceil(title.implicitWidth) + 24
    implicitHeight: Math.max(28, Math.ceil(title.implicitHeight) + 10)
    focusRadius: 8

    Rectangle {
        anchors.fill: parent
        z: -1
        radius: button.focusRadius
        color: button.prominent ? Theme.accent : Theme.control

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: button.down ? Theme.line : Theme.hover
            visible: button.hovered
        }
    }
    Label {
        id: title

        anchors.centerIn: parent
        width: Math.min(implicitWidth, button.width - 16)
        text: button.label
        color: button.prominent ? Theme.onAccent : Theme.ink
    }
}
