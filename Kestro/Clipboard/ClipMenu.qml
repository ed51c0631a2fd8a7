import QtQuick
import Kestro.Style

/// What can be done with an entry of the picker. It stands within the picker's window, which has room for it.
FocusScope {
    id: menu

    required property var picker
    property string entryId: ""
    property bool pinned: false

    signal closed

    function open(id, isPinned, x, y) {
        entryId = id;
        pinned = isPinned;
        card.x = Math.min(x, width - card.width - 32);
        card.y = Math.min(y, height - card.height - 32);
        visible = true;
        first.forceActiveFocus();
    }
    function close() {
        visible = false;
        closed();
    }
    function run(action) {
        const id = entryId;
        close();
        action(id);
    }

    anchors.fill: parent
    visible: false
    z: 10

    Accessible.role: Accessible.PopupMenu
    Accessible.name: "Entry"
    Accessible.ignored: !visible

    Keys.onUpPressed: menu.Window.activeFocusItem.nextItemInFocusChain(false).forceActiveFocus()
    Keys.onDownPressed: menu.Window.activeFocusItem.nextItemInFocusChain(true).forceActiveFocus()

    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.AllButtons
        onPressed: menu.close()
    }
    CardSurface {
        id: card

        width: 160 * Theme.growth
        height: rows.height + 8

        Column {
            id: rows

            x: 4
            y: 4
            width: parent.width - 8

            MenuRow {
                id: first

                width: parent.width
                label: "Copy"
                onPressed: menu.run(id => menu.picker.copyOnly(id))
            }
            MenuRow {
                width: parent.width
                label: menu.pinned ? "Unpin" : "Pin"
                onPressed: menu.run(id => menu.picker.togglePin(id))
            }
            MenuRow {
                width: parent.width
                label: "Delete"
                onPressed: menu.run(id => menu.picker.remove(id))
            }
        }
    }
}
