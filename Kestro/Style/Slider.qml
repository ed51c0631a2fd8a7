import QtQuick
import Kestro.Style

/// A value between two ends. `moved` tells where the user wants it; it stands where `value` is bound to.
Item {
    id: slider

    property string label: ""
    property real value: 0
    property real from: 0
    property real to: 1
    property real step: 0.1
    property string valueText: ""

    signal moved(real value)

    function move(wanted) {
        const steps = Math.round((Math.max(from, Math.min(to, wanted)) - from) / step);
        // Without the crumbs of binary fractions, which would end in the preferences.
        const next = Math.min(to, Number((from + steps * step).toPrecision(12)));
        if (next !== value)
            moved(next);
    }

    implicitWidth: 180 + (figure.visible ? 44 : 0)
    implicitHeight: Math.max(28, Math.ceil(figure.implicitHeight) + 8)
    onValueChanged: track.value = value
    Component.onCompleted: track.value = value

    Item {
        id: track

        // The bus writes the value into this very property, and reads the others by these names.
        property real value: 0
        readonly property real minimumValue: slider.from
        readonly property real maximumValue: slider.to
        readonly property real stepSize: slider.step
        readonly property real share: slider.to > slider.from ? (slider.value - slider.from) / (slider.to - slider.from) : 0

        function pick(x) {
            slider.move(slider.from + (x - knob.width / 2) / (width - knob.width) * (slider.to - slider.from));
        }

        anchors { left: parent.left; right: figure.visible ? figure.left : parent.right; rightMargin: figure.visible ? 8 : 0 }
        height: parent.height
        activeFocusOnTab: enabled
        opacity: enabled ? 1 : 0.38
        onValueChanged: {
            if (value === slider.value)
                return;
            if (enabled)
                slider.move(value);
            value = slider.value;
        }

        Accessible.role: Accessible.Slider
        Accessible.name: slider.label
        Accessible.description: enabled ? slider.valueText : "dimmed"
        Accessible.focusable: enabled
        Accessible.onIncreaseAction: if (enabled) slider.move(slider.value + slider.step)
        Accessible.onDecreaseAction: if (enabled) slider.move(slider.value - slider.step)

        Keys.onPressed: event => {
            const steps = { [Qt.Key_Left]: -1, [Qt.Key_Down]: -1, [Qt.Key_Right]: 1, [Qt.Key_Up]: 1 }[event.key];
            if (steps !== undefined)
                slider.move(slider.value + steps * slider.step);
            else if (event.key === Qt.Key_Home)
                slider.move(slider.from);
            else if (event.key === Qt.Key_End)
                slider.move(slider.to);
            else
                return;
            event.accepted = true;
        }

        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width
            height: 4
            radius: 2
            color: Theme.line

            Rectangle {
                width: knob.x + knob.width / 2
                height: parent.height
                radius: parent.radius
                color: Theme.accent
            }
        }
        Rectangle {
            id: knob

            x: track.share * (track.width - width)
            anchors.verticalCenter: parent.verticalCenter
            width: 20
            height: 20
            radius: 10
            color: Theme.knob
            border { width: track.activeFocus ? 2 : 1; color: track.activeFocus ? Theme.accent : Theme.line }
        }
        MouseArea {
            anchors.fill: parent
            preventStealing: true
            onPressed: mouse => track.pick(mouse.x)
            onPositionChanged: mouse => track.pick(mouse.x)
            // Only where the keyboard already is: a pane that is scrolled past it is not to change.
            onWheel: wheel => {
                wheel.accepted = track.activeFocus;
                if (wheel.accepted)
                    slider.move(slider.value + (wheel.angleDelta.y > 0 ? 1 : -1) * slider.step);
            }
        }
    }
    Figures {
        id: figure

        anchors { right: parent.right; verticalCenter: parent.verticalCenter }
        width: Math.max(36, implicitWidth)
        alignRight: true
        visible: slider.valueText !== ""
        text: slider.valueText
        font: Theme.captionFont
        color: Theme.secondaryInk
    }
}
