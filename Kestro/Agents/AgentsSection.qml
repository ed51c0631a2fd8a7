import QtQuick
import Kestro.Style

/// The pane of the agents: whether their sessions are shown, and whose.
Pane {
    id: pane

    Section {
        footer: "Adds a hook to ~/.claude/settings.json, ~/.codex/hooks.json and ~/.cursor/hooks.json (a backup is "
            + "saved next to each). Only session ids, folder names and event names are read — never prompts or code."

        SettingRow {
            label: all.label

            Toggle {
                id: all

                label: "Show Claude Code, Codex & Cursor activity"
                checked: pane.model.agentsEnabled
                onToggled: on => pane.model.agentsEnabled = on
            }
        }
        SettingRow {
            label: claude.label

            Toggle {
                id: claude

                label: "Claude Code"
                enabled: pane.model.agentsEnabled
                checked: pane.model.claudeEnabled
                onToggled: on => pane.model.claudeEnabled = on
            }
        }
        SettingRow {
            label: codex.label

            Toggle {
                id: codex

                label: "Codex"
                enabled: pane.model.agentsEnabled
                checked: pane.model.codexEnabled
                onToggled: on => pane.model.codexEnabled = on
            }
        }
        SettingRow {
            label: cursor.label
            caption: pane.model.cursorInstalled ? "" : "Cursor isn't installed (no ~/.cursor folder)."

            Toggle {
                id: cursor

                label: "Cursor"
                enabled: pane.model.agentsEnabled && pane.model.cursorInstalled
                checked: pane.model.cursorEnabled
                onToggled: on => pane.model.cursorEnabled = on
            }
        }
    }
    Repeater {
        model: pane.model.agentErrorLines

        Caption {
            required property string modelData

            x: Theme.horizontalPadding
            width: pane.width - 2 * (pane.margins + x)
            text: modelData
            warning: true
        }
    }
}
