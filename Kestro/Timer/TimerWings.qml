import QtQuick
import Kestro.Style
import Kestro.Timer

// The running timer beside the notch: symbol and short time on either side of a gap of `gap` points.
Item {
    id: root

    required property TimerReadout timer
    required property real gap

    Accessible.role: Accessible.StaticText
    Accessible.name: "Timer, " + timer.shortTime

    Symbol {
        anchors {
            right: parent.horizontalCenter
            rightMargin: root.gap / 2 + 12
            verticalCenter: parent.verticalCenter
        }
        name: "timer"
        size: 16
        color: Theme.ink
    }
    Figures {
        anchors { left: parent.horizontalCenter; leftMargin: root.gap / 2 + 8; verticalCenter: parent.verticalCenter }
        text: root.timer.shortTime
        font: Theme.captionFont
        color: Theme.ink
    }
}
