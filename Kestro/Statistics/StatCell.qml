import QtQuick
import Kestro.Style

/// One reading: what it is, how much, and a bar where there is a share to show.
Item {
    id: cell

    property string label: ""
    property string value: ""
    property real level: -1
    property string barStyle: "trafficLight"

    readonly property string shownValue: value === "" ? "–" : value

    implicitWidth: Math.max(name.implicitWidth, figure.implicitWidth)
    implicitHeight: 52 * Theme.growth

    Accessible.role: Accessible.StaticText
    Accessible.name: label + " " + shownValue
    Accessible.ignored: !visible

    Label {
        id: name

        width: parent.width
        text: cell.label
        font: Theme.captionFont
        color: Theme.secondaryInk
    }
    Figures {
        id: figure

        y: 18 * Theme.growth
        text: cell.shownValue
        font: Theme.titleFont
        color: Theme.ink
    }
    MeterBar {
        y: 43 * Theme.growth
        width: parent.width
        level: cell.level
        style: cell.barStyle
    }
}
