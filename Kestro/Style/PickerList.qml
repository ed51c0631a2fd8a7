import QtQuick
import Kestro.Style

/// The open list of a Picker. It lies over everything in the window, so that no pane clips it, and inside of it.
Item {
    id: overlay

    required property Item control
    readonly property Item window: control.Window.contentItem
    readonly property bool dotted: control.options.some(option => option.dot !== undefined)
    property string typed: ""

    function choose(index) {
        const owner = control;
        const value = owner.options[index].value;
        // Hiding destroys this list.
        owner.hide();
        if (value !== owner.current)
            owner.chosen(value);
    }
    function find(letters) {
        const wanted = letters.toLowerCase();
        return control.options.findIndex(option => option.title.toLowerCase().startsWith(wanted));
    }
    function type(letter) {
        forget.restart();
        typed += letter;
        const index = find(typed);
        if (index >= 0)
            rows.currentIndex = index;
    }
    function place() {
        const below = control.mapToItem(window, 0, control.height);
        card.x = Math.max(8, Math.min(below.x + control.width - card.width, window.width - card.width - 8));
        // On the other side where there is more room.
        const roomBelow = window.height - below.y - 12;
        const roomAbove = below.y - control.height - 12;
        const up = rows.wanted + 12 > roomBelow && roomAbove > roomBelow;
        card.height = Math.min(rows.wanted + 12, up ? roomAbove : roomBelow);
        card.y = up ? below.y - control.height - 4 - card.height : below.y + 4;
    }

    parent: window
    anchors.fill: parent
    z: 1000

    Component.onCompleted: {
        rows.currentIndex = control.currentIndex;
        place();
        rows.positionViewAtIndex(rows.currentIndex, ListView.Center);
        rows.forceActiveFocus();
    }
    onWidthChanged: Qt.callLater(place)
    onHeightChanged: Qt.callLater(place)

    Connections {
        target: overlay.control.Window.window
        function onActiveChanged() {
            if (!overlay.control.Window.active)
                overlay.control.hide();
        }
    }
    Timer {
        id: forget

        interval: 1000
        onTriggered: overlay.typed = ""
    }
    // A press elsewhere closes the list and does nothing more: the list is modal.
    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.AllButtons
        hoverEnabled: true
        onPressed: overlay.control.hide()
        onWheel: wheel => wheel.accepted = true
    }
    CardSurface {
        id: card

        width: Math.min(overlay.width - 16, Math.max(overlay.control.width, rows.widest + 12))
        fill: Theme.group
        radius: 10
        onWidthChanged: overlay.place()

        MouseArea { anchors.fill: parent }
        ListView {
            id: rows

            readonly property real rowHeight: Math.max(28, Math.ceil(measure.implicitHeight) + 10)
            readonly property real wanted: count * rowHeight
            property real widest: 0

            anchors.fill: parent
            anchors.margins: 6
            clip: true
            interactive: false
            boundsBehavior: Flickable.StopAtBounds
            keyNavigationEnabled: true
            highlightMoveDuration: 0
            model: overlay.control.options

            Accessible.role: Accessible.List
            Accessible.name: overlay.control.label

            Keys.onEscapePressed: overlay.control.hide()
            Keys.onTabPressed: overlay.control.hide()
            Keys.onBacktabPressed: overlay.control.hide()
            Keys.onReturnPressed: overlay.choose(currentIndex)
            Keys.onEnterPressed: overlay.choose(currentIndex)
            Keys.onSpacePressed: overlay.typed === "" ? overlay.choose(currentIndex) : overlay.type(" ")
            Keys.onPressed: event => {
                if (event.key === Qt.Key_Home)
                    currentIndex = 0;
                else if (event.key === Qt.Key_End)
                    currentIndex = count - 1;
                else if (event.modifiers & (Qt.ControlModifier | Qt.AltModifier | Qt.MetaModifier) || event.text === "")
                    return;
                else
                    overlay.type(event.text);
                event.accepted = true;
            }

            WheelHandler {
                onWheel: event => {
                    const end = Math.max(0, rows.contentHeight - rows.height);
                    const by = event.pixelDelta.y || event.angleDelta.y / 120 * 2 * rows.rowHeight;
                    rows.contentY = rows.originY + Math.max(0, Math.min(end, rows.contentY - rows.originY - by));
                }
            }

            delegate: PickerRow {
                required property int index
                required property var modelData

                width: rows.width
                height: rows.rowHeight
                label: modelData.title
                dotted: overlay.dotted
                dot: modelData.dot ?? "transparent"
                checked: index === overlay.control.currentIndex
                highlighted: rows.currentIndex === index
                onHoveredChanged: if (hovered) rows.currentIndex = index
                onPressed: overlay.choose(index)
                onImplicitWidthChanged: rows.widest = Math.max(rows.widest, implicitWidth)
                Component.onCompleted: rows.widest = Math.max(rows.widest, implicitWidth)
            }
        }
        ScrollBar {
            view: rows
        }
        Label {
            id: measure

            visible: false
            text: overlay.control.label
        }
    }
}
