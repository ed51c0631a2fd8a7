import QtQuick
import Kestro.Style

/// One of a few words, side by side. `options` are { value, title }. Tab comes to the one that holds, the arrow keys
/// choose among them.
Item {
    id: choice

    property string label: ""
    property var options: []
    property string current: ""
    readonly property int currentIndex: options.findIndex(option => option.value === current)
    readonly property Item chosenSegment: segments.count > 0 && currentIndex >= 0 ? segments.itemAt(currentIndex) : null

    signal chosen(string value)

    function step(by) {
        const next = Math.min(options.length - 1, Math.max(0, currentIndex + by));
        segments.itemAt(next).forceActiveFocus();
        if (next !== currentIndex)
            chosen(options[next].value);
    }

    implicitWidth: row.wanted + 4
    implicitHeight: Math.max(28, Math.ceil(measure.implicitHeight) + 10)

    Accessible.role: Accessible.Grouping
    Accessible.name: label

    Keys.onLeftPressed: step(-1)
    Keys.onUpPressed: step(-1)
    Keys.onRightPressed: step(1)
    Keys.onDownPressed: step(1)

    Label {
        id: measure

        visible: false
        text: choice.label
    }
    Rectangle {
        anchors.fill: parent
        radius: 8
        color: Theme.control
    }
    Rectangle {
        x: row.x + (choice.chosenSegment?.x ?? 0)
        y: row.y
        width: choice.chosenSegment?.width ?? 0
        height: choice.height - 4
        radius: 6
        visible: choice.chosenSegment !== null
        color: Theme.dark ? Qt.rgba(1, 1, 1, 0.2) : Theme.knob
        border { width: 1; color: Theme.hairline }
    }
    Row {
        id: row

        // As wide as the words ask for; in less room all give way alike.
        property real wanted: 0
        readonly property real share: wanted > 0 ? (choice.width - 4) / wanted : 1

        function measure() {
            let sum = 0;
            for (let i = 0; i < segments.count; ++i)
                sum += segments.itemAt(i)?.implicitWidth ?? 0;
            wanted = sum;
        }

        x: 2
        y: 2

        Repeater {
            id: segments

            model: choice.options
            onCountChanged: row.measure()

            Pressable {
                id: segment

                required property int index
                required property var modelData
                readonly property bool checked: index === choice.currentIndex

                label: modelData.title
                role: Accessible.RadioButton
                // The one that has the keyboard stays a stop until it has lost it.
                activeFocusOnTab: activeFocus || (enabled && (checked || (choice.currentIndex < 0 && index === 0)))
                implicitWidth: Math.ceil(title.implicitWidth) + 24
                onImplicitWidthChanged: row.measure()
                width: implicitWidth * row.share
                height: choice.height - 4
                onPressed: if (!checked) choice.chosen(modelData.value)

                Accessible.checkable: true
                Accessible.checked: checked
                // Two groups may share a word: the description tells them apart.
                Accessible.description: enabled ? choice.label : "dimmed"
                Accessible.onToggleAction: if (segment.enabled && !segment.checked) segment.pressed()

                Label {
                    id: title

                    anchors.centerIn: parent
                    width: Math.min(implicitWidth, segment.width - 8)
                    text: segment.label
                    color: segment.checked || segment.hovered ? Theme.ink : Theme.secondaryInk
                }
            }
        }
    }
}
