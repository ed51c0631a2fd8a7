import QtQuick
import Kestro.Style

// The card of the shown widget: a header with its symbol and title, above the view that its feature gives.
Item {
    id: root

    required property var model
    required property QtObject toolTips
    readonly property var widget: model.card
    readonly property string title: widget ? widget.title : ""

    function load() {
        if (widget)
            body.setSource("qrc:/qt-project.org/imports/Kestro/" + widget.cardView + ".qml",
                           { widget: widget, toolTips: toolTips });
        else
            body.source = "";
    }

    Accessible.role: Accessible.Pane
    Accessible.name: title
    onWidgetChanged: load()
    Component.onCompleted: load()

    Row {
        x: Theme.horizontalPadding
        y: Theme.verticalPadding
        height: Theme.headerHeight
        spacing: 8

        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            name: root.widget ? root.widget.symbol : Symbols.app
            color: Theme.ink
            size: 16 * Theme.growth
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: root.title
            font: Theme.titleFont
            color: Theme.ink
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
    }

    HoverButton {
        anchors { right: parent.right; rightMargin: Theme.horizontalPadding - 5 }
        y: Theme.verticalPadding + (Theme.headerHeight - height) / 2
        visible: root.widget !== null && root.widget.hasWindow
        symbol: Symbols.arrowsApart
        symbolSize: 13
        label: "Open " + root.title + " window"
        onPressed: root.model.openShownWindow()

        Accessible.ignored: !visible
    }

    Loader {
        id: body

        anchors.fill: parent
        anchors.margins: Theme.horizontalPadding
        anchors.topMargin: Theme.verticalPadding + Theme.headerHeight
        anchors.bottomMargin: Theme.verticalPadding
    }
}
