import QtQuick
import Kestro.Style

Pane {
    id: pane

    readonly property var look: settings.appearance
    readonly property var values: look.values

    Section {
        footer: pane.values.displayMode === "notch"
            ? "The notch isn't there yet: until it is, the sidebar stands in for it." : ""

        SettingRow {
            label: displayMode.label

            Choice {
                id: displayMode

                label: "Show Kestro in"
                options: [{ value: "sidebar", title: "Sidebar" }, { value: "notch", title: "Notch" }]
                current: pane.values.displayMode
                onChosen: value => pane.look.set("displayMode", value)
            }
        }
    }
    Section {
        title: "Sidebar"

        SettingRow {
            label: edge.label

            Choice {
                id: edge

                label: "Edge"
                options: [
                    { value: "left", title: "Left" },
                    { value: "right", title: "Right" },
                    { value: "bottom", title: "Bottom" }
                ]
                current: pane.values.sidebarEdge
                onChosen: value => pane.look.set("sidebarEdge", value)
            }
        }
        SettingRow {
            label: screen.label

            Picker {
                id: screen

                label: "Screen"
                options: pane.look.screens
                current: pane.values.sidebarScreen
                onChosen: value => pane.look.set("sidebarScreen", value)
            }
        }
        SettingRow {
            label: visibility.label

            Choice {
                id: visibility

                label: "Visibility"
                options: [
                    { value: "dock", title: "Always visible" },
                    { value: "autoHide", title: "Auto-hide" },
                    { value: "pill", title: "Pill" }
                ]
                current: pane.values.sidebarVisibility
                onChosen: value => pane.look.set("sidebarVisibility", value)
            }
        }
        SettingRow {
            label: placement.label

            Choice {
                id: placement

                label: "Placement"
                options: [{ value: "attached", title: "Attached" }, { value: "detached", title: "Detached" }]
                current: pane.values.sidebarPlacement
                onChosen: value => pane.look.set("sidebarPlacement", value)
            }
        }
        SettingRow {
            label: material.label

            Choice {
                id: material

                label: "Material"
                options: [
                    { value: "solid", title: "Solid" },
                    { value: "translucent", title: "Translucent" },
                    { value: "glass", title: "Glass" }
                ]
                current: pane.values.sidebarMaterial
                onChosen: value => pane.look.set("sidebarMaterial", value)
            }
        }
        SettingRow {
            label: tint.label

            Picker {
                id: tint

                label: "Tint"
                options: [
                    { value: "plain", title: "Plain" },
                    { value: "accent", title: "Accent", dot: Theme.accent },
                    { value: "red", title: "Red", dot: Theme.red },
                    { value: "orange", title: "Orange", dot: Theme.orange },
                    { value: "yellow", title: "Yellow", dot: Theme.yellow },
                    { value: "green", title: "Green", dot: Theme.green },
                    { value: "blue", title: "Blue", dot: Theme.blue },
                    { value: "purple", title: "Purple", dot: Theme.purple },
                    { value: "pink", title: "Pink", dot: Theme.pink },
                    { value: "graphite", title: "Graphite", dot: Theme.gray }
                ]
                current: pane.values.sidebarTint
                onChosen: value => pane.look.set("sidebarTint", value)
            }
        }
        SettingRow {
            label: iconSize.label

            Choice {
                id: iconSize

                label: "Icon size"
                options: [
                    { value: "small", title: "Small" },
                    { value: "medium", title: "Medium" },
                    { value: "large", title: "Large" }
                ]
                current: pane.values.dockIconSize
                onChosen: value => pane.look.set("dockIconSize", value)
            }
        }
        SettingRow {
            label: magnification.label

            Toggle {
                id: magnification

                label: "Magnification"
                checked: pane.values.dockMagnification
                onToggled: on => pane.look.set("dockMagnification", on)
            }
        }
        SettingRow {
            label: scale.label
            visible: pane.values.dockMagnification

            Slider {
                id: scale

                label: "Magnification scale"
                from: pane.look.smallestScale
                to: pane.look.largestScale
                step: 0.1
                value: pane.values.dockMagnificationScale
                valueText: Number(value).toFixed(1) + "×"
                onMoved: value => pane.look.set("dockMagnificationScale", value)
            }
        }
    }
    Section {
        title: "Look"

        SettingRow {
            label: liveTiles.label
            caption: "The AI tile shows how much of the five-hour limit is used."

            Toggle {
                id: liveTiles

                label: "Live tiles"
                checked: pane.values.dockLiveTiles
                onToggled: on => pane.look.set("dockLiveTiles", on)
            }
        }
        SettingRow {
            label: indicators.label
            caption: "Takes effect once the dock draws them."

            Toggle {
                id: indicators

                label: "Running indicators"
                checked: pane.values.dockRunningIndicators
                onToggled: on => pane.look.set("dockRunningIndicators", on)
            }
        }
        SettingRow {
            label: tiles.label

            Choice {
                id: tiles

                label: "Tiles"
                options: [{ value: "colorful", title: "Colorful" }, { value: "monochrome", title: "Monochrome" }]
                current: pane.values.tileStyle
                onChosen: value => pane.look.set("tileStyle", value)
            }
        }
        SettingRow {
            label: bars.label

            Choice {
                id: bars

                label: "Level bars"
                options: [{ value: "trafficLight", title: "Traffic light" }, { value: "accent", title: "Accent" }]
                current: pane.values.levelBars
                onChosen: value => pane.look.set("levelBars", value)
            }
        }
    }
}
