import QtQuick
import Kestro.Agents
import Kestro.Style

// The card of the agents: their sessions, and below them how much of their limits is used.
Item {
    id: root

    required property AgentsWidget widget
    required property QtObject toolTips
    readonly property AgentsModel agents: widget.agents
    readonly property LimitsModel limits: widget.limits

    // The highlight of a row has room on either side.
    Column {
        x: -8
        width: parent.width + 16

        AgentList {
            visible: root.agents.activity.on
            width: parent.width
            height: implicitHeight
            rows: root.agents.rows
            errorLines: root.agents.errorLines
            limit: 4
            onRaise: id => root.agents.raiseSession(id)
        }
        MenuDivider {
            visible: root.agents.activity.on && root.limits.enabled.on
            width: parent.width
            inset: 8
        }
        LimitsList {
            visible: root.limits.enabled.on
            width: parent.width
            rows: root.limits.rows
            errorLines: root.limits.errorLines
            barStyle: root.limits.barStyle
            toolTips: root.toolTips
        }
    }
}
