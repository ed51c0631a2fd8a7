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

    Repeater {
        model: pane.settings.shortcuts

        Section {
            id: section

            required property var modelData
            readonly property bool ofLayout: modelData.title === "Layout"

            title: modelData.title
            visible: rows.count > 0
            footer: ofLayout ? "These open the item, wherever you are."
                             : "Click a shortcut and press the keys. Delete takes it away, Escape leaves it as it is."

            Repeater {
                id: rows

                model: section.modelData.list
                delegate: Row { }
            }
        }
    }
}
