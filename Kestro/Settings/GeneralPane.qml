import QtQuick
import Kestro.Style

Pane {
    id: pane

    readonly property var general: settings.general

    Section {
        SettingRow {
            label: login.label
            caption: pane.general.loginFailure
            warning: true

            Toggle {
                id: login

                label: "Open at login"
                checked: pane.general.opensAtLogin
                onToggled: on => pane.general.opensAtLogin = on
            }
        }
    }
    Section {
        footer: "New versions come with your distribution's updates, or from where you got this copy. "
            + "Kestro never downloads anything by itself."

        SettingRow {
            label: "Version"

            Label {
                text: pane.general.version
                color: Theme.secondaryInk

                Accessible.role: Accessible.StaticText
                Accessible.name: "Version " + text
            }
        }
    }
}
