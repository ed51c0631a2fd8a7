import QtQuick
import Kestro.Style

/// An agent's hook: whether it is in its place, when it last told something, and a test of it with its outcome below.
Item {
    id: row

    required property var health
    required property string agent ///< by its word
    required property string name

    readonly property var facts: health.rows[agent]

    width: parent?.width ?? 0
    implicitHeight: main.height + (result.visible ? result.height + 2 : 0)
    height: implicitHeight

    Rectangle {
        anchors { left: parent.left; right: parent.right; leftMargin: Theme.horizontalPadding }
        height: 1
        visible: row.y > 0
        color: Theme.hairline
    }
    SettingRow {
        id: main

        label: row.name
        caption: row.facts.state

        PushButton {
            label: "Test"
            visible: row.facts.on
            onPressed: row.health.test(row.agent)

            Accessible.name: "Test " + row.name
            Accessible.ignored: !visible
        }
    }
    Caption {
        id: result

        x: Theme.horizontalPadding
        y: main.height - 6
        width: row.width - 2 * x
        visible: text !== ""
        text: row.facts.result
        warning: row.facts.failed
    }
}
