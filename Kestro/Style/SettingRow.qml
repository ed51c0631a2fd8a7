import QtQuick
import Kestro.Style

/// A row of a section: its label, a caption below it, and the control at its right end. The control goes below where
/// the two do not fit beside each other.
Item {
    id: row

    property string label: ""
    property string caption: ""
    property bool warning: false
    default property alias control: slot.data

    readonly property real room: width - 2 * Theme.horizontalPadding
    readonly property Item content: slot.children.length > 0 ? slot.children[0] : null
    readonly property real contentWidth: content ? content.implicitWidth : 0
    // A label is broken into lines before its control is sent below it, but not into shreds.
    readonly property bool stacked: content !== null
        && contentWidth + 16 + Math.min(title.implicitWidth, room * 0.4) > room

    width: parent?.width ?? 0
    implicitHeight: Math.max(44, stacked ? words.height + slot.height + 28 : Math.max(words.height, slot.height) + 16)
    height: implicitHeight

    Rectangle {
        anchors { left: parent.left; right: parent.right; leftMargin: Theme.horizontalPadding }
        height: 1
        visible: row.y > 0
        color: Theme.hairline
    }
    Column {
        id: words

        x: Theme.horizontalPadding
        y: row.stacked ? 10 : (row.height - height) / 2
        width: row.stacked || !row.content ? row.room : row.room - row.contentWidth - 16
        spacing: 2

        Label {
            id: title

            width: parent.width
            wrapMode: Text.Wrap
            elide: Text.ElideNone
            maximumLineCount: 2147483647
            text: row.label
            opacity: row.content && !row.content.enabled ? 0.38 : 1
        }
        Caption {
            width: parent.width
            visible: text !== ""
            text: row.caption
            warning: row.warning
        }
    }
    Item {
        id: slot

        x: row.stacked ? Theme.horizontalPadding : row.width - Theme.horizontalPadding - width
        y: row.stacked ? words.y + words.height + 8 : (row.height - height) / 2
        width: Math.min(row.contentWidth, row.room)
        height: row.content ? row.content.implicitHeight : 0
    }
    Binding {
        target: row.content
        when: row.content !== null
        property: "width"
        value: slot.width
        restoreMode: Binding.RestoreNone
    }
}
