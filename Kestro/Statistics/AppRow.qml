import QtQuick
import Kestro.Style

/// An application, or one of its processes with its command line.
Item {
    id: row

    required property string groupId
    required property string name
    required property string cpu
    required property string memory
    required property string disk
    required property var picture
    required property bool isProcess
    required property bool expandable
    required property bool expanded
    required property bool quittable
    required property string command
    required property var apps
    required property var toolTips

    signal menuWanted(string groupId, bool quittable, Item button)

    height: Theme.rowHeight + (isProcess ? 0 : 4)

    component Figure: Figures {
        anchors.verticalCenter: parent.verticalCenter
        width: 78 * Theme.growth
        alignRight: true
        font: Theme.captionFont
        color: row.isProcess ? Theme.secondaryInk : Theme.ink
    }

    Accessible.role: Accessible.ListItem
    Accessible.name: name + ", " + cpu + ", " + memory
    Accessible.description: command

    HoverHandler {
        onHoveredChanged: {
            const words = row.command || row.apps.commandLine(row.groupId);
            if (hovered && words !== "")
                row.toolTips?.entered(row, words.length > 300 ? words.substring(0, 300) + "…" : words);
            else
                row.toolTips?.left(row);
        }
    }
    HoverButton {
        x: 6
        anchors.verticalCenter: parent.verticalCenter
        visible: row.expandable
        label: (row.expanded ? "Hide the processes of " : "Show the processes of ") + row.name
        symbol: row.expanded ? Symbols.chevronDown : Symbols.chevronRight
        symbolSize: 11
        onPressed: row.apps.toggle(row.groupId)

        Accessible.ignored: !visible
    }
    Tile {
        id: icon

        x: 32 * Theme.growth
        anchors.verticalCenter: parent.verticalCenter
        width: 20
        height: 20
        restSize: 20
        visible: !row.isProcess
        symbol: Symbols.app
        image: row.picture
    }
    Label {
        id: title

        anchors {
            left: row.isProcess ? icon.left : icon.right
            leftMargin: row.isProcess ? 28 : 8
            verticalCenter: parent.verticalCenter
        }
        width: Math.min(implicitWidth, figures.x - x - 8)
        text: row.name
        font: row.isProcess ? Theme.captionFont : Theme.bodyFont
        color: row.isProcess ? Theme.secondaryInk : Theme.ink
    }
    Label {
        anchors { left: title.right; leftMargin: 8; right: figures.left; rightMargin: 8; baseline: title.baseline }
        visible: row.isProcess
        text: row.command
        font: Theme.captionFont
        color: Theme.secondaryInk
        opacity: 0.8
    }
    Row {
        id: figures

        anchors { right: more.left; rightMargin: 4 }
        height: parent.height

        Figure {
            width: 56 * Theme.growth
            text: row.cpu
        }
        Figure {
            text: row.memory
        }
        Figure {
            text: row.disk
        }
    }
    HoverButton {
        id: more

        anchors { right: parent.right; rightMargin: 8; verticalCenter: parent.verticalCenter }
        visible: !row.isProcess
        label: "What can be done with " + row.name
        symbol: Symbols.lineHorizontal3
        symbolSize: 12
        onPressed: row.menuWanted(row.groupId, row.quittable, more)

        Accessible.ignored: !visible
    }
    TapHandler {
        acceptedButtons: Qt.RightButton
        enabled: !row.isProcess
        onTapped: row.menuWanted(row.groupId, row.quittable, more)
    }
}
