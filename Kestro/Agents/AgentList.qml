import QtQuick
import Kestro.Style

/// The sessions: what went wrong first, then the rows of the model `rows`, or that there are none. Only rows that can be
/// seen are made. It would like to be as high as its first `limit` rows. With `keyboard` it can be scrolled, and a row
/// of it selected.
FocusScope {
    id: list

    required property var rows
    property var errorLines: []
    property int limit: 2147483647
    property bool keyboard: false

    signal raise(string sessionId)

    function scrollTo(y) {
        const end = Math.max(0, sessions.contentHeight - sessions.height);
        sessions.contentY = sessions.originY + Math.max(0, Math.min(end, y));
    }
    function select(row) {
        sessions.currentIndex = Math.max(0, Math.min(sessions.count - 1, row));
    }

    implicitHeight: errors.height + Math.max(1, Math.min(limit, sessions.count)) * Theme.rowHeight

    Accessible.role: Accessible.List
    Accessible.name: "Sessions"

    Column {
        id: errors

        Repeater {
            model: list.errorLines

            ErrorLine {
                required property string modelData

                width: list.width
                text: modelData
            }
        }
    }
    ListView {
        id: sessions

        property string selectedId ///< of the session that the keyboard is on

        readonly property int page: Math.max(1, Math.floor(height / Theme.rowHeight) - 1)

        anchors { fill: parent; topMargin: errors.height }
        clip: true
        interactive: false
        focus: list.keyboard
        activeFocusOnTab: list.keyboard
        keyNavigationEnabled: list.keyboard
        boundsBehavior: Flickable.StopAtBounds
        cacheBuffer: list.keyboard ? 8 * Theme.rowHeight : 0
        highlightMoveDuration: 0
        model: list.rows

        onCurrentIndexChanged: if (list.keyboard) selectedId = list.rows.idAt(currentIndex)

        Connections {
            target: list.keyboard ? list.rows : null

            // A session that moves takes the selection along.
            function onShown() {
                const row = list.rows.rowOf(sessions.selectedId);
                if (row >= 0)
                    sessions.currentIndex = row;
                else
                    sessions.selectedId = list.rows.idAt(sessions.currentIndex);
            }
        }

        Keys.enabled: list.keyboard
        Keys.onReturnPressed: currentItem?.pressed()
        Keys.onEnterPressed: currentItem?.pressed()
        Keys.onPressed: event => {
            const row = {
                [Qt.Key_PageUp]: currentIndex - page,
                [Qt.Key_PageDown]: currentIndex + page,
                [Qt.Key_Home]: 0,
                [Qt.Key_End]: count - 1,
            }[event.key];
            event.accepted = row !== undefined && count > 0;
            if (event.accepted)
                list.select(row);
        }

        WheelHandler {
            enabled: list.keyboard
            onWheel: event => list.scrollTo(sessions.contentY - sessions.originY
                - (event.pixelDelta.y || event.angleDelta.y / 120 * 60))
        }
        DragHandler {
            property real start: 0

            enabled: list.keyboard
            acceptedDevices: PointerDevice.TouchScreen
            target: null
            xAxis.enabled: false
            onActiveChanged: start = sessions.contentY - sessions.originY
            onTranslationChanged: if (active) list.scrollTo(start - translation.y)
        }
        delegate: AgentRow {
            required property int index

            width: sessions.width
            height: Theme.rowHeight
            visible: index < list.limit
            selected: sessions.activeFocus && ListView.isCurrentItem
            onRaise: id => list.raise(id)
        }
    }
    ScrollBar {
        // Beside the rows, in the margin of what they stand on.
        anchors.rightMargin: -8
        view: sessions
        visible: list.keyboard && shown < 1
    }
    Label {
        y: errors.height
        width: list.width
        height: Theme.rowHeight
        leftPadding: 8
        verticalAlignment: Text.AlignVCenter
        visible: sessions.count === 0
        opacity: 0.5
        text: "No active sessions"
        font: Theme.captionFont

        Accessible.role: Accessible.StaticText
        Accessible.name: text
        Accessible.ignored: !visible
    }
}
