import QtQuick
import Kestro.Style

/// A session in one line: agent, project, state, age. Pressed it asks for the window in which it runs. Its highlight
/// has 8 points on either side of what is written.
Pressable {
    id: row

    required property string sessionId
    required property string agentSymbol
    required property string project
    required property string stateWord
    required property string stateName
    required property string ago
    required property string missingWindow ///< why it could not be gone to; mostly empty
    property bool selected: false ///< by the keyboard

    readonly property string shownProject: project === "" ? "–" : project

    signal raise(string sessionId)

    implicitHeight: Theme.rowHeight
    implicitWidth: 320
    label: shownProject + ", " + stateWord + ", " + ago
    role: Accessible.ListItem
    // The list has the keyboard.
    activeFocusOnTab: false
    onPressed: raise(sessionId)

    Keys.enabled: false

    Accessible.description: missingWindow
    Accessible.ignored: !visible
    Accessible.selectable: true
    Accessible.selected: selected

    Rectangle {
        anchors.fill: parent
        z: -1
        radius: 6
        visible: row.hovered || row.selected
        color: row.down ? Theme.line : Theme.hover
    }
    Symbol {
        id: icon

        anchors { left: parent.left; leftMargin: 8; verticalCenter: parent.verticalCenter }
        name: row.agentSymbol
        size: 16 * Theme.growth
        color: Theme.secondaryInk
    }
    Label {
        anchors {
            left: icon.right
            leftMargin: 8
            right: lost.left
            rightMargin: 12
            baseline: word.baseline
        }
        text: row.shownProject
        elide: Text.ElideMiddle
    }
    Label {
        id: lost

        anchors { right: word.left; rightMargin: text === "" ? 0 : 12; baseline: word.baseline }
        text: row.missingWindow
        font: Theme.captionFont
        color: Theme.secondaryInk
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

        anchors { right: parent.right; rightMargin: 8; baseline: word.baseline }
        // Wide enough for the longest, so that the column of states stands still.
        width: 64 * Theme.growth
        alignRight: true
        text: row.ago
        font: Theme.captionFont
        color: Theme.secondaryInk
    }
}
