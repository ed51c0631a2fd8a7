import QtQuick
import Kestro.Style
import Kestro.Timer

// The timer's card: time and controls above the presets.
Item {
    id: root

    required property TimerWidget widget
    required property QtObject toolTips
    readonly property TimerReadout timer: widget.timer
    readonly property real upperHeight: 28 * Theme.growth

    // Shows `sign`; its accessible name is `label`.
    component StepButton: Pressable {
        id: step

        property string sign

        anchors.verticalCenter: parent.verticalCenter
        width: 24 * Theme.growth
        height: width

        Rectangle {
            anchors.fill: parent
            z: -1
            radius: step.focusRadius
            color: step.down ? Theme.line : step.hovered ? Theme.hover : Theme.control
        }
        Label {
            anchors.centerIn: parent
            text: step.sign
            font: Theme.titleFont
            color: Theme.secondaryInk
        }
    }

    Row {
        anchors { left: parent.left; right: parent.right; top: parent.top }
        height: root.upperHeight
        spacing: 8

        Figures {
            anchors.verticalCenter: parent.verticalCenter
            // As wide as the longest time, so that the buttons keep their place.
            width: Math.ceil(longest.implicitWidth)
            text: root.timer.time
            font: Theme.paneFont
            color: root.timer.running ? Theme.ink : Theme.secondaryInk

            Accessible.role: Accessible.StaticText
            Accessible.name: text
            Accessible.description: root.timer.running ? "Running" : root.timer.idle ? "" : "Paused"

            Figures {
                id: longest

                visible: false
                text: "00:00"
                font: parent.font
            }
        }
        StepButton {
            label: "One minute less"
            sign: "−"
            enabled: !root.timer.atZero
            onPressed: root.timer.adjust(-1)
        }
        StepButton {
            label: "One minute more"
            sign: "+"
            enabled: !root.timer.atMost
            onPressed: root.timer.adjust(1)
        }
    }
    Row {
        anchors { right: parent.right; top: parent.top }
        height: root.upperHeight
        spacing: 8

        PushButton {
            anchors.verticalCenter: parent.verticalCenter
            label: "Reset"
            enabled: !root.timer.idle
            onPressed: root.timer.reset()
        }
        PushButton {
            anchors.verticalCenter: parent.verticalCenter
            // As wide as the longer of both words, so that the button keeps its place.
            implicitWidth: Math.ceil(Math.max(start.implicitWidth, pause.implicitWidth)) + 24
            label: root.timer.running ? "Pause" : "Start"
            prominent: true
            enabled: root.timer.running || !root.timer.atZero
            onPressed: root.timer.startOrPause()

            Label {
                id: start

                visible: false
                text: "Start"
            }
            Label {
                id: pause

                visible: false
                text: "Pause"
            }
        }
    }
    Row {
        id: presets

        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        spacing: 8

        Repeater {
            model: root.timer.presets

            PushButton {
                required property int modelData

                width: (presets.width - 4 * presets.spacing) / 5
                label: modelData + " min"
                onPressed: root.timer.preset(modelData)
            }
        }
    }
}
