import QtQuick
import Kestro.Style

// The window of an icon's name. Its implicit size is the name's, without the room for the shadow.
Item {
    id: root

    required property string text
    required property real shadowRoom

    implicitWidth: bubble.implicitWidth
    implicitHeight: bubble.implicitHeight

    ToolTipBubble {
        id: bubble

        anchors.fill: parent
        anchors.margins: root.shadowRoom
        text: root.text
    }
}
