#include "KestroCore/Layout/DockBehavior.h"

#include <gmock/gmock.h>

#include <array>
#include <random>

namespace kestro {

// Its short names stay out of the tests that are compiled together with these.
namespace dockBehavior {

namespace {

using Presence = DockPresence;
using Visit = DockVisit;
using Step = DockBehavior (*)(const DockBehavior&);

/// The dock at rest.
DockBehavior resting(DockVisibility visibility) { return DockBehavior{}.withPreferences(visibility, false); }
const DockBehavior dock = resting(DockVisibility::dock);
const DockBehavior autoHide = resting(DockVisibility::autoHide);
const DockBehavior pill = resting(DockVisibility::pill);

struct Named {
    const char* name;
    Step step;
};
constexpr Named inside{ "inside", [](const DockBehavior& b) { return b.pointerMoved(DockZone::inside, 300); } };
constexpr Named edge{ "edge", [](const DockBehavior& b) { return b.pointerMoved(DockZone::edge, 300); } };
constexpr Named away{ "away", [](const DockBehavior& b) { return b.pointerMoved(DockZone::elsewhere, 0); } };
constexpr Named timer{ "timer", [](const DockBehavior& b) { return b.hideTimerFired(); } };
constexpr Named select{ "select", [](const DockBehavior& b) { return b.widgetSelected(); } };
constexpr Named cardGone{ "cardGone", [](const DockBehavior& b) { return b.cardClosed(); } };
constexpr Named key{ "key", [](const DockBehavior& b) { return b.openedByShortcut(true); } };
constexpr Named bareKey{ "bareKey", [](const DockBehavior& b) { return b.openedByShortcut(false); } };
constexpr Named close{ "close", [](const DockBehavior& b) { return b.closed(); } };
constexpr Named giveWayHere{ "giveWayHere", [](const DockBehavior& b) { return b.gaveWay(true); } };
constexpr Named giveWay{ "giveWay", [](const DockBehavior& b) { return b.gaveWay(false); } };
constexpr Named menu{ "menu", [](const DockBehavior& b) { return b.held(DockHold::menu); } };
constexpr Named menuEnds{ "menuEnds", [](const DockBehavior& b) { return b.released(DockHold::menu); } };
constexpr Named drag{ "drag", [](const DockBehavior& b) { return b.held(DockHold::drag); } };
constexpr Named dragEnds{ "dragEnds", [](const DockBehavior& b) { return b.released(DockHold::drag); } };
constexpr Named retint{ "retint", [](const DockBehavior& b) { return b.withPreferences(b.visibility, false); } };
constexpr Named moveEdge{ "moveEdge", [](const DockBehavior& b) { return b.withPreferences(b.visibility, true); } };
constexpr Named toDock{ "toDock",
    [](const DockBehavior& b) { return b.withPreferences(DockVisibility::dock, false); } };
constexpr Named toHide{ "toHide",
    [](const DockBehavior& b) { return b.withPreferences(DockVisibility::autoHide, false); } };
constexpr Named toPill{ "toPill",
    [](const DockBehavior& b) { return b.withPreferences(DockVisibility::pill, false); } };
constexpr Named all[] = { inside, edge, away, timer, select, cardGone, key, bareKey, close, giveWayHere, giveWay, menu,
    menuEnds, drag, dragEnds, retint, moveEdge, toDock, toHide, toPill };

TEST(DockBehavior, transitions)
{
    const struct {
        const char* name;
        DockBehavior from;
        std::vector<Named> steps;
        Presence presence;
        Visit visit;
        bool card, keyboard;
    } rows[] = {
        { "a shown dock ignores the pointer", dock, { inside, away }, Presence::shown, Visit::none, false, false },
        { "hover opens the card", dock, { inside, select }, Presence::shown, Visit::present, true, false },
        { "leaving starts the timer", dock, { inside, select, away }, Presence::shown, Visit::leaving, true, false },
        { "coming back stops it", dock, { inside, select, away, inside, timer }, Presence::shown, Visit::present, true,
            false },
        { "the timer closes", dock, { inside, select, away, away, timer }, Presence::shown, Visit::none, false, false },
        { "nothing reveals but the edge", autoHide, { inside, away, select }, Presence::hidden, Visit::none, false,
            false },
        { "the edge reveals", autoHide, { edge }, Presence::shown, Visit::present, false, false },
        { "leaving hides", autoHide, { edge, away, timer }, Presence::hidden, Visit::none, false, false },
        { "a pill opens", pill, { inside }, Presence::openPill, Visit::present, false, false },
        { "a pill has no edge", pill, { edge, select }, Presence::pill, Visit::none, false, false },
        { "a pill closes", pill, { inside, select, away, timer }, Presence::pill, Visit::none, false, false },
        { "a shortcut waits for the pointer", autoHide, { key, away, timer }, Presence::shown, Visit::awaited, true,
            true },
        { "and then follows it", autoHide, { key, inside, away }, Presence::shown, Visit::leaving, true, true },
        { "and hides", autoHide, { key, inside, away, timer }, Presence::hidden, Visit::none, false, false },
        { "an empty dock has the keyboard alone", dock, { bareKey, away }, Presence::shown, Visit::awaited, false,
            true },
        { "a shortcut opens the pill", pill, { key }, Presence::openPill, Visit::awaited, true, true },
        { "Escape under the pointer", dock, { inside, select, close }, Presence::shown, Visit::present, false, false },
        { "Escape hides", autoHide, { edge, key, close }, Presence::hidden, Visit::none, false, false },
        { "a menu stops the timer", autoHide, { edge, away, menu, timer }, Presence::shown, Visit::none, false, false },
        { "a menu holds", autoHide, { edge, menu, away, timer }, Presence::shown, Visit::none, false, false },
        { "its end lets go", autoHide, { edge, menu, away, menuEnds, away }, Presence::shown, Visit::leaving, false,
            false },
        { "a drag holds beside a menu", autoHide, { edge, menu, drag, menuEnds, away }, Presence::shown, Visit::none,
            false, false },
        { "room for a window", autoHide, { edge, key, giveWayHere }, Presence::shown, Visit::present, false, false },
        { "room, the pointer elsewhere", autoHide, { key, giveWay }, Presence::hidden, Visit::none, false, false },
        { "another tint keeps the card", dock, { key, retint }, Presence::shown, Visit::awaited, true, true },
        { "another tint stops the timer", dock, { inside, select, away, retint }, Presence::shown, Visit::none, true,
            false },
        { "another edge closes the card", dock, { inside, select, moveEdge }, Presence::shown, Visit::present, false,
            false },
        { "a change to hiding hides", dock, { key, toHide }, Presence::hidden, Visit::none, false, false },
        { "a change from hiding shows", autoHide, { toDock }, Presence::shown, Visit::none, false, false },
        { "a closed card needs no timer", dock, { inside, select, away, cardGone }, Presence::shown, Visit::none, false,
            false },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        DockBehavior state = row.from;
        for (const Named& each : row.steps)
            state = each.step(state);
        EXPECT_EQ(state.presence, row.presence);
        EXPECT_EQ(state.visit, row.visit);
        EXPECT_EQ(state.cardOpen, row.card);
        EXPECT_EQ(state.hasKeyboard, row.keyboard);
    }
}

TEST(DockBehavior, thePillOpensAroundTheTouchAndStays)
{
    DockBehavior state = pill.pointerMoved(DockZone::inside, 300);
    EXPECT_EQ(state.pillCenter, 300);
    state = state.pointerMoved(DockZone::inside, 500).openedByShortcut(true);
    EXPECT_EQ(state.pillCenter, 300) << "an open pill stays where it is";
    EXPECT_EQ(state.closed().openedByShortcut(true).pillCenter, std::nullopt) << "a shortcut touches nothing";
}

TEST(DockBehavior, aDragHidesTheOpenCard)
{
    const DockBehavior state = drag.step(select.step(inside.step(dock)));
    EXPECT_TRUE(state.cardOpen);
    EXPECT_FALSE(state.showsCard());
    EXPECT_TRUE(dragEnds.step(state).showsCard());
}

void expectSound(const DockBehavior& state)
{
    if (!state.showsIcons()) {
        EXPECT_FALSE(state.cardOpen) << "no card without icons";
        EXPECT_FALSE(state.hasKeyboard) << "no keyboard without icons";
    }
    if (state.runsHideTimer()) {
        EXPECT_FALSE(state.holds) << "no hide timer beside a menu or a drag";
        EXPECT_TRUE(state.isOpen()) << "no hide timer at rest";
    }
    EXPECT_TRUE(state.presence != Presence::hidden || state.visit == Visit::none);
    EXPECT_TRUE(!state.isOpen() || state.watchesPointer()) << "the pointer's leaving would be missed";
    const DockBehavior left = away.step(state);
    EXPECT_TRUE(left.isOpen() || left.visibility == DockVisibility::autoHide || !left.watchesPointer())
        << "at rest there is nothing to watch for";
    EXPECT_EQ(away.step(left), left) << "a second move to the same place changes nothing";
    EXPECT_FALSE(state.closed().isOpen());
}

/// Whatever happened before, a dock that nothing holds comes to rest once the pointer has come and gone.
void expectComesToRest(DockBehavior state)
{
    for (const Named& each : { menuEnds, dragEnds, edge, inside, away, timer })
        state = each.step(state);
    EXPECT_FALSE(state.isOpen());
    EXPECT_EQ(state.visit, Visit::none);
}

TEST(DockBehavior, everySequenceIsSound)
{
    std::mt19937 random(7); // NOLINT(cert-msc51-cpp): the same sequences in every run
    for (int sequence = 0; sequence < 2000 && !testing::Test::HasFailure(); ++sequence) {
        DockBehavior state = std::array{ dock, autoHide, pill }[random() % 3];
        std::string told;
        for (int i = 0; i < 30 && !testing::Test::HasFailure(); ++i) {
            const Named& next = all[random() % std::size(all)];
            told += std::string(" ") + next.name;
            SCOPED_TRACE(told);
            state = next.step(state);
            expectSound(state);
            expectComesToRest(state);
        }
    }
}

} // namespace

} // namespace dockBehavior

} // namespace kestro
