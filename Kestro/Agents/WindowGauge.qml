import QtQuick
import Kestro.Style

/// How much of one time window of a plan is used: its label, a bar of 44 points filled to `fill` of them, the figures.
/// `level` is "low", "medium" or "high", `style` as the preferences have it.
Item {
    id: gauge

    property string label: ""
    property string text: ""
    property real fill: 0 ///< points, where writing has its usual size
    property string level: "low"
    property string style: "trafficLight"

    implicitWidth: figures.x + figures.implicitWidth
    implicitHeight: Theme.rowHeight
    baselineOffset: name.y + name.baselineOffset

    Accessible.role: Accessible.StaticText
    Accessible.name: label + " " + text
    Accessible.ignored: !visible

    Label {
        id: name

        anchors.verticalCenter: parent.verticalCenter
        text: gauge.label
        font: Theme.captionFont
    }
    Rectangle {
        id: track

        x: name.width + 5
        anchors.verticalCenter: parent.verticalCenter
        width: 44 * Theme.growth
        height: 5
        radius: height / 2
        color: Qt.rgba(Theme.ink.r, Theme.ink.g, Theme.ink.b, 0.15)

        Rectangle {
            objectName: "fill"
            width: Math.max(0, Math.min(parent.width, gauge.fill * Theme.growth))
            height: parent.height
            radius: parent.radius
            color: gauge.style === "accent" ? Theme.accent
                : gauge.level === "low" ? Theme.green : gauge.level === "medium" ? Theme.yellow : Theme.red
        }
    }
    Figures {
        id: figures

        x: track.x + track.width + 5
        anchors.baseline: name.baseline
        text: gauge.text
        font: Theme.captionFont
        color: Theme.ink
        opacity: 0.55
    }
}
