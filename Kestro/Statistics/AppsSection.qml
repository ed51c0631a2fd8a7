import QtQuick
import Kestro.Style

/// The applications that use the most, or those that are searched for, each with its processes and what can be done
/// with it.
Column {
    id: section

    required property var apps
    required property var toolTips

    signal menuWanted(string groupId, bool quittable, Item button)

    width: parent?.width ?? 0
    spacing: 6

    Item {
        width: parent.width
        height: Math.max(title.height, search.height)

        Label {
            id: title

            x: Theme.horizontalPadding
            anchors.verticalCenter: parent.verticalCenter
            text: "Apps"
            font: Theme.strongFont

            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        SearchField {
            id: search

            anchors { right: sort.left; rightMargin: 8; verticalCenter: parent.verticalCenter }
            width: Math.min(180 * Theme.growth, parent.width - title.width - sort.width - 48)
            label: "Search apps"
            onEdited: text => section.apps.search = text
        }
        Picker {
            id: sort

            anchors { right: parent.right; verticalCenter: parent.verticalCenter }
            label: "Sort by"
            options: [
                { value: "cpu", title: "CPU" },
                { value: "memory", title: "Memory" },
                { value: "disk", title: "Disk" },
                { value: "name", title: "Name" }
            ]
            current: section.apps.sortedBy
            onChosen: value => section.apps.sortedBy = value
        }
    }
    Rectangle {
        width: section.width
        height: list.height + 12
        radius: Theme.radius
        color: Theme.group
        border { width: 1; color: Theme.hairline }

        Column {
            id: list

            y: 6
            width: parent.width

            Label {
                x: Theme.horizontalPadding
                height: Theme.rowHeight
                verticalAlignment: Text.AlignVCenter
                visible: text !== ""
                text: section.apps.measuring ? "Measuring…" : ""
                color: Theme.secondaryInk

                Accessible.role: Accessible.StaticText
                Accessible.name: text
                Accessible.ignored: !visible
            }
            Repeater {
                model: section.apps

                AppRow {
                    width: list.width
                    apps: section.apps
                    toolTips: section.toolTips
                    onMenuWanted: (groupId, quittable, button) => section.menuWanted(groupId, quittable, button)
                }
            }
            Label {
                x: Theme.horizontalPadding
                height: Theme.rowHeight
                verticalAlignment: Text.AlignVCenter
                visible: text !== ""
                text: section.apps.note
                font: Theme.captionFont
                color: Theme.secondaryInk

                Accessible.role: Accessible.StaticText
                Accessible.name: text
                Accessible.ignored: !visible
            }
        }
    }
}
