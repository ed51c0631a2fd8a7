import QtQuick
import Kestro.Style
import Kestro.Clipboard

/// All of the entry that is selected.
Item {
    id: pane

    required property var preview
    required property string nothing
    property bool unveiled: false

    signal remove(string entryId)

    Accessible.role: Accessible.Pane
    Accessible.name: "Preview"

    Connections {
        target: pane.preview

        function onChanged() {
            pane.unveiled = false;
            blocks.positionViewAtBeginning();
        }
    }
    Label {
        anchors.centerIn: parent
        visible: pane.preview.kind === ""
        text: pane.nothing
        color: Theme.secondaryInk
    }
    Item {
        id: head

        anchors { left: parent.left; right: parent.right }
        height: 40 * Theme.growth
        visible: pane.preview.kind !== ""

        ClipPicture {
            id: icon

            anchors.verticalCenter: parent.verticalCenter
            width: 28 * Theme.growth
            height: width
            image: pane.preview.appIcon
        }
        Symbol {
            anchors.centerIn: icon
            name: Symbols.app
            size: 20 * Theme.growth
            color: Theme.secondaryInk
            visible: icon.empty
        }
        Label {
            id: app

            anchors { left: icon.right; leftMargin: 10; right: parent.right; bottom: parent.verticalCenter }
            text: pane.preview.appName
            font: Theme.strongFont
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        Label {
            anchors { left: app.left; right: parent.right; top: parent.verticalCenter }
            text: pane.preview.date
            font: Theme.captionFont
            color: Theme.secondaryInk
        }
    }
    Rectangle {
        anchors { left: parent.left; right: parent.right; top: head.bottom; topMargin: 8; bottom: foot.top }
        anchors.bottomMargin: 8
        visible: pane.preview.kind !== ""
        radius: 8
        color: Theme.control
        clip: true

        ListView {
            id: blocks

            readonly property bool veiled: pane.preview.mask !== "" && !pane.unveiled

            anchors { fill: parent; margins: 10 }
            visible: pane.preview.kind !== "image"
            model: veiled ? [pane.preview.mask] : pane.preview.blocks
            clip: true
            interactive: false
            boundsBehavior: Flickable.StopAtBounds

            delegate: Text {
                required property string modelData

                width: blocks.width - 8
                text: modelData
                textFormat: Text.PlainText
                wrapMode: Text.WrapAtWordBoundaryOrAnywhere
                font: Theme.bodyFont
                color: Theme.ink
                renderType: Text.NativeRendering
                bottomPadding: pane.preview.kind === "files" ? 6 : 0
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
            WheelHandler {
                onWheel: event => {
                    const by = event.pixelDelta.y || event.angleDelta.y / 120 * 60;
                    const last = blocks.originY + Math.max(0, blocks.contentHeight - blocks.height);
                    blocks.contentY = Math.max(blocks.originY, Math.min(last, blocks.contentY - by));
                }
            }
        }
        ScrollBar {
            view: blocks
        }
        ClipPicture {
            anchors { fill: parent; margins: 10 }
            visible: pane.preview.kind === "image" && !pane.preview.imageMissing
            image: pane.preview.image
            rounding: 4
        }
        Column {
            anchors.centerIn: parent
            visible: pane.preview.kind === "image" && pane.preview.imageMissing
            spacing: 10

            Label {
                anchors.horizontalCenter: parent.horizontalCenter
                text: "Image missing"
                color: Theme.secondaryInk
            }
            PushButton {
                label: "Delete"
                enabled: parent.visible
                onPressed: pane.remove(pane.preview.entryId)
            }
        }
        HoverHandler {
            id: hover

            onHoveredChanged: if (!hovered) pane.unveiled = false
        }
        Timer {
            interval: 500
            running: hover.hovered && pane.preview.mask !== ""
            onTriggered: pane.unveiled = true
        }
    }
    Label {
        id: foot

        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        height: text === "" ? 0 : implicitHeight
        text: pane.preview.caption
        font: Theme.captionFont
        color: Theme.secondaryInk
        Accessible.role: Accessible.StaticText
        Accessible.name: text
        Accessible.ignored: text === ""
    }
}
