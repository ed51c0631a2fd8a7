import QtQuick
import Kestro.Agents
import Kestro.Style

// The AI window: all sessions, and below them the usage limits.
Rectangle {
    id: root

    required property AgentsWidget widget
    required property QtObject toolTips
    readonly property AgentsModel agents: widget.agents
    readonly property LimitsModel limits: widget.limits
    readonly property bool seen: Window.visibility !== Window.Hidden && Window.visibility !== Window.Minimized
    readonly property real margins: 20
    readonly property real padding: 8

    color: Theme.window
    Accessible.role: Accessible.Pane
    Accessible.name: "AI"
    Component.onCompleted: sessions.forceActiveFocus()

    // The time that is left of a limit is told in minutes.
    onSeenChanged: if (seen) limits.refreshTimes()
    Timer {
        interval: 60000
        repeat: true
        running: root.seen && root.limits.enabled.on
        onTriggered: root.limits.refreshTimes()
    }

    component Title: Label {
        x: root.margins + Theme.horizontalPadding
        width: root.width - 2 * x
        font: Theme.strongFont

        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    component Group: Rectangle {
        x: root.margins
        width: root.width - 2 * x
        radius: Theme.radius
        color: Theme.group
        border { width: 1; color: Theme.hairline }
    }
    component Off: Label {
        x: root.padding + 8
        y: root.padding
        height: Theme.rowHeight
        verticalAlignment: Text.AlignVCenter
        font: Theme.captionFont
        color: Theme.secondaryInk

        Accessible.role: Accessible.StaticText
        Accessible.name: text
        Accessible.ignored: !visible
    }

    Title {
        id: sessionsTitle

        y: root.margins
        text: "Sessions"
    }
    Group {
        id: sessionsGroup

        anchors { top: sessionsTitle.bottom; topMargin: 6; bottom: limitsTitle.top; bottomMargin: 20 }

        AgentList {
            id: sessions

            anchors { fill: parent; margins: root.padding }
            visible: root.agents.activity.on
            focus: true
            keyboard: true
            rows: root.agents.rows
            errorLines: root.agents.errorLines
            onRaise: id => root.agents.raiseSession(id)
        }
        Off {
            visible: !root.agents.activity.on
            text: "Agent activity is off."
        }
    }
    Title {
        id: limitsTitle

        anchors { bottom: limitsGroup.top; bottomMargin: 6 }
        text: "Usage limits"
    }
    Group {
        id: limitsGroup

        anchors { bottom: parent.bottom; bottomMargin: root.margins }
        height: (root.limits.enabled.on ? limitsList.height : Theme.rowHeight) + 2 * root.padding

        LimitsList {
            id: limitsList

            anchors { left: parent.left; right: parent.right; top: parent.top; margins: root.padding }
            visible: root.limits.enabled.on
            rows: root.limits.rows
            errorLines: root.limits.errorLines
            barStyle: root.limits.barStyle
            toolTips: root.toolTips
        }
        Off {
            visible: !root.limits.enabled.on
            text: "Usage limits are off."
        }
    }
}
