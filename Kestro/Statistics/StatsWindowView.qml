import QtQuick
import Kestro.Style
import Kestro.Cleanup

// The statistics window: what the machine does now, section by section.
Rectangle {
    id: root

    required property var widget
    required property var toolTips
    readonly property var model: widget.window
    readonly property bool seen: Window.visibility !== Window.Hidden && Window.visibility !== Window.Minimized

    color: Theme.window
    Accessible.role: Accessible.Pane
    Accessible.name: "Stats"
    Component.onCompleted: pane.forceActiveFocus()

    Binding {
        target: root.model
        property: "visible"
        value: root.seen
        restoreMode: Binding.RestoreNone
    }
    Row {
        id: header

        anchors { right: parent.right; rightMargin: 20; top: parent.top; topMargin: 16 }
        spacing: 8

        PushButton {
            label: root.model.paused ? "Resume" : "Pause"
            onPressed: root.model.paused = !root.model.paused
        }
        PushButton {
            label: "Refresh"
            onPressed: root.model.refresh()
        }
        PushButton {
            id: cleanUp

            label: "Clean Up"
            onPressed: root.widget.openCleanup()

            Accessible.description: "Delete caches and logs that apps recreate"

            HoverHandler {
                onHoveredChanged: {
                    if (hovered)
                        root.toolTips?.entered(cleanUp, "Delete caches and logs that apps recreate");
                    else
                        root.toolTips?.left(cleanUp);
                }
            }
        }
    }
    Label {
        anchors { left: parent.left; leftMargin: 36; verticalCenter: header.verticalCenter }
        width: Math.min(implicitWidth, header.x - x - 12)
        text: root.widget.notice !== "" ? root.widget.notice : root.model.paused ? "Paused" : "Stats"
        font: Theme.titleFont

        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    ScrollPane {
        id: pane

        anchors { fill: parent; topMargin: header.height + 20 }
        focus: true

        Repeater {
            model: root.model.sections

            StatsSectionView {
                required property var modelData

                section: modelData
                window: root.model
                toolTips: root.toolTips
            }
        }
        AppsSection {
            apps: root.model.apps
            toolTips: root.toolTips
            onMenuWanted: (groupId, quittable, button) => {
                const at = button.mapToItem(root, button.width, button.height);
                menu.open(groupId, quittable, at.x, at.y);
            }
        }
    }
    AppMenu {
        id: menu

        apps: root.model.apps
        onClosed: pane.forceActiveFocus()
    }
    Loader {
        active: root.model.apps.question !== ""
        sourceComponent: Sheet {
            owner: pane
            title: root.model.apps.questionTitle
            acceptLabel: root.model.apps.answer
            onAccepted: root.model.apps.confirm()
            onCancelled: root.model.apps.dismiss()

            Caption {
                width: parent.width
                text: root.model.apps.question
            }
        }
    }
    Loader {
        active: root.widget.cleanup !== null
        sourceComponent: CleanupSheet {
            owner: pane
            model: root.widget.cleanup
            onClosed: root.widget.closeCleanup()
        }
    }
}
