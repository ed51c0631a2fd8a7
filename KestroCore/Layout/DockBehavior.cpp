#include "KestroCore/Layout/DockBehavior.h"

namespace kestro {

DockPresence DockBehavior::atRest() const
{
    switch (visibility) {
    case DockVisibility::dock:
        return DockPresence::shown;
    case DockVisibility::autoHide:
        return DockPresence::hidden;
    case DockVisibility::pill:
        return DockPresence::pill;
    }
    Q_UNREACHABLE();
}

void DockBehavior::open(std::optional<double> center)
{
    if (presence == DockPresence::pill) {
        presence = DockPresence::openPill;
        pillCenter = center;
    } else if (presence == DockPresence::hidden) {
        presence = DockPresence::shown;
    }
}

bool DockBehavior::isOpen() const { return cardOpen || hasKeyboard || presence != atRest(); }

bool DockBehavior::watchesPointer() const
{
    return visit == DockVisit::present || visibility == DockVisibility::autoHide || isOpen();
}

DockBehavior DockBehavior::withPreferences(DockVisibility wanted, bool moved) const
{
    DockBehavior next = *this;
    next.visibility = wanted;
    next.presence = next.atRest();
    next.cardOpen = cardOpen && wanted == visibility && !moved && next.showsIcons();
    next.hasKeyboard = hasKeyboard && next.showsIcons();
    // The hide timer belongs to the place where the dock was. An open card waits for the pointer's next move.
    if (visit == DockVisit::leaving || !next.showsIcons())
        next.visit = DockVisit::none;
    return next;
}

DockBehavior DockBehavior::pointerMoved(DockZone zone, double along) const
{
    DockBehavior next = *this;
    if (presence == DockPresence::hidden) {
        if (zone == DockZone::edge) {
            next.open(along);
            next.visit = DockVisit::present;
        }
    } else if (zone == DockZone::inside) {
        next.open(along);
        next.visit = DockVisit::present;
    } else if (!isOpen()) {
        next.visit = DockVisit::none;
    } else if (visit != DockVisit::awaited) {
        next.visit = holds ? DockVisit::none : DockVisit::leaving;
    }
    return next;
}

DockBehavior DockBehavior::openedByShortcut(bool withCard) const
{
    DockBehavior next = *this;
    next.open(std::nullopt);
    next.visit = DockVisit::awaited;
    next.hasKeyboard = true;
    next.cardOpen = withCard;
    return next;
}

DockBehavior DockBehavior::widgetSelected() const
{
    DockBehavior next = *this;
    next.cardOpen = showsIcons();
    return next;
}

DockBehavior DockBehavior::cardClosed() const
{
    DockBehavior next = *this;
    next.cardOpen = false;
    if (visit == DockVisit::leaving && !next.isOpen())
        next.visit = DockVisit::none;
    return next;
}

DockBehavior DockBehavior::gaveWay(bool pointerOnDock) const
{
    if (!pointerOnDock || !showsIcons())
        return closed();
    DockBehavior next = *this;
    next.cardOpen = false;
    next.hasKeyboard = false;
    next.visit = DockVisit::present;
    return next;
}

DockBehavior DockBehavior::closed() const
{
    DockBehavior next = *this;
    next.cardOpen = false;
    next.hasKeyboard = false;
    next.presence = atRest();
    // The pointer may still be on a dock that stays; its leaving is to be noticed.
    if (visit != DockVisit::present || next.presence == DockPresence::hidden)
        next.visit = DockVisit::none;
    return next;
}

DockBehavior DockBehavior::hideTimerFired() const { return runsHideTimer() ? closed() : *this; }

DockBehavior DockBehavior::held(DockHold hold) const
{
    DockBehavior next = *this;
    next.holds |= hold;
    if (visit == DockVisit::leaving)
        next.visit = DockVisit::none;
    return next;
}

DockBehavior DockBehavior::released(DockHold hold) const
{
    DockBehavior next = *this;
    next.holds.setFlag(hold, false);
    return next;
}

} // namespace kestro
