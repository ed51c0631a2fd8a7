import QtQuick
import Kestro.Style

/// Lists what may be deleted over the window that it was opened from, and deletes what the user checks and confirms.
FocusScope {
    id: sheet

    required property Item owner
    required property var model

    signal closed

    parent: owner.Window.contentItem
    anchors.fill: parent
    focus: true
    z: 800

    Accessible.role: Accessible.Dialog
    Accessible.name: "Clean Up"

    Component.onCompleted: {
        model.scan();
        done.forceActiveFocus();
    }
    Component.onDestruction: owner?.forceActiveFocus()
    Keys.onEscapePressed: sheet.closed()

    Rectangle {
        anchors.fill: parent
        color: Theme.shade
    }
    // A press beside it does nothing.
    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.AllButtons
        hoverEnabled: true
        onWheel: wheel => wheel.accepted = true
    }
    CardSurface {
        id: card

        anchors.centerIn: parent
        width: Math.min(sheet.width - 32, 520 * Theme.growth)
        height: Math.min(sheet.height - 32, 620 * Theme.growth)
        fill: Theme.window
        radius: Theme.radius

        Column {
            id: head

            x: 20
            y: 20
            width: parent.width - 40
            spacing: 4

            Label {
                width: parent.width
                text: "Clean Up"
                font: Theme.titleFont

                Accessible.role: Accessible.Heading
                Accessible.name: text
            }
            Caption {
                width: parent.width
                text: "Caches and logs that apps recreate when they need them. Nothing is deleted until you check it "
                    + "and confirm."
            }
        }
        Label {
            anchors.centerIn: list
            visible: sheet.model.measuring
            text: "Measuring…"
            color: Theme.secondaryInk

            Accessible.role: Accessible.StaticText
            Accessible.name: text
            Accessible.ignored: !visible
        }
        ListView {
            id: list

            anchors {
                left: head.left
                right: head.right
                top: head.bottom
                topMargin: 12
                bottom: trash.top
                bottomMargin: 12
            }
            clip: true
            reuseItems: true
            boundsBehavior: Flickable.StopAtBounds
            model: sheet.model

            delegate: CheckRow {
                required property int index
                required property string name
                required property string size
                required property bool isCategory
                required property bool free

                width: list.width
                label: name
                figure: size
                strong: isCategory
                enabled: free && !sheet.model.busy
                onCheckWanted: on => sheet.model.check(index, on)

                required checked
            }

            ScrollBar {
                view: list
            }
        }
        Item {
            id: trash

            anchors { left: head.left; right: head.right; bottom: foot.top; bottomMargin: 12 }
            height: toggle.height

            Label {
                anchors { left: parent.left; right: toggle.left; rightMargin: 12; verticalCenter: parent.verticalCenter }
                text: toggle.label
                color: Theme.secondaryInk
            }
            Toggle {
                id: toggle

                anchors.right: parent.right
                label: "Move to the trash where that is possible"
                checked: sheet.model.usesTrash
                onToggled: on => sheet.model.usesTrash = on
            }
        }
        Item {
            id: foot

            anchors { left: head.left; right: head.right; bottom: parent.bottom; bottomMargin: 20 }
            height: buttons.height

            Column {
                anchors { left: parent.left; right: spinner.left; rightMargin: 8; verticalCenter: parent.verticalCenter }

                Label {
                    width: parent.width
                    text: sheet.model.selectedText
                    font: Theme.captionFont

                    Accessible.role: Accessible.StaticText
                    Accessible.name: text
                }
                Label {
                    width: parent.width
                    visible: text !== ""
                    text: sheet.model.result
                    font: Theme.captionFont
                    color: Theme.secondaryInk

                    Accessible.role: Accessible.StaticText
                    Accessible.name: text
                    Accessible.ignored: !visible
                }
            }
            Spinner {
                id: spinner

                anchors { right: buttons.left; rightMargin: 12; verticalCenter: parent.verticalCenter }
                visible: sheet.model.busy
                color: Theme.secondaryInk
            }
            Row {
                id: buttons

                anchors.right: parent.right
                spacing: 8

                PushButton {
                    visible: sheet.model.busy
                    label: "Stop"
                    onPressed: sheet.model.cancel()

                    Accessible.ignored: !visible
                }
                PushButton {
                    id: done

                    label: "Done"
                    onPressed: sheet.closed()
                }
                PushButton {
                    label: "Clean Up"
                    prominent: true
                    enabled: sheet.model.canClean
                    onPressed: question.active = true
                }
            }
        }
    }
    Loader {
        id: question

        active: false
        sourceComponent: Sheet {
            owner: done
            title: "Clean Up"
            acceptLabel: "Delete"
            onAccepted: {
                question.active = false;
                sheet.model.clean();
            }
            onCancelled: question.active = false

            Caption {
                width: parent.width
                text: sheet.model.confirmation
            }
        }
    }
}
