import QtQuick
import Kestro.Style
import Kestro.Agents
import Kestro.Statistics

// One widget's card: a header with its symbol and title above its body.
Item {
    id: root

    required property var model
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
            size: 16
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
            AgentList {
                visible: root.model.agentsEnabled
                width: parent.width
                rows: root.model.sessionRows
                errorLines: root.model.agentErrorLines
                limit: 4
            }
            Label {
                visible: !root.model.agentsEnabled
                height: Theme.rowHeight
                verticalAlignment: Text.AlignVCenter
                text: "Agent activity is off."
                color: Theme.secondaryInk
                Accessible.role: Accessible.StaticText
                Accessible.name: text
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
