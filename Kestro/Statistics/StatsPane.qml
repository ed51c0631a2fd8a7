import QtQuick
import Kestro.Style

/// The pane of the readings: which cells the card has, and how often the window measures.
Pane {
    id: pane

    readonly property var values: subject.settings

    Section {
        title: "Stats card"
        footer: "What this computer doesn't tell is left out."

        Repeater {
            model: [
                { key: "showCPU", title: "CPU" },
                { key: "showRAM", title: "Memory" },
                { key: "showBattery", title: "Battery" },
                { key: "showTemp", title: "CPU temperature" },
                { key: "showGPU", title: "GPU" },
                { key: "showSSD", title: "SSD" }
            ]

            SettingRow {
                id: cell

                required property var modelData

                label: modelData.title

                Toggle {
                    label: cell.label
                    checked: pane.values.cells[cell.modelData.key]
                    onToggled: on => pane.values.show(cell.modelData.key, on)
                }
            }
        }
    }
    Section {
        SettingRow {
            label: interval.label

            Choice {
                id: interval

                label: "Stats window refresh"
                options: [
                    { value: "1", title: "1 s" },
                    { value: "2", title: "2 s" },
                    { value: "5", title: "5 s" }
                ]
                current: pane.values.interval
                onChosen: value => pane.values.interval = value
            }
        }
    }
}
