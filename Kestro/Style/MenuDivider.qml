import QtQuick
import Kestro.Style

/// The line between two groups of rows.
Item {
    id: divider

    property real inset: 12

    implicitHeight: 9

    Rectangle {
        anchors { left: parent.left; right: parent.right; margins: divider.inset; verticalCenter: parent.verticalCenter }
        height: 1
        color: Theme.line
    }
}
