import QtQuick

/// The usage limits: what went wrong first, then a row for each agent. `rows` and `errorLines` are the model's.
Column {
    id: list

    required property var rows
    property var errorLines: []
    property string barStyle: "trafficLight"
    property QtObject toolTips: null
    property real fiveHoursColumn: 0
    property real weekColumn: 0

    function measure() {
        let fiveHours = 0, week = 0;
        for (let i = 0; i < shown.count; ++i) {
            fiveHours = Math.max(fiveHours, shown.itemAt(i)?.fiveHoursWidth ?? 0);
            week = Math.max(week, shown.itemAt(i)?.weekWidth ?? 0);
        }
        fiveHoursColumn = fiveHours;
        weekColumn = week;
    }

    Accessible.role: Accessible.List
    Accessible.name: "Usage limits"

    Repeater {
        model: list.errorLines

        ErrorLine {
            id: error

            required property string modelData

            width: list.width
            text: modelData
            elide: Text.ElideMiddle // the file stands at the beginning, the reason at the end

            HoverHandler {
                onHoveredChanged: {
                    if (hovered)
                        list.toolTips?.entered(error, error.text);
                    else
                        list.toolTips?.left(error);
                }
            }
        }
    }
    Repeater {
        id: shown

        // By number: the rows are new values each minute, and an item that the pointer is on must not go.
        model: list.rows.length
        onCountChanged: list.measure()

        LimitsRow {
            required property int index
            readonly property var limits: list.rows[index]

            width: list.width
            symbol: limits.symbol
            name: limits.name
            gauges: limits.gauges
            note: limits.note
            source: limits.source
            barStyle: list.barStyle
            toolTips: list.toolTips
            fiveHoursColumn: list.fiveHoursColumn
            weekColumn: list.weekColumn
            onFiveHoursWidthChanged: list.measure()
            onWeekWidthChanged: list.measure()
        }
    }
}
