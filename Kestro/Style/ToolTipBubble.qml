import QtQuick
import Kestro.Style

/// The text about the item under the pointer; the content of a panel of its own.
SurfaceItem {
    id: bubble

    property string text: ""

    implicitWidth: Math.ceil(label.width) + 20
    implicitHeight: Math.max(26, Math.ceil(label.implicitHeight) + 10)
    radius: 8
    fill: Theme.card
    hairline: Theme.hairline
    shadow: Theme.composited ? (Theme.dark ? 0.35 : 0.18) : 0

    Accessible.role: Accessible.ToolTip
    Accessible.name: text

    // How wide it would like to be, which a text that is broken into lines does not tell.
    Label {
        id: measure

        visible: false
        text: bubble.text
        font: Theme.captionFont
    }
    Label {
        id: label

        anchors.centerIn: parent
        width: Math.min(320, Math.ceil(measure.implicitWidth))
        text: bubble.text
        font: Theme.captionFont
        wrapMode: Text.Wrap
        // Read at a glance; what is longer is cut.
        maximumLineCount: 6
    }
}
