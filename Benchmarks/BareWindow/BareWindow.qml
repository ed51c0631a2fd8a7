import QtQuick

Rectangle {
    width: 440
    height: 200
    color: "white"

    Text {
        anchors.centerIn: parent
        text: "A window"
    }
}
