import QtQuick
import Kestro.Style

// A field to search the panes with, and the list of those that it finds. The arrow keys choose a pane at once.
Rectangle {
    id: sidebar

    required property var settings
    required property string current
    property var found: settings.panes("")
    property real widest: 0 ///< of all rows that there were: a search does not move what stands beside
    readonly property int currentIndex: found.findIndex(each => each.pane === current)

    signal chosen(string pane)

    function search() {
        field.focusAll();
    }
    function take() {
        list.forceActiveFocus();
    }
    function filter(text) {
        found = settings.panes(text);
        if (found.length > 0 && currentIndex < 0)
            chosen(found[0].pane);
    }
    function step(by) {
        const next = Math.max(0, Math.min(found.length - 1, currentIndex + by));
        if (found.length > 0)
            chosen(found[next].pane);
    }

    implicitWidth: widest + 24
    color: Theme.sidebar

    Rectangle {
        anchors { right: parent.right; top: parent.top; bottom: parent.bottom }
        width: 1
        color: Theme.hairline
    }
    SearchField {
        id: field

        anchors { left: parent.left; right: parent.right; top: parent.top; margins: 12 }
        onEdited: text => sidebar.filter(text)
        onAccepted: list.forceActiveFocus()
        Keys.onDownPressed: list.forceActiveFocus()
    }
    Column {
        id: list

        anchors { left: parent.left; right: parent.right; top: field.bottom; margins: 12 }
        spacing: 2
        activeFocusOnTab: true

        Accessible.role: Accessible.PageTabList
        Accessible.name: "Panes"

        Keys.onUpPressed: sidebar.step(-1)
        Keys.onDownPressed: sidebar.step(1)

        Repeater {
            model: sidebar.found

            SettingsSidebarRow {
                required property var modelData

                width: list.width
                onImplicitWidthChanged: sidebar.widest = Math.max(sidebar.widest, implicitWidth)
                label: modelData.title
                symbol: modelData.symbol
                selected: modelData.pane === sidebar.current
                focused: list.activeFocus
                onPressed: {
                    list.forceActiveFocus();
                    sidebar.chosen(modelData.pane);
                }
            }
        }
    }
    Caption {
        anchors { left: parent.left; right: parent.right; top: field.bottom; margins: 24 }
        visible: sidebar.found.length === 0
        horizontalAlignment: Text.AlignHCenter
        text: "No results"
    }
}
