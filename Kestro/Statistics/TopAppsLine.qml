import QtQuick
import Kestro.Style

/// The busiest applications in one line.
Item {
    id: line

    required property var card

    implicitHeight: 18 * Theme.growth

    Accessible.role: Accessible.StaticText
    Accessible.name: title.text + " " + names.text

    Label {
        id: title

        anchors.verticalCenter: parent.verticalCenter
        text: "TOP APPS"
        font: Theme.captionFont
        color: Theme.secondaryInk
    }
    Label {
        id: names

        anchors {
            left: title.right
            leftMargin: 12
            right: parent.right
            verticalCenter: parent.verticalCenter
        }
        text: line.card.measuring ? "Measuring…" : line.card.topApps.join("   ")
        font: Theme.captionFont
    }
}
