import QtQuick

// The card of the readings.
Item {
    id: root

    required property var widget
    required property QtObject toolTips
    readonly property var card: widget.card

    StatsRow {
        anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter }
        cpuText: root.card.cpuText
        cpuLevel: root.card.cpuLevel
        memoryText: root.card.memoryText
        memoryLevel: root.card.memoryLevel
        showCPU: root.card.showCPU
        showRAM: root.card.showRAM
        barStyle: root.card.barStyle
    }
}
