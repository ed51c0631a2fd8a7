import QtQuick
import Kestro.Style

/// A line that the user writes. `edited` tells every change that came from the keyboard, `accepted` the Return key.
FocusScope {
    id: field

    property string label: ""
    property alias text: input.text
    property string prompt: ""
    property real leftPadding: 10
    property real rightPadding: 10
    readonly property bool focused: input.activeFocus

    signal edited(string text)
    signal accepted

    function focusAll() {
        input.forceActiveFocus();
        input.selectAll();
    }

    implicitWidth: 200
    implicitHeight: Math.max(28, Math.ceil(input.implicitHeight) + 10)
    opacity: enabled ? 1 : 0.38

    Rectangle {
        anchors.fill: parent
        radius: 8
        color: Theme.control
        border { width: input.activeFocus ? 2 : 1; color: input.activeFocus ? Theme.accent : Theme.hairline }
    }
    TextInput {
        id: input

        anchors { fill: parent; leftMargin: field.leftPadding; rightMargin: field.rightPadding }
        verticalAlignment: TextInput.AlignVCenter
        clip: true
        activeFocusOnTab: enabled
        focus: true
        selectByMouse: true
        font: Theme.bodyFont
        color: Theme.ink
        selectionColor: Theme.accent
        selectedTextColor: Theme.onAccent
        renderType: Text.NativeRendering
        onTextEdited: field.edited(text)
        onAccepted: field.accepted()

        Accessible.role: Accessible.EditableText
        Accessible.name: field.label
        Accessible.description: enabled ? field.prompt : "dimmed"
        Accessible.focusable: enabled
        Accessible.editable: enabled
    }
    Label {
        anchors { fill: parent; leftMargin: field.leftPadding; rightMargin: field.rightPadding }
        verticalAlignment: Text.AlignVCenter
        visible: input.text === "" && input.preeditText === ""
        text: field.prompt
        color: Theme.secondaryInk
    }
}
