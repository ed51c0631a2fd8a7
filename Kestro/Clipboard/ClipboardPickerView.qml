import QtQuick
import Kestro.Style
import Kestro.Clipboard

/// The picker: what is searched for above, the entries at the left, all of the selected one at the right.
FocusScope {
    id: root

    required property var picker
    required property real shadowRoom

    focus: true

    Accessible.role: Accessible.Dialog
    Accessible.name: "Clipboard"

    Component.onCompleted: search.forceActiveFocus()

    CardSurface {
        anchors { fill: parent; margins: root.shadowRoom }

        SearchField {
            id: search

            anchors { left: parent.left; right: chips.left; top: parent.top; margins: 12 }
            focus: true
            text: root.picker.query
            onEdited: text => root.picker.query = text
        }
        Choice {
            id: chips

            anchors { right: parent.right; rightMargin: 12; verticalCenter: search.verticalCenter }
            label: "Show"
            options: root.picker.filters.map(each => ({ value: each, title: each }))
            current: root.picker.filter
            onChosen: value => {
                root.picker.filter = value;
                search.focusAll();
            }
        }
        Rectangle {
            id: upper

            anchors { left: parent.left; right: parent.right; top: search.bottom; topMargin: 12 }
            height: 1
            color: Theme.hairline
        }
        ListView {
            id: list

            anchors { left: parent.left; top: upper.bottom; bottom: lower.top; leftMargin: 8; topMargin: 6 }
            anchors.bottomMargin: 6
            width: Math.round(parent.width * 0.54)
            clip: true
            interactive: false
            reuseItems: true
            model: root.picker.rows
            currentIndex: root.picker.selectedRow
            highlightMoveDuration: 0
            keyNavigationEnabled: false
            onCurrentIndexChanged: positionViewAtIndex(currentIndex, ListView.Contain)

            Accessible.role: Accessible.List
            Accessible.name: "Entries"

            delegate: ClipRow {
                selected: index === list.currentIndex
                onSelect: root.picker.select(entryId)
                onPick: root.picker.pick(entryId)
                onMenu: (x, y) => menu.open(entryId, pinned, x, y)
            }
            WheelHandler {
                onWheel: event => {
                    const by = event.pixelDelta.y || event.angleDelta.y / 120 * 60;
                    const last = list.originY + Math.max(0, list.contentHeight - list.height);
                    list.contentY = Math.max(list.originY, Math.min(last, list.contentY - by));
                }
            }
        }
        ScrollBar {
            view: list
        }
        Label {
            anchors.centerIn: list
            text: root.picker.emptyText
            color: Theme.secondaryInk
            Accessible.role: Accessible.StaticText
            Accessible.name: text
            Accessible.ignored: text === ""
        }
        Rectangle {
            id: middle

            anchors { left: list.right; leftMargin: 10; top: upper.bottom; bottom: lower.top }
            width: 1
            color: Theme.hairline
        }
        ClipPreviewView {
            anchors { left: middle.right; right: parent.right; top: upper.bottom; bottom: lower.top; margins: 12 }
            preview: root.picker.preview
            nothing: root.picker.nothingSelected
            onRemove: id => root.picker.remove(id)
        }
        Rectangle {
            id: lower

            anchors { left: parent.left; right: parent.right; bottom: footer.top }
            height: 1
            color: Theme.hairline
        }
        Item {
            id: footer

            anchors { left: parent.left; right: parent.right; bottom: parent.bottom; leftMargin: 16; rightMargin: 12 }
            height: 34 * Theme.growth

            Label {
                anchors { left: parent.left; right: undo.left; rightMargin: 8; verticalCenter: parent.verticalCenter }
                text: root.picker.note !== "" ? root.picker.note
                    : root.picker.undoText !== "" ? root.picker.undoText : root.picker.hints
                font: Theme.captionFont
                color: root.picker.note !== "" ? Theme.redInk : Theme.secondaryInk
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
            PushButton {
                id: undo

                anchors { right: parent.right; verticalCenter: parent.verticalCenter }
                implicitHeight: 24 * Theme.growth
                width: visible ? implicitWidth : 0
                visible: root.picker.undoText !== ""
                label: "Undo (Ctrl+Z)"
                onPressed: root.picker.undo()

                Accessible.ignored: !visible
            }
        }
    }
    ClipMenu {
        id: menu

        picker: root.picker
        onClosed: search.forceActiveFocus()
    }
}
