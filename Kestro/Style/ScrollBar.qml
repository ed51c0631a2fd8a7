import QtQuick
import Kestro.Style

/// A thin bar at the right of a Flickable, to see where one is and to drag.
Item {
    id: bar

    required property Flickable view
    readonly property real shown: view.contentHeight > 0 ? Math.min(1, view.height / view.contentHeight) : 1
    readonly property real travel: view.contentHeight - view.height

    anchors { top: view.top; bottom: view.bottom; right: view.right; margins: 2 }
    width: 10
    visible: shown < 1

    Rectangle {
        id: thumb

        readonly property real length: Math.max(24, bar.height * bar.shown)
        readonly property bool held: area.pressed || area.containsMouse

        x: bar.width - width - 1
        y: bar.travel > 0 ? (bar.view.contentY - bar.view.originY) / bar.travel * (bar.height - length) : 0
        width: held ? 8 : 4
        height: length
        radius: width / 2
        color: Theme.ink
        opacity: held ? 0.45 : 0.22
    }
    MouseArea {
        id: area

        property real grip: 0

        function scroll(y) {
            const share = (y - grip) / Math.max(1, bar.height - thumb.length);
            bar.view.contentY = bar.view.originY + Math.max(0, Math.min(1, share)) * bar.travel;
        }

        anchors.fill: parent
        hoverEnabled: true
        preventStealing: true
        onPressed: mouse => {
            const onThumb = mouse.y >= thumb.y && mouse.y <= thumb.y + thumb.height;
            grip = onThumb ? mouse.y - thumb.y : thumb.length / 2;
            scroll(mouse.y);
        }
        onPositionChanged: mouse => {
            if (pressed)
                scroll(mouse.y);
        }
    }
}
