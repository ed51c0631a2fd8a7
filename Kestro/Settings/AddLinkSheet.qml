import QtQuick
import Kestro.Style

// Asks for the address of a link, and for a title if the user wants one.
Sheet {
    id: sheet

    required property var list

    title: "Add Link"
    first: address
    acceptable: list.isAddress(address.text)
    onAccepted: list.addLink(address.text, name.text)

    Label {
        text: address.label
    }
    EntryField {
        id: address

        width: parent.width
        label: "Address"
        prompt: "https://example.com"
        onAccepted: sheet.accept()
    }
    Label {
        topPadding: 4
        text: name.label
    }
    EntryField {
        id: name

        width: parent.width
        label: "Title"
        prompt: "Optional"
        onAccepted: sheet.accept()
    }
    // Its place is kept, so that nothing jumps while the user types.
    Caption {
        width: parent.width
        opacity: address.text.trim() !== "" && !sheet.acceptable ? 1 : 0
        text: "Enter an http or https address"
        warning: true

        Accessible.ignored: opacity === 0
    }
}
