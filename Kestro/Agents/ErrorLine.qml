import QtQuick
import Kestro.Style

/// A failure, in one line above the rows that it concerns.
Label {
    height: Theme.rowHeight
    leftPadding: 8
    rightPadding: 8
    verticalAlignment: Text.AlignVCenter
    font: Theme.captionFont
    color: Theme.orangeInk

    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
