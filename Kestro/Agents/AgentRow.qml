import QtQuick
import Kestro.Style

/// A session in one line: agent, project, state, age.
Item {
    id: row

    required property string agentSymbol
    required property string project
    required property string stateWord
    required property string stateName
    required property string ago

    readonly property string shownProject: project === "" ? "–" : project

    implicitHeight: Theme.rowHeight
    implicitWidth: 320

    Accessible.role: Accessible.ListItem
    Accessible.name: shownProject + ", " + stateWord + ", " + ago
    Accessible.ignored: !visible

    Symbol {
        id: icon

        anchors { left: parent.left; verticalCenter: parent.verticalCenter }
        name: row.agentSymbol
        size: 16
        color: Theme.secondaryInk
    }
    Label {
        anchors {
            left: icon.right
            leftMargin: 8
            right: word.left
            rightMargin: 12
            baseline: word.baseline
        }
        text: row.shownProject
        elide: Text.ElideMiddle
    }
    Label {
        id: word

        anchors { right: age.left; verticalCenter: parent.verticalCenter }
        text: row.stateWord
        font: Theme.strongFont
        color: row.stateName === "needsInput" ? Theme.orangeInk
            : row.stateName === "done" ? Theme.greenInk
            : row.stateName === "working" ? Theme.ink : Theme.secondaryInk
    }
    Figures {
        id: age

        anchors { right: parent.right; baseline: word.baseline }
        // Wide enough for the longest, so that the column of states stands still.
        width: 64
        alignRight: true
        text: row.ago
        font: Theme.captionFont
        color: Theme.secondaryInk
    }
}
