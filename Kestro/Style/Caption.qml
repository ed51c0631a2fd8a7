import QtQuick
import Kestro.Style

/// An explanation, in as many lines as it takes; or what went wrong.
Label {
    property bool warning: false

    wrapMode: Text.Wrap
    elide: Text.ElideNone
    maximumLineCount: 2147483647
    font: Theme.captionFont
    color: warning ? Theme.redInk : Theme.secondaryInk
    lineHeight: 1.15

    Accessible.role: Accessible.StaticText
    Accessible.name: text
    Accessible.ignored: !visible
}
