import QtQuick
import Kestro.Style

/// The ground of a card, a menu or a notice. Its shadow falls up to 20 points outside of it.
SurfaceItem {
    radius: Theme.radius
    fill: Theme.card
    hairline: Theme.hairline
    shadow: Theme.composited ? (Theme.dark ? 0.45 : 0.22) : 0
}
