import QtQuick

/// The cells of the Stats card, equally wide. A level below 0 has no bar.
Row {
    id: row

    property string cpuText: ""
    property real cpuLevel: -1
    property string memoryText: ""
    property real memoryLevel: -1
    property bool showCPU: true
    property bool showRAM: true
    property string barStyle: "trafficLight"

    readonly property int cells: (showCPU ? 1 : 0) + (showRAM ? 1 : 0)
    readonly property real cellWidth: cells === 0 ? 0 : Math.floor((width - (cells - 1) * spacing) / cells)

    spacing: 24

    StatCell {
        width: row.cellWidth
        visible: row.showCPU
        label: "CPU"
        value: row.cpuText
        level: row.cpuLevel
        barStyle: row.barStyle
    }
    StatCell {
        width: row.cellWidth
        visible: row.showRAM
        label: "MEMORY"
        value: row.memoryText
        level: row.memoryLevel
        barStyle: row.barStyle
    }
}
