import QtQuick
import Kestro.Style

/// A view of content that may be higher than its place. The wheel, the page keys and the bar scroll it, and so does a
/// control that gets the focus while it is out of sight. `content` is laid out from top to bottom.
Item {
    id: pane

    property real margins: 20
    property real spacing: 20
    default property alias content: column.data
    readonly property Item focused: Window.activeFocusItem

    function scrollTo(y) {
        flick.contentY = Math.max(0, Math.min(flick.contentHeight - flick.height, y));
    }
    function reveal(item) {
        let each = item;
        while (each && each !== column)
            each = each.parent;
        if (!each)
            return;
        const top = item.mapToItem(column, 0, 0).y + column.y;
        if (top - 12 < flick.contentY)
            scrollTo(top - 12);
        else if (top + item.height + 12 > flick.contentY + flick.height)
            scrollTo(Math.min(top - 12, top + item.height + 12 - flick.height));
    }

    onFocusedChanged: reveal(focused)

    Keys.onPressed: event => {
        const page = flick.height * 0.9;
        const by = { [Qt.Key_PageUp]: -page, [Qt.Key_PageDown]: page }[event.key];
        event.accepted = by !== undefined;
        if (event.accepted)
            scrollTo(flick.contentY + by);
    }

    Flickable {
        id: flick

        anchors.fill: parent
        clip: true
        // A mouse that drags is about to select or to move something here; fingers have the handler below.
        interactive: false
        contentWidth: width
        contentHeight: column.height + 2 * pane.margins
        onHeightChanged: Qt.callLater(pane.scrollTo, contentY)
        onContentHeightChanged: Qt.callLater(pane.scrollTo, contentY)

        WheelHandler {
            onWheel: event => pane.scrollTo(flick.contentY - (event.pixelDelta.y || event.angleDelta.y / 120 * 60))
        }
        DragHandler {
            property real start: 0

            acceptedDevices: PointerDevice.TouchScreen
            target: null
            xAxis.enabled: false
            onActiveChanged: start = flick.contentY
            onTranslationChanged: if (active) pane.scrollTo(start - translation.y)
        }
        Column {
            id: column

            x: pane.margins
            y: pane.margins
            width: flick.width - 2 * pane.margins
            spacing: pane.spacing
        }
    }
    ScrollBar {
        view: flick
    }
}
