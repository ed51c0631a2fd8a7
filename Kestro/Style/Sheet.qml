import QtQuick
import Kestro.Style

/// A question over the window that asks it: what lies below waits until it is answered. Return accepts, Escape and
/// Cancel do not. It stands in the window of `owner`, which has the keyboard again afterwards.
FocusScope {
    id: sheet

    required property Item owner
    property string title: ""
    property string acceptLabel: "Add"
    property bool acceptable: true
    property real wanted: 420 ///< the width that it takes where there is room
    property Item first: null ///< has the keyboard at first
    default property alias content: column.data

    signal accepted
    signal cancelled

    function accept() {
        if (acceptable)
            accepted();
    }

    parent: owner.Window.contentItem
    anchors.fill: parent
    focus: true
    z: 900

    Accessible.role: Accessible.Dialog
    Accessible.name: sheet.title

    Component.onCompleted: (first ?? cancel).forceActiveFocus()
    Component.onDestruction: owner?.forceActiveFocus()

    Keys.onEscapePressed: cancelled()
    Keys.onReturnPressed: accept()
    Keys.onEnterPressed: accept()

    // The sheet is modal: Tab wraps from its last control to its first.
    Item {
        id: begin

        activeFocusOnTab: true
        onActiveFocusChanged: {
            if (activeFocus)
                end.nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason);
        }
    }
    Rectangle {
        anchors.fill: parent
        color: Theme.shade
    }
    // The sheet is modal: presses beside it are dropped.
    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.AllButtons
        hoverEnabled: true
        onWheel: wheel => wheel.accepted = true
    }
    CardSurface {
        anchors.centerIn: parent
        width: Math.min(sheet.width - 32, sheet.wanted)
        height: Math.min(sheet.height - 32, column.height + buttons.height + title.height + 72)
        fill: Theme.window
        radius: Theme.radius

        Label {
            id: title

            x: 20
            y: 20
            width: parent.width - 40
            text: sheet.title
            font: Theme.titleFont

            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        Column {
            id: column

            anchors { left: title.left; right: title.right; top: title.bottom; topMargin: 16 }
            spacing: 8
        }
        Row {
            id: buttons

            anchors { right: title.right; bottom: parent.bottom; bottomMargin: 20 }
            spacing: 8

            PushButton {
                id: cancel

                label: "Cancel"
                onPressed: sheet.cancelled()
            }
            PushButton {
                id: confirm

                label: sheet.acceptLabel
                prominent: true
                enabled: sheet.acceptable
                onPressed: sheet.accept()
            }
        }
    }
    Item {
        id: end

        activeFocusOnTab: true
        onActiveFocusChanged: {
            if (activeFocus)
                begin.nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason);
        }
    }
}
