import QtQuick
import Kestro.Style

/// One reading: what it is, how much, and a bar where there is a share to show.
Item {
    id: cell

    property string label: ""
    property string value: ""
    property real level: -1
    property bool lowIsBad: false
    property bool charging: false
    property bool small: false ///< among many
    property string barStyle: "trafficLight"

    readonly property string shownValue: value === "" ? "–" : value

    implicitWidth: Math.max(name.implicitWidth + (bolt.visible ? bolt.width + 2 : 0), figure.implicitWidth)
    implicitHeight: 52 * Theme.growth

    Accessible.role: Accessible.StaticText
    Accessible.name: label + " " + shownValue + (charging ? ", charging" : "")
    Accessible.ignored: !visible

    Label {
        id: name

        width: Math.min(implicitWidth, parent.width)
        text: cell.label
        font: Theme.captionFont
        color: Theme.secondaryInk
    }
    Symbol {
        id: bolt

        anchors { left: name.right; leftMargin: 2; verticalCenter: name.verticalCenter }
        visible: cell.charging
        name: Symbols.boltFill
        size: 11 * Theme.growth
        color: Theme.secondaryInk
    }
    Figures {
        id: figure

        y: (cell.small ? 20 : 18) * Theme.growth
        text: cell.shownValue
        font: cell.small ? Theme.strongFont : Theme.titleFont
        color: Theme.ink
    }
    MeterBar {
        id: bar

        y: 43 * Theme.growth
        width: parent.width
        visible: cell.level >= 0
        level: Math.min(1, Math.max(0, cell.level))
        // A full battery is good where a full disk is bad.
        fill: Theme.meter(cell.lowIsBad ? 1 - level : level, cell.barStyle)
    }
}
