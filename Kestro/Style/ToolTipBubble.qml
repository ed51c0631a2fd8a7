import QtQuick
import Kestro.Style

/// The name of what the pointer rests on; the content of a panel of its own.
SurfaceItem {
    property alias text: label.text

    // A name is read at a glance; a longer one is cut.
    implicitWidth: Math.min(360, Math.ceil(label.implicitWidth) + 20)
    implicitHeight: Math.max(26, Math.ceil(label.implicitHeight) + 10)
    radius: 8
    fill: Theme.card
    hairline: Theme.hairline
    shadow: Theme.composited ? (Theme.dark ? 0.35 : 0.18) : 0

    Accessible.role: Accessible.ToolTip
    Accessible.name: text

    Label {
        id: label

        anchors.centerIn: parent
        width: Math.min(implicitWidth, parent.width - 16)
        font: Theme.captionFont
    }
}
