import QtQuick
import Kestro.Style

/// The cells of the Stats card, from edge to edge: what their words leave is shared out evenly.
Item {
    id: row

    required property var cells ///< a model of StatCell's properties
    property string barStyle: "trafficLight"

    readonly property real spacing: repeater.count > 4 ? 12 : 24
    property real wanted: 0

    function measure() {
        let sum = 0;
        for (let i = 0; i < repeater.count; ++i)
            sum += repeater.itemAt(i)?.implicitWidth ?? 0;
        wanted = sum;
    }

    implicitHeight: 52 * Theme.growth

    Row {
        spacing: row.spacing

        Repeater {
            id: repeater

            model: row.cells
            onCountChanged: row.measure()

            StatCell {
                readonly property real spare: row.width - row.wanted - (repeater.count - 1) * row.spacing

                width: Math.max(0, implicitWidth + spare / repeater.count)
                small: repeater.count > 3
                barStyle: row.barStyle
                onImplicitWidthChanged: row.measure()

                required label
                required value
                required level
                required lowIsBad
                required charging
            }
        }
    }
}
