import QtQuick
import Kestro.Style
import Kestro.Agents
import Kestro.Statistics

// One widget's card: a header with its symbol and title above its body.
Item {
    id: root

    required property var model
    required property var toolTips
    property string kind: model.shownWidget
    readonly property var titles: ({ "stats": "Stats", "ai": "AI" })
    readonly property var symbols: ({ "stats": Symbols.gaugeMedium, "ai": Symbols.sparkle })

    Accessible.role: Accessible.Pane
    Accessible.name: titles[kind] ?? ""

    Row {
        x: Theme.horizontalPadding
        y: Theme.verticalPadding
        height: Theme.headerHeight
        spacing: 8

        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            name: root.symbols[root.kind] ?? Symbols.app
            color: Theme.ink
            size: 16 * Theme.growth
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: root.titles[root.kind] ?? ""
            font: Theme.titleFont
            color: Theme.ink
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
    }

    HoverButton {
        anchors { right: parent.right; rightMargin: Theme.horizontalPadding - 5 }
        y: Theme.verticalPadding + (Theme.headerHeight - height) / 2
        visible: root.model.shownWidgetHasWindow
        symbol: Symbols.arrowsApart
        symbolSize: 13
        label: "Open " + (root.titles[root.kind] ?? "") + " window"
        onPressed: root.model.openShownWindow()

        Accessible.ignored: !visible
    }

    Loader {
        anchors.fill: parent
        anchors.margins: Theme.horizontalPadding
        anchors.topMargin: Theme.verticalPadding + Theme.headerHeight
        anchors.bottomMargin: Theme.verticalPadding
        sourceComponent: root.kind === "ai" ? agents : root.kind === "stats" ? statistics : null
    }

    Component {
        id: agents

        Item {
            // The highlight of a row has room on either side.
            Column {
                x: -8
                width: parent.width + 16

                AgentList {
                    visible: root.model.agentsEnabled
                    width: parent.width
                    height: implicitHeight
                    rows: root.model.sessionRows
                    errorLines: root.model.agentErrorLines
                    limit: 4
                    onRaise: id => root.model.raiseSession(id)
                }
                MenuDivider {
                    visible: root.model.agentsEnabled && root.model.limitsEnabled
                    width: parent.width
                    inset: 8
                }
                LimitsList {
                    visible: root.model.limitsEnabled
                    width: parent.width
                    rows: root.model.limitRows
                    errorLines: root.model.limitErrorLines
                    barStyle: root.model.statsCard.barStyle
                    toolTips: root.toolTips
                }
            }
        }
    }
    Component {
        id: statistics

        Item {
            StatsRow {
                readonly property var card: root.model.statsCard

                anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter }
                cpuText: card.cpuText
                cpuLevel: card.cpuLevel
                memoryText: card.memoryText
                memoryLevel: card.memoryLevel
                showCPU: card.showCPU
                showRAM: card.showRAM
                barStyle: card.barStyle
            }
        }
    }
}
