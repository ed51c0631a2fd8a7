import QtQuick
import Kestro.Style

/// The tile of an item of the strip in the theme's look; `restSize` is its side while nothing is magnified.
TileItem {
    implicitWidth: restSize
    implicitHeight: restSize
    restSize: 36
    dark: Theme.dark
}
