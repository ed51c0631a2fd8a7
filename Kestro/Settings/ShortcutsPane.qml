import QtQuick
import Kestro.Shortcuts
import Kestro.Style

Pane {
    id: pane

    component Row: SettingRow {
        id: row

        required property string title
        required property var recorder

        label: title
        caption: recorder.error
        warning: true

        RecorderField {
            recorder: row.recorder
            subject: row.title
        }
    }

    Section {
        title: "Surface"
        footer: "Click a shortcut and press the keys. Delete takes it away, Escape leaves it as it is."

        Repeater {
            model: pane.settings.surfaceShortcuts
            delegate: Row { }
        }
    }
    Section {
        title: "Layout"
        visible: items.count > 0
        footer: "These open the item, wherever you are."

        Repeater {
            id: items

            model: pane.settings.itemShortcuts
            delegate: Row { }
        }
    }
}
