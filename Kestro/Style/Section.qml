import QtQuick
import Kestro.Style

/// Rows that belong together, on one ground, with a title above and an explanation below where it has them.
Column {
    id: section

    property string title: ""
    property string footer: ""
    default property alias rows: column.data

    width: parent?.width ?? 0
    spacing: 6

    Label {
        x: Theme.horizontalPadding
        width: section.width - 2 * x
        visible: section.title !== ""
        text: section.title
        font: Theme.strongFont

        Accessible.role: Accessible.Heading
        Accessible.name: text
        Accessible.ignored: !visible
    }
    Rectangle {
        width: section.width
        height: column.height
        visible: column.height > 0
        radius: Theme.radius
        color: Theme.group
        border { width: 1; color: Theme.hairline }

        Column {
            id: column

            width: parent.width
        }
    }
    Caption {
        x: Theme.horizontalPadding
        width: section.width - 2 * x
        visible: section.footer !== ""
        text: section.footer
    }
}
