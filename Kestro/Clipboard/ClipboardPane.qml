import QtQuick
import Kestro.Shortcuts
import Kestro.Style

/// The pane of the clipboard: what is kept, what never is, and what happens to an entry that is picked.
Pane {
    id: pane

    readonly property var values: subject.settings

    Section {
        footer: "Keeps your last 200 copies (up to 12 images) on this computer, in ~/Library/Application "
            + "Support/Kestro/clipboard, plus up to 50 pinned entries that are never trimmed. Anything an app marks as "
            + "concealed (most password managers do) or transient is skipped, and so is anything copied while an app "
            + "below is frontmost. Picking an entry copies it back; with Paste after picking on, Kestro also pastes it "
            + "into the app you were in."

        SettingRow {
            label: history.label

            Toggle {
                id: history

                label: "Clipboard history"
                checked: pane.subject.enabled.on
                onToggled: on => pane.subject.enabled.on = on
            }
        }
        SettingRow {
            label: paste.label
            caption: pane.values.pastes && !pane.values.canPaste
                ? "Needs a window manager and an X server with XTEST." : ""
            warning: true

            Toggle {
                id: paste

                label: "Paste after picking"
                checked: pane.values.pastes
                onToggled: on => pane.values.pastes = on
            }
        }
        SettingRow {
            label: masks.label
            caption: "What looks like a key, a token or a card number shows when the pointer rests on it."

            Toggle {
                id: masks

                label: "Hide secrets"
                checked: pane.values.masks
                onToggled: on => pane.values.masks = on
            }
        }
    }
    Repeater {
        model: pane.settings.shortcuts.filter(each => each.title === "Clipboard")

        Section {
            id: keys

            required property var modelData

            Repeater {
                model: keys.modelData.list

                SettingRow {
                    id: key

                    required property string title
                    required property var recorder

                    label: title
                    caption: recorder.error
                    warning: true

                    RecorderField {
                        recorder: key.recorder
                        subject: key.title
                    }
                }
            }
        }
    }
    Section {
        SettingRow {
            label: "History"
            caption: pane.values.undoText

            Row {
                spacing: 8

                PushButton {
                    visible: pane.values.undoText !== ""
                    label: "Undo"
                    onPressed: pane.values.undo()
                    Accessible.ignored: !visible
                }
                PushButton {
                    label: "Show History"
                    enabled: pane.subject.enabled.on
                    onPressed: pane.subject.showHistory()
                }
                PushButton {
                    label: "Clear History…"
                    enabled: pane.values.hasStoredData
                    onPressed: question.active = true
                }
            }
        }
    }
    Section {
        title: "Never record from"

        Repeater {
            model: pane.values.ignored

            SettingRow {
                id: ignored

                required property var modelData

                label: modelData.name

                PushButton {
                    label: "Remove"
                    onPressed: pane.values.removeIgnored(ignored.modelData.id)

                    Accessible.description: ignored.modelData.name
                }
            }
        }
        SettingRow {
            label: "Another application"

            Picker {
                label: "Add App…"
                placeholder: "Add App…"
                options: pane.visible ? pane.values.apps() : []
                onChosen: id => pane.values.addIgnored(id)
            }
        }
    }
    Loader {
        id: question

        active: false
        sourceComponent: Sheet {
            owner: pane
            title: "Clear clipboard history?"
            acceptLabel: "Clear History"
            onAccepted: {
                question.active = false;
                pane.values.clear(false);
            }
            onCancelled: question.active = false

            Caption {
                width: parent.width
                text: "Clear History keeps your pinned entries."
            }
            PushButton {
                label: "Clear Including Pinned"
                onPressed: {
                    question.active = false;
                    pane.values.clear(true);
                }
            }
        }
    }
}
