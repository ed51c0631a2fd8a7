import QtQuick
import Kestro.Style

/// The state at a tile's corner. `wingState` is "needsInput", "working", "done" or nothing.
Item {
    id: badge

    property string wingState: ""
    property real size: 16

    implicitWidth: size
    implicitHeight: size
    visible: wingState !== ""

    // Parts it from the tile, and fills the mark that is cut out of the glyph.
    Rectangle {
        anchors.fill: parent
        radius: width / 2
        color: Theme.card
    }
    Symbol {
        anchors.centerIn: parent
        size: badge.size - 2
        visible: badge.wingState === "needsInput" || badge.wingState === "done"
        name: badge.wingState === "done" ? Symbols.checkmarkCircleFill : Symbols.exclamationMarkCircleFill
        color: badge.wingState === "done" ? Theme.green : Theme.orange
    }
    Spinner {
        anchors.centerIn: parent
        width: Math.round(badge.size * 0.7)
        height: width
        visible: badge.wingState === "working"
        color: Theme.ink
    }
}
