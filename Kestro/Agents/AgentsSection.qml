import QtQuick
import Kestro.Agents
import Kestro.Style

/// The pane of the agents: whose sessions are shown, their limits, and whether their hooks work.
Pane {
    id: pane

    readonly property AgentsModel agents: subject.agents
    readonly property LimitsModel limits: subject.limits
    readonly property var health: subject.health

    // Failures of the section above.
    component Errors: Column {
        property alias lines: messages.model

        x: Theme.horizontalPadding
        width: pane.width - 2 * (pane.margins + x)
        visible: messages.count > 0

        Repeater {
            id: messages

            Caption {
                required property string modelData

                width: parent.width
                text: modelData
                warning: true
            }
        }
    }

    Component.onCompleted: health.refresh()
    onVisibleChanged: if (visible) health.refresh()

    Connections {
        target: pane.agents

        function onErrorsChanged() { pane.health.refresh() }
    }
    Timer {
        interval: 60000
        repeat: true
        running: pane.visible
        onTriggered: pane.health.refresh()
    }

    Section {
        footer: "Adds a hook to ~/.claude/settings.json, ~/.codex/hooks.json and ~/.cursor/hooks.json (a backup is "
            + "saved next to each). Only session ids, folder names and event names are read — never prompts or code."

        SettingRow {
            label: all.label

            Toggle {
                id: all

                label: "Show Claude Code, Codex & Cursor activity"
                checked: pane.agents.activity.on
                onToggled: on => pane.agents.activity.on = on
            }
        }
        SettingRow {
            label: claude.label

            Toggle {
                id: claude

                label: "Claude Code"
                enabled: pane.agents.activity.on
                checked: pane.agents.claude.on
                onToggled: on => pane.agents.claude.on = on
            }
        }
        SettingRow {
            label: codex.label

            Toggle {
                id: codex

                label: "Codex"
                enabled: pane.agents.activity.on
                checked: pane.agents.codex.on
                onToggled: on => pane.agents.codex.on = on
            }
        }
        SettingRow {
            label: cursor.label
            caption: pane.agents.cursorInstalled ? "" : "Cursor isn't installed (no ~/.cursor folder)."

            Toggle {
                id: cursor

                label: "Cursor"
                enabled: pane.agents.activity.on && pane.agents.cursorInstalled
                checked: pane.agents.cursor.on
                onToggled: on => pane.agents.cursor.on = on
            }
        }
    }
    Errors {
        lines: pane.agents.errorLines
    }
    Section {
        footer: "Codex limits are read from ~/.codex/sessions. For Claude Code, the statusLine command in "
            + "~/.claude/settings.json is wrapped by a Kestro script (a backup is saved next to it) that passes the "
            + "status data to Kestro, which reads only the rate limits, and then runs your original command — your "
            + "status line looks exactly the same. Turning this off restores it."

        SettingRow {
            label: planLimits.label

            Toggle {
                id: planLimits

                label: "Show Claude Code & Codex plan limits"
                checked: pane.limits.enabled.on
                onToggled: on => pane.limits.enabled.on = on
            }
        }
    }
    Errors {
        lines: pane.limits.errorLines
    }
    Section {
        title: "Hooks"

        Repeater {
            model: [{ agent: "claude", name: "Claude Code" }, { agent: "codex", name: "Codex" },
                { agent: "cursor", name: "Cursor" }]

            AgentHealthRow {
                required property var modelData

                health: pane.health
                agent: modelData.agent
                name: modelData.name
            }
        }
        SettingRow {
            label: "Hooks and socket"
            caption: "Writes the hooks again and opens the socket anew."

            PushButton {
                label: "Repair"
                enabled: pane.health.repairable
                onPressed: pane.health.repair()
            }
        }
    }
}
