import QtQuick
import Kestro.Style

/// The line between two groups of a menu's rows.
Item {
    implicitHeight: 9

    Rectangle {
        anchors { left: parent.left; right: parent.right; margins: 12; verticalCenter: parent.verticalCenter }
        height: 1
        color: Theme.line
    }
}
