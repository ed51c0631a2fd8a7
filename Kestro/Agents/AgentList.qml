import QtQuick
import Kestro.Style

/// The sessions: what went wrong first, then the first `limit` rows of the model `rows`, or that there are none.
Column {
    id: list

    required property var rows
    property var errorLines: []
    property int limit: 2147483647

    Accessible.role: Accessible.List
    Accessible.name: "Sessions"

    Repeater {
        model: list.errorLines

        Label {
            required property string modelData

            width: list.width
            height: Theme.rowHeight
            verticalAlignment: Text.AlignVCenter
            text: modelData
            font: Theme.captionFont
            color: Theme.orangeInk

            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }
    Repeater {
        id: sessions

        model: list.rows

        AgentRow {
            required property int index

            width: list.width
            visible: index < list.limit
        }
    }
    Label {
        width: list.width
        height: Theme.rowHeight
        verticalAlignment: Text.AlignVCenter
        visible: sessions.count === 0
        opacity: 0.5
        text: "No active sessions"
        font: Theme.captionFont

        Accessible.role: Accessible.StaticText
        Accessible.name: text
        Accessible.ignored: !visible
    }
}
