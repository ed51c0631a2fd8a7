import QtQuick
import Kestro.Style

/// A line of text. Plain always: what it shows may come from anywhere.
Text {
    color: Theme.ink
    font: Theme.bodyFont
    textFormat: Text.PlainText
    elide: Text.ElideRight
    maximumLineCount: 1
    renderType: Text.NativeRendering
}
