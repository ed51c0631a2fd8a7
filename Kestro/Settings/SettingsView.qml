import QtQuick
import Kestro.Style

// The Settings window: the list of panes at the left, the chosen one beside it.
Rectangle {
    id: root

    required property var model
    required property var settings
    readonly property string pane: model.settingsPane

    function search() {
        sidebar.search();
    }
    function load() {
        const entry = settings.panes("").find(each => each.pane === pane);
        shown.setSource(entry.view, { model: model, settings: settings, subject: entry.subject, title: entry.title });
    }

    color: Theme.window
    onPaneChanged: load()
    Component.onCompleted: {
        if (shown.status === Loader.Null)
            load();
        sidebar.take();
    }

    SettingsSidebar {
        id: sidebar

        width: Math.min(parent.width * 0.34, Math.max(200, implicitWidth))
        height: parent.height
        settings: root.settings
        current: root.pane
        onChosen: pane => root.model.settingsPane = pane
    }
    Rectangle {
        id: notSaved

        readonly property string error: root.settings.preferences.saveError

        anchors { left: sidebar.right; right: parent.right; top: parent.top }
        height: visible ? words.height + 20 : 0
        visible: error !== ""
        color: Theme.group

        Caption {
            id: words

            x: Theme.horizontalPadding
            y: 10
            width: parent.width - 2 * x
            text: notSaved.error === "" ? "" : "Your changes aren't saved yet. " + notSaved.error
            warning: true
        }
        Rectangle {
            anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
            height: 1
            color: Theme.hairline
        }
    }
    Loader {
        id: shown

        anchors { left: sidebar.right; right: parent.right; top: notSaved.bottom; bottom: parent.bottom }
    }
}
