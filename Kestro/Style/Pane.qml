import QtQuick
import Kestro.Style

/// A pane of the Settings window, under its title. `model` is the application's, `settings` what the window has ready
/// for its panes.
ScrollPane {
    id: pane

    required property var model
    required property var settings
    required property string title

    Accessible.role: Accessible.Pane
    Accessible.name: title

    Label {
        width: parent.width
        leftPadding: Theme.horizontalPadding
        text: pane.title
        font: Theme.paneFont

        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
}
