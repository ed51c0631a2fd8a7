import QtQuick
import Kestro.Style

/// A field to search with: Escape or the button at its end empties it.
EntryField {
    id: field

    function clear() {
        text = "";
        edited("");
    }

    label: "Search"
    prompt: "Search"
    leftPadding: 30
    rightPadding: 28

    Keys.onEscapePressed: event => {
        event.accepted = text !== "";
        if (event.accepted)
            clear();
    }

    Symbol {
        anchors { left: parent.left; leftMargin: 9; verticalCenter: parent.verticalCenter }
        name: Symbols.magnifyingGlass
        size: 13
        color: Theme.secondaryInk
    }
    HoverButton {
        anchors { right: parent.right; rightMargin: 3; verticalCenter: parent.verticalCenter }
        width: 22
        height: 22
        visible: field.text !== ""
        label: "Clear"
        symbol: Symbols.xmarkCircleFill
        symbolSize: 12
        onPressed: {
            field.clear();
            field.focusAll();
        }
    }
}
