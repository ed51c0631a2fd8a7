#pragma once

#include "KestroCore/Layout/DockTypes.h"

#include <QFlags>
#include <optional>

namespace kestro {

/// How the dock stands on its edge.
enum class DockPresence { hidden, shown, pill, openPill };

/// Where the pointer is. `edge` is the place that reveals a hidden dock, `inside` a shown dock, its pill or its card.
enum class DockZone { elsewhere, edge, inside };

/// The pointer's part in keeping an open dock open.
enum class DockVisit {
    none, ///< the pointer has not been seen on the dock
    awaited, ///< a shortcut opened the dock, which stays until the pointer has come
    present, ///< the pointer is on the dock or its card
    leaving, ///< the pointer has left, and the hide timer runs
};

/// An interaction that keeps the dock as it is while the pointer is elsewhere.
enum class DockHold { menu = 1, drag = 2 };
Q_DECLARE_FLAGS(DockHolds, DockHold)

/// When the dock shows and hides, when its card is open and when it has the keyboard: a state machine without a clock
/// and without windows. Every transition gives the next state; the timer that runs, the windows that show and whether
/// pointer motion must be watched all follow from the state alone.
struct DockBehavior {
    DockVisibility visibility = DockVisibility::autoHide;
    DockPresence presence = DockPresence::hidden;
    DockVisit visit = DockVisit::none;
    DockHolds holds{};
    bool cardOpen = false;
    bool hasKeyboard = false;
    std::optional<double> pillCenter{}; ///< where along the edge the pointer opened the pill

    bool operator==(const DockBehavior&) const = default;

    /// Whether the icons can be seen.
    bool showsIcons() const { return presence == DockPresence::shown || presence == DockPresence::openPill; }
    /// Whether anything is open beyond what stands at rest.
    bool isOpen() const;
    /// Whether the card is to be on the screen; a drag hides an open one.
    bool showsCard() const { return cardOpen && !holds.testFlag(DockHold::drag); }
    bool runsHideTimer() const { return visit == DockVisit::leaving; }
    /// Whether motion must be heard of everywhere. At rest the window system's enter events suffice.
    bool watchesPointer() const;

    /// The dock at rest under a new or changed preference. `moved` is whether its edge changed.
    [[nodiscard]] DockBehavior withPreferences(DockVisibility visibility, bool moved) const;
    /// `along` is the pointer's coordinate along the edge.
    [[nodiscard]] DockBehavior pointerMoved(DockZone zone, double along) const;
    /// A shortcut opens the dock, with a card unless there is no widget.
    [[nodiscard]] DockBehavior openedByShortcut(bool withCard) const;
    [[nodiscard]] DockBehavior widgetSelected() const;
    /// Closes the card alone.
    [[nodiscard]] DockBehavior cardClosed() const;
    /// Makes room for a window of the widget's own: a dock under the pointer stays, without its card.
    [[nodiscard]] DockBehavior gaveWay(bool pointerOnDock) const;
    /// Back to rest.
    [[nodiscard]] DockBehavior closed() const;
    [[nodiscard]] DockBehavior hideTimerFired() const;
    [[nodiscard]] DockBehavior held(DockHold hold) const;
    /// The pointer's place decides what follows: report it next.
    [[nodiscard]] DockBehavior released(DockHold hold) const;

private:
    DockPresence atRest() const;
    void open(std::optional<double> center);
};

Q_DECLARE_OPERATORS_FOR_FLAGS(DockHolds)

} // namespace kestro
