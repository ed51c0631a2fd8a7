import QtQuick
import Kestro.Style

/// One section of the statistics window: its title, the chart of the last two minutes, and its rows.
Column {
    id: view

    required property var section
    required property var window
    required property var toolTips

    width: parent?.width ?? 0
    spacing: 6
    visible: section.shown

    Row {
        x: Theme.horizontalPadding
        spacing: 8

        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            name: view.section.symbol
            size: 15 * Theme.growth
            color: Theme.secondaryInk
        }
        Label {
            text: view.section.title
            font: Theme.strongFont

            Accessible.role: Accessible.Heading
            Accessible.name: text
            Accessible.ignored: !view.visible
        }
    }
    Rectangle {
        width: view.width
        height: content.height + 12
        radius: Theme.radius
        color: Theme.group
        border { width: 1; color: Theme.hairline }

        Column {
            id: content

            y: 6
            width: parent.width

            Item {
                x: Theme.horizontalPadding
                width: parent.width - 2 * x
                height: 64
                visible: view.section.charted

                Rectangle {
                    anchors { left: parent.left; right: parent.right; top: chart.top }
                    height: 1
                    color: Theme.hairline
                }
                Rectangle {
                    anchors { left: parent.left; right: parent.right; top: chart.bottom }
                    height: 1
                    color: Theme.hairline
                }
                Chart {
                    id: chart

                    anchors { fill: parent; topMargin: 6; bottomMargin: 8 }
                    points: view.section.chart
                    limit: view.section.chartTop
                    seconds: 120
                    color: Theme.accent

                    Accessible.role: Accessible.Graphic
                    Accessible.name: view.section.title + " of the last two minutes"
                    Accessible.ignored: !visible
                }
                Label {
                    anchors { right: parent.right; top: chart.top; topMargin: 2 }
                    text: view.section.chartText
                    font: Theme.captionFont
                    color: Theme.secondaryInk
                }
            }
            Repeater {
                model: view.section.rows

                Item {
                    id: row

                    required property string label
                    required property string value
                    required property real level
                    required property string source

                    width: content.width
                    height: Theme.rowHeight

                    Accessible.role: Accessible.StaticText
                    Accessible.name: label + (value === "" ? "" : " " + value)
                    Accessible.description: "From " + source
                    Accessible.ignored: !view.visible

                    HoverHandler {
                        onHoveredChanged: {
                            if (hovered)
                                view.toolTips?.entered(row, "From " + row.source + " · " + view.window.age());
                            else
                                view.toolTips?.left(row);
                        }
                    }
                    Label {
                        anchors {
                            left: parent.left
                            leftMargin: Theme.horizontalPadding
                            right: bar.visible ? bar.left : figure.left
                            rightMargin: 12
                            verticalCenter: parent.verticalCenter
                        }
                        text: row.label
                    }
                    MeterBar {
                        id: bar

                        anchors {
                            right: parent.right
                            rightMargin: Theme.horizontalPadding + 150 * Theme.growth
                            verticalCenter: parent.verticalCenter
                        }
                        width: Math.max(0, parent.width * 0.36 - 40)
                        level: row.level
                        style: "accent"
                    }
                    Figures {
                        id: figure

                        anchors {
                            right: parent.right
                            rightMargin: Theme.horizontalPadding
                            verticalCenter: parent.verticalCenter
                        }
                        text: row.value
                        font: Theme.bodyFont
                        color: Theme.secondaryInk
                    }
                }
            }
        }
    }
}
