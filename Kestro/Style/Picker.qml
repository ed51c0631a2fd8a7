import QtQuick
import Kestro.Style

/// One of many: shows the title that holds and opens a list of all. `options` are { value, title } and, where a
/// colour says more than its name, { dot }.
Pressable {
    id: picker

    property var options: []
    property string current: ""
    property string placeholder: "" ///< while none of them holds
    readonly property int currentIndex: options.findIndex(option => option.value === current)
    readonly property var currentOption: currentIndex >= 0 ? options[currentIndex] : null
    readonly property bool open: list.active
    readonly property alias list: list.item

    signal chosen(string value)

    function show() {
        list.active = true;
    }
    function hide() {
        if (!list.active)
            return;
        list.active = false;
        forceActiveFocus();
    }

    role: Accessible.ComboBox
    implicitWidth: Math.max(140, Math.ceil(title.implicitWidth) + (dot.visible ? 20 : 0) + 44)
    implicitHeight: Math.max(28, Math.ceil(title.implicitHeight) + 10)
    focusRadius: 8
    onPressed: open ? hide() : show()
    onEnabledChanged: if (!enabled) list.active = false
    onVisibleChanged: if (!visible) list.active = false

    Accessible.description: enabled ? title.text : "dimmed"

    Keys.onUpPressed: show()
    Keys.onDownPressed: show()

    Rectangle {
        anchors.fill: parent
        z: -1
        radius: picker.focusRadius
        color: Theme.control

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            visible: picker.hovered || picker.open
            color: picker.down || picker.open ? Theme.line : Theme.hover
        }
    }
    Rectangle {
        id: dot

        anchors { left: parent.left; leftMargin: 12; verticalCenter: parent.verticalCenter }
        width: 12
        height: 12
        radius: 6
        visible: !!picker.currentOption?.dot
        color: picker.currentOption?.dot ?? "transparent"
    }
    Label {
        id: title

        anchors {
            left: parent.left
            leftMargin: dot.visible ? 32 : 12
            right: chevron.left
            rightMargin: 4
            verticalCenter: parent.verticalCenter
        }
        text: picker.currentOption?.title ?? picker.placeholder
    }
    Symbol {
        id: chevron

        anchors { right: parent.right; rightMargin: 8; verticalCenter: parent.verticalCenter }
        name: Symbols.chevronUpDown
        size: 12
        color: Theme.secondaryInk
    }
    Loader {
        id: list

        active: false
        sourceComponent: PickerList {
            control: picker
        }
    }
}
