import QtQuick
import Kestro.Style

/// The base of every control: pointed at, pressed, focused, and read and pressed by a screen reader.
/// The user of this type adds the look. Qt's own controls do nothing on a screen reader's press, and are told as
/// enabled when they are not; this one mends both.
Item {
    id: control

    property string label: ""
    property int role: Accessible.Button
    readonly property bool hovered: pointer.hovered && enabled
    readonly property bool down: tap.pressed && enabled
    property real focusRadius: 6

    signal pressed

    activeFocusOnTab: enabled
    opacity: enabled ? 1 : 0.38

    Accessible.role: role
    Accessible.name: label
    Accessible.description: enabled ? "" : "dimmed"
    Accessible.focusable: enabled
    Accessible.onPressAction: if (control.enabled) control.pressed()

    Keys.onReturnPressed: control.pressed()
    Keys.onEnterPressed: control.pressed()
    Keys.onSpacePressed: control.pressed()

    HoverHandler {
        id: pointer
    }
    TapHandler {
        id: tap

        gesturePolicy: TapHandler.ReleaseWithinBounds
        onTapped: control.pressed()
    }
    Rectangle {
        anchors.fill: parent
        visible: control.activeFocus
        radius: control.focusRadius
        color: "transparent"
        border { width: 2; color: Theme.accent }
    }
}
