import QtQuick
import Kestro.Style

/// What can be done with an application of the list. It stands within the window.
FocusScope {
    id: menu

    required property var apps
    property string groupId: ""
    property bool quittable: false

    signal closed

    function open(id, canQuit, x, y) {
        groupId = id;
        quittable = canQuit;
        visible = true;
        card.x = Math.max(8, Math.min(x - card.width, width - card.width - 16));
        card.y = Math.max(8, Math.min(y, height - card.height - 16));
        (quittable ? first : files).forceActiveFocus();
    }
    function run(action) {
        visible = false;
        closed();
        action(groupId);
    }

    anchors.fill: parent
    visible: false
    z: 10

    Accessible.role: Accessible.PopupMenu
    Accessible.name: "App"
    Accessible.ignored: !visible

    Keys.onUpPressed: menu.Window.activeFocusItem.nextItemInFocusChain(false).forceActiveFocus()
    Keys.onDownPressed: menu.Window.activeFocusItem.nextItemInFocusChain(true).forceActiveFocus()
    Keys.onEscapePressed: menu.run(() => {})

    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.AllButtons
        onPressed: menu.run(() => {})
    }
    CardSurface {
        id: card

        width: 200 * Theme.growth
        height: rows.height + 8

        Column {
            id: rows

            x: 4
            y: 4
            width: parent.width - 8

            MenuRow {
                id: first

                width: parent.width
                visible: menu.quittable
                label: "Quit"
                onPressed: menu.run(id => menu.apps.ask(id, false))

                Accessible.ignored: !visible
            }
            MenuRow {
                width: parent.width
                visible: menu.quittable
                label: "Force Quit"
                onPressed: menu.run(id => menu.apps.ask(id, true))

                Accessible.ignored: !visible
            }
            MenuRow {
                id: files

                width: parent.width
                label: "Show in Files"
                onPressed: menu.run(id => menu.apps.showInFiles(id))
            }
            MenuRow {
                width: parent.width
                visible: menu.apps.hasMonitor
                label: "Open System Monitor"
                onPressed: menu.run(() => menu.apps.openMonitor())

                Accessible.ignored: !visible
            }
        }
    }
}
