import QtQuick
import Kestro.Style
import Kestro.Clipboard

/// What kind of entry it is, or how its picture looks; the application that it came from at the corner.
Item {
    id: icon

    required property string symbol
    required property var thumbnail
    required property var appIcon

    implicitWidth: 24 * Theme.growth
    implicitHeight: 24 * Theme.growth

    Symbol {
        anchors.centerIn: parent
        visible: picture.empty
        name: icon.symbol
        size: 15 * Theme.growth
        color: Theme.secondaryInk
    }
    ClipPicture {
        id: picture

        anchors.centerIn: parent
        width: parent.width
        height: parent.height
        rounding: 4
        image: icon.thumbnail
    }
    ClipPicture {
        anchors { right: parent.right; bottom: parent.bottom; rightMargin: -3; bottomMargin: -2 }
        width: 12 * Theme.growth
        height: width
        image: icon.appIcon
    }
}
