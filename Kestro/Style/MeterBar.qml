import QtQuick
import Kestro.Style

/// How much of something is used. `level` below 0 is not known: nothing is shown.
Item {
    id: bar

    property real level: -1
    property string style: "trafficLight"
    property color fill: Theme.meter(level, style)

    implicitHeight: 5
    visible: level >= 0

    Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: Theme.line
    }
    Rectangle {
        readonly property real share: Math.min(1, Math.max(0, bar.level))

        // A round end needs its own width to be seen as one.
        width: share > 0 ? Math.max(height, parent.width * share) : 0
        height: parent.height
        radius: height / 2
        color: bar.fill
    }
}
