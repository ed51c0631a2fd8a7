import QtQuick
import Kestro.Style

// The card of the readings, above the busiest applications.
Item {
    id: root

    required property var widget
    required property QtObject toolTips
    readonly property var card: widget.card

    StatsRow {
        anchors { left: parent.left; right: parent.right; top: parent.top }
        cells: root.card
        barStyle: root.card.barStyle
    }
    TopAppsLine {
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        card: root.card
    }
}
