import QtQuick
import Kestro.Style
import Kestro.Notes

// The editor of the note.
FocusScope {
    id: root

    required property NotesModel notes
    readonly property bool full: note.full

    function fill() {
        if (editor.text === notes.text)
            return;
        editor.filling = true;
        editor.text = notes.text;
        editor.cursorPosition = Math.min(notes.cursorPosition, editor.length);
        editor.filling = false;
    }
    function reveal(rectangle) {
        if (rectangle.y < flick.contentY + editor.topPadding)
            scrollTo(rectangle.y - editor.topPadding);
        else if (rectangle.y + rectangle.height > flick.contentY + flick.height - editor.bottomPadding)
            scrollTo(rectangle.y + rectangle.height + editor.bottomPadding - flick.height);
    }
    function scrollTo(y) {
        flick.contentY = Math.max(0, Math.min(flick.contentHeight - flick.height, y));
    }
    function turnPage(by, selects) {
        const target = editor.positionAt(editor.cursorRectangle.x,
            editor.cursorRectangle.y + editor.cursorRectangle.height / 2 + by * flick.height * 0.9);
        if (selects)
            editor.moveCursorSelection(target);
        else
            editor.cursorPosition = target;
    }

    Component.onCompleted: fill()

    NoteDocument {
        id: note

        notes: root.notes
        document: editor.textDocument
    }

    Connections {
        target: root.notes

        function onStateChanged() {
            if (root.notes.loaded && editor.length === 0)
                root.fill();
        }
    }

    Flickable {
        id: flick

        anchors.fill: parent
        clip: true
        // Dragging with the mouse selects text.
        interactive: false
        contentWidth: width
        contentHeight: editor.height
        onHeightChanged: root.reveal(editor.cursorRectangle)

        WheelHandler {
            onWheel: event => root.scrollTo(flick.contentY - (event.pixelDelta.y || event.angleDelta.y / 120 * 60))
        }
        DragHandler {
            property real start: 0

            acceptedDevices: PointerDevice.TouchScreen
            target: null
            xAxis.enabled: false
            onActiveChanged: start = flick.contentY
            onTranslationChanged: if (active) root.scrollTo(start - translation.y)
        }

        TextEdit {
            id: editor

            property bool filling: false

            width: flick.width
            height: Math.max(flick.height, implicitHeight)
            topPadding: 16
            bottomPadding: 16
            leftPadding: 20
            rightPadding: 20
            focus: true
            readOnly: !root.notes.loaded
            textFormat: TextEdit.PlainText
            wrapMode: TextEdit.Wrap
            selectByMouse: true
            persistentSelection: true
            font: Theme.bodyFont
            color: Theme.ink
            selectionColor: Theme.accent
            selectedTextColor: Theme.onAccent
            renderType: Text.NativeRendering
            onCursorRectangleChanged: root.reveal(cursorRectangle)
            onCursorPositionChanged: if (!filling) root.notes.cursorPosition = cursorPosition
            onTextChanged: if (!filling) note.changed()

            Keys.onPressed: event => {
                if (event.matches(StandardKey.Paste)) {
                    event.accepted = note.paste(selectionStart, selectionEnd);
                    return;
                }
                const by = { [Qt.Key_PageUp]: -1, [Qt.Key_PageDown]: 1 }[event.key];
                event.accepted = by !== undefined;
                if (event.accepted)
                    root.turnPage(by, event.modifiers & Qt.ShiftModifier);
            }

            Accessible.role: Accessible.EditableText
            Accessible.name: "Note"
            Accessible.focusable: true
            Accessible.editable: true
            Accessible.multiLine: true
        }
        Label {
            x: editor.leftPadding
            y: editor.topPadding
            visible: root.notes.loaded && editor.length === 0 && editor.preeditText === ""
            text: "Empty note"
            color: Theme.secondaryInk
        }
    }
    ScrollBar {
        view: flick
    }
}
