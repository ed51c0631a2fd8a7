import QtQuick
import Kestro.Style

/// A small button with a symbol; `label` is its name, unseen.
Pressable {
    id: button

    property string symbol: ""
    property real symbolSize: 14
    property color color: Theme.secondaryInk

    implicitWidth: 24 * Theme.growth
    implicitHeight: 24 * Theme.growth

    Rectangle {
        anchors.fill: parent
        z: -1
        radius: button.focusRadius
        visible: button.hovered
        color: button.down ? Theme.line : Theme.hover
    }
    Symbol {
        anchors.centerIn: parent
        name: button.symbol
        size: button.symbolSize * Theme.growth
        color: button.color
    }
}
