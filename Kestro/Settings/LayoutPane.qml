import QtQuick
import Kestro.Style

Pane {
    id: pane

    readonly property var list: settings.layout

    /// The row before which what is dragged would land; -1 while nothing is.
    property int gap: -1

    function gapAt(y) {
        for (let row = 0; row < rows.count; ++row) {
            const each = rows.itemAt(row);
            if (y < each.y + each.height / 2)
                return row;
        }
        return rows.count;
    }
    function showSelected() {
        if (list.selectedRow >= 0 && list.selectedRow < rows.count)
            reveal(rows.itemAt(list.selectedRow));
    }

    Component.onCompleted: Qt.callLater(showSelected)
    Connections {
        target: pane.list
        function onSelectedRowChanged() {
            Qt.callLater(pane.showSelected);
        }
    }

    Section {
        footer: pane.list.limits

        Repeater {
            id: rows

            model: pane.list

            LayoutRow {
                list: pane.list
                selected: pane.list.selectedRow === index
                gap: pane.gap
                onDragMoved: {
                    pane.gap = pane.gapAt(y + dragY);
                    pane.reveal(rows.itemAt(Math.min(pane.gap, rows.count - 1)));
                }
                onDropped: {
                    const gap = pane.gap;
                    pane.gap = -1;
                    if (gap >= 0)
                        pane.list.drop(payload, gap);
                }
            }
        }
        Item {
            width: parent?.width ?? 0
            height: visible ? 72 : 0
            visible: rows.count === 0

            Label {
                anchors.centerIn: parent
                text: "The layout is empty. Add what you want at hand."
                color: Theme.secondaryInk

                Accessible.role: Accessible.StaticText
                Accessible.name: text
                Accessible.ignored: !visible
            }
        }
    }
    Column {
        width: parent.width
        spacing: 8

        Flow {
            width: parent.width
            spacing: 8

            PushButton {
                id: addApp

                label: "Add App…"
                enabled: pane.list.canAddItem
                onPressed: {
                    pane.list.beginChoosing();
                    sheet.ask(appSheet, addApp);
                }
            }
            PushButton {
                id: addLink

                label: "Add Link…"
                enabled: pane.list.canAddItem
                onPressed: sheet.ask(linkSheet, addLink)
            }
            Picker {
                label: "Add Widget"
                placeholder: "Add Widget"
                options: pane.list.addableWidgets
                enabled: pane.list.canAddItem && options.length > 0
                onChosen: value => pane.list.addWidget(value)
            }
            PushButton {
                label: "Add Divider"
                enabled: pane.list.canAddDivider
                onPressed: pane.list.addDivider()
            }
        }
        Caption {
            width: parent.width
            visible: text !== ""
            text: pane.list.message
            warning: true
        }
    }
    Loader {
        id: sheet

        property Item asker: null

        function ask(component, asker) {
            sheet.asker = asker;
            sourceComponent = component;
        }

        visible: false
    }
    Component {
        id: appSheet

        AddAppSheet {
            owner: sheet.asker
            list: pane.list
            onAccepted: sheet.sourceComponent = null
            onCancelled: sheet.sourceComponent = null
        }
    }
    Component {
        id: linkSheet

        AddLinkSheet {
            owner: sheet.asker
            list: pane.list
            onAccepted: sheet.sourceComponent = null
            onCancelled: sheet.sourceComponent = null
        }
    }
}
