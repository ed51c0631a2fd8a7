import QtQuick
import Kestro.Style

/// A switch. It shows what `checked` is bound to and never turns by itself: what is told of the wish to turn it may
/// refuse.
Pressable {
    id: toggle

    property bool checked: false

    signal toggled(bool on)

    role: Accessible.CheckBox
    // Even, so that the round ends are whole pixels at one and a half times the size, too.
    implicitWidth: 40
    implicitHeight: 24
    focusRadius: 12
    onPressed: toggled(!checked)

    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onToggleAction: if (toggle.enabled) toggle.toggled(!toggle.checked)

    Rectangle {
        anchors.fill: parent
        z: -1
        radius: height / 2
        color: toggle.checked ? Theme.accent : Theme.line

        Behavior on color {
            ColorAnimation { duration: Theme.quick }
        }
    }
    Rectangle {
        x: toggle.checked ? toggle.width - width - 2 : 2
        y: 2
        width: height
        height: toggle.height - 4
        radius: height / 2
        color: Theme.knob
        border { width: 1; color: Theme.hairline }

        Behavior on x {
            NumberAnimation { duration: Theme.quick; easing.type: Easing.OutCubic }
        }
    }
}
