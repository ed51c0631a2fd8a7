import QtQuick
import Kestro.Style

/// A pane of the Settings window, under its title. `subject` is what a feature's pane shows and changes, `settings`
/// what the window has ready for the panes of no feature alone, `model` the application's.
ScrollPane {
    id: pane

    required property var model
    required property var settings
    required property var subject
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
