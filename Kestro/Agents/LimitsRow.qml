import QtQuick
import Kestro.Style

/// The limits of one agent's plan in one line: the agent, then its gauges, or why there are none yet. `toolTips` shows
/// where they came from, or the reason in full.
Item {
    id: row

    required property string symbol
    required property string name
    required property var gauges
    required property string note
    required property string source
    property string barStyle: "trafficLight"
    property QtObject toolTips: null
    /// How wide the columns of the gauges are, so that those of several rows stand below each other.
    property real fiveHoursColumn: fiveHoursWidth
    property real weekColumn: weekWidth

    readonly property real fiveHoursWidth: fiveHours.visible ? fiveHours.implicitWidth : 0
    readonly property real weekWidth: week.visible ? week.implicitWidth : 0
    readonly property string told: gauges.map(gauge => gauge.label + " " + gauge.text).concat(note || []).join(", ")

    component Gauge: WindowGauge {
        required property string window
        readonly property var shown: row.gauges.find(each => each.label === window)

        anchors.baseline: agent.baseline
        visible: shown !== undefined
        label: window
        text: shown?.text ?? ""
        fill: shown?.fill ?? 0
        level: shown?.level ?? "low"
        style: row.barStyle
    }

    implicitHeight: Theme.rowHeight
    implicitWidth: 408

    Accessible.role: Accessible.ListItem
    Accessible.name: name + ", " + told
    Accessible.description: source
    Accessible.ignored: !visible

    HoverHandler {
        onHoveredChanged: {
            if (hovered)
                row.toolTips?.entered(row, row.source || row.note);
            else
                row.toolTips?.left(row);
        }
    }
    Symbol {
        id: icon

        anchors { left: parent.left; leftMargin: 8; verticalCenter: parent.verticalCenter }
        name: row.symbol
        size: 16 * Theme.growth
        color: Theme.secondaryInk
    }
    Label {
        id: agent

        anchors { left: icon.right; leftMargin: 8; verticalCenter: parent.verticalCenter }
        width: Math.min(implicitWidth, row.fiveHoursColumn > 0 ? Math.max(0, fiveHours.x - x - 8) : implicitWidth)
        text: row.name
    }
    Label {
        anchors { left: agent.right; leftMargin: 12; right: parent.right; rightMargin: 8; baseline: agent.baseline }
        visible: text !== ""
        horizontalAlignment: Text.AlignRight
        elide: Text.ElideMiddle // what is to be done stands at the end
        opacity: 0.5
        text: row.note
        font: Theme.captionFont

        Accessible.role: Accessible.StaticText
        Accessible.name: text
        Accessible.ignored: !visible
    }
    Gauge {
        id: fiveHours

        x: row.width - 8 - row.weekColumn - (row.weekColumn > 0 ? 12 : 0) - row.fiveHoursColumn
        window: "5h"
    }
    Gauge {
        id: week

        x: row.width - 8 - row.weekColumn
        window: "week"
    }
}
