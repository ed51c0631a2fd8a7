import QtQuick
import Kestro.Style

// Offers the applications of the desktop: narrowed by what is typed, several at a time.
Sheet {
    id: sheet

    required property var list
    readonly property var apps: list.apps

    title: "Add App"
    first: search
    acceptLabel: apps && apps.chosen.length > 1 ? "Add " + apps.chosen.length + " Apps" : "Add"
    acceptable: apps !== null && apps.chosen.length > 0
    onAccepted: list.addApps(apps.chosen)

    Component.onDestruction: list?.endChoosing()

    SearchField {
        id: search

        width: parent.width
        label: "Search"
        onEdited: text => sheet.apps.filter = text
        Keys.onDownPressed: rows.forceActiveFocus()
    }
    Rectangle {
        width: parent.width
        height: Math.max(120, Math.min(320, sheet.height - 240))
        radius: 8
        color: Theme.group
        border { width: 1; color: Theme.hairline }

        ListView {
            id: rows

            anchors { fill: parent; margins: 4 }
            clip: true
            model: sheet.apps
            activeFocusOnTab: true
            keyNavigationEnabled: true
            highlightMoveDuration: 0
            boundsBehavior: Flickable.StopAtBounds
            interactive: false

            Accessible.role: Accessible.List
            Accessible.name: "Applications"

            Keys.onSpacePressed: sheet.apps.toggle(currentIndex)

            WheelHandler {
                onWheel: event => {
                    const end = Math.max(0, rows.contentHeight - rows.height);
                    const by = event.pixelDelta.y || event.angleDelta.y / 120 * 72;
                    rows.contentY = rows.originY + Math.max(0, Math.min(end, rows.contentY - rows.originY - by));
                }
            }

            delegate: Pressable {
                id: row

                required property int index
                required property string name
                required property var picture
                required property bool chosen
                readonly property bool current: rows.activeFocus && rows.currentIndex === index

                width: rows.width
                height: Math.max(36, Math.ceil(title.implicitHeight) + 14)
                label: name
                role: Accessible.CheckBox
                activeFocusOnTab: false
                onPressed: {
                    rows.currentIndex = index;
                    sheet.apps.toggle(index);
                }

                Accessible.checkable: true
                Accessible.checked: chosen
                Accessible.onToggleAction: sheet.apps.toggle(row.index)

                Rectangle {
                    anchors.fill: parent
                    z: -1
                    radius: row.focusRadius
                    visible: row.hovered || row.current
                    color: row.current ? Theme.line : Theme.hover
                }
                Tile {
                    anchors { left: parent.left; leftMargin: 8; verticalCenter: parent.verticalCenter }
                    width: 24
                    height: 24
                    restSize: 24
                    symbol: Symbols.app
                    image: row.picture
                }
                Label {
                    id: title

                    anchors {
                        left: parent.left
                        leftMargin: 42
                        right: mark.left
                        rightMargin: 8
                        verticalCenter: parent.verticalCenter
                    }
                    text: row.name
                }
                Symbol {
                    id: mark

                    anchors { right: parent.right; rightMargin: 10; verticalCenter: parent.verticalCenter }
                    visible: row.chosen
                    name: Symbols.checkmarkCircleFill
                    size: 16
                    color: Theme.accent
                }
            }
        }
        ScrollBar {
            view: rows
        }
        Label {
            anchors.centerIn: parent
            visible: rows.count === 0
            text: sheet.apps?.filter === "" ? "No applications found" : "No results"
            color: Theme.secondaryInk

            Accessible.role: Accessible.StaticText
            Accessible.name: text
            Accessible.ignored: !visible
        }
    }
}
