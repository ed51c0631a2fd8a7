import QtQuick
import Kestro.Style

// The window of the selected widget's card: the card, and round it the room for its shadow.
Item {
    id: root

    required property var model
    required property QtObject toolTips
    required property real shadowRoom

    // Slides the card from `offset` to its place while it fades in.
    function appear(offset) {
        motion.stop();
        card.offset = offset;
        card.opacity = 0;
        motion.start();
    }

    Item {
        id: card

        property point offset

        x: root.shadowRoom + offset.x
        y: root.shadowRoom + offset.y
        width: root.width - 2 * root.shadowRoom
        height: root.height - 2 * root.shadowRoom

        CardSurface { anchors.fill: parent }
        WidgetCard {
            anchors.fill: parent
            model: root.model
            toolTips: root.toolTips
        }
    }

    ParallelAnimation {
        id: motion

        PropertyAnimation {
            target: card
            property: "offset"
            to: Qt.point(0, 0)
            duration: Theme.reduceMotion ? 0 : 150
            easing.type: Easing.OutCubic
        }
        NumberAnimation {
            target: card
            property: "opacity"
            to: 1
            duration: Theme.reduceMotion ? 0 : 150
        }
    }
}
