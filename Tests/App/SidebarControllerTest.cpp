#include "Tests/App/SidebarFixture.h"

namespace kestro {

namespace {

using SidebarControllerTest = test::SidebarFixture;

TEST_F(SidebarControllerTest, standsOnEachEdge)
{
    start();
    const struct {
        const char* edge;
        QRectF dock, band;
    } rows[] = {
        { "right", { 1868, 474, 52, 134 }, { 1844, 0, 76, 1080 } },
        { "left", { 0, 474, 52, 134 }, { 0, 0, 76, 1080 } },
        { "bottom", { 893, 0, 134, 52 }, { 0, 0, 1920, 76 } },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.edge);
        set("sidebarEdge", QString::fromLatin1(row.edge));
        EXPECT_EQ(row.dock.size(), frame().dock.size());
        EXPECT_EQ(row.band, frame().band);
        EXPECT_NEAR(row.dock.center().x(), frame().dock.center().x(), 1);
        EXPECT_NEAR(row.dock.center().y(), frame().dock.center().y(), 70);
        EXPECT_TRUE(strip().isVisible());
        EXPECT_EQ(painted(), platform.panels.shapes.value(&strip()));
    }
}

TEST_F(SidebarControllerTest, theCardGrowsWithTheDesktopsWriting)
{
    start();
    model->setSelectedWidget(WidgetKind::stats);
    platform.loop.turn();
    const QSizeF usual = window("Kestro Card")->size() - 2 * QSizeF(NotchPanel::shadowRoom, NotchPanel::shadowRoom);
    for (const double scale : { 2.0, 0.5, 1.0 }) {
        platform.appearance.current.textScale = scale;
        Q_EMIT platform.appearance.changed();
        platform.loop.turn();
        const QSizeF size = window("Kestro Card")->size() - 2 * QSizeF(NotchPanel::shadowRoom, NotchPanel::shadowRoom);
        EXPECT_EQ(size.width(), usual.width() * std::max(1.0, scale)) << scale;
        EXPECT_NEAR(size.height(), usual.height() * std::max(1.0, scale), 20) << scale << ": all but the padding";
    }
}

TEST_F(SidebarControllerTest, aHoveredWidgetOpensItsCardWhichClosesHalfASecondAfterThePointerLeft)
{
    start();
    EXPECT_EQ(0, platform.pointer.watches()) << "at rest nothing follows the pointer";
    enter(frame().dock.center());
    sidebar->hoverItem(1);
    platform.loop.turn();
    EXPECT_TRUE(sidebar->cardShown());
    EXPECT_EQ(WidgetKind::ai, model->shownWidget());

    platform.pointer.moveTo(away);
    platform.loop.advance(0.4);
    platform.pointer.moveTo(frame().dock.center());
    platform.loop.advance(5);
    EXPECT_TRUE(sidebar->cardShown()) << "coming back in time keeps it";
    platform.pointer.moveTo(away);
    platform.loop.advance(0.49);
    EXPECT_TRUE(sidebar->cardShown());
    platform.loop.advance(0.02);
    EXPECT_FALSE(sidebar->cardShown());
    EXPECT_FALSE(model->expanded());
    EXPECT_EQ(0, platform.pointer.watches());
}

TEST_F(SidebarControllerTest, theCardStandsByItsIconAndGrowsWithItsRows)
{
    start();
    model->setSelectedWidget(WidgetKind::ai);
    platform.loop.turn();
    const QWindow* card = platform.panels.adopted.at(1);
    const QRect first = card->geometry();
    EXPECT_EQ(1868 - 6 + 24, first.x() + first.width()) << "beside the dock, but for the room of its shadow";
    EXPECT_NEAR(first.center().y(), 1080 - frame().anchorOf(1, SidebarEdge::right), 1);
    model->setSelectedWidget(WidgetKind::stats);
    platform.loop.turn();
    EXPECT_EQ(first.height() + 54, card->geometry().height()) << "78 points of cells for one row of 24";
}

TEST_F(SidebarControllerTest, autoHideShowsAtTheEdgeAndHidesAgain)
{
    start({ { QStringLiteral("sidebarVisibility"), QStringLiteral("autoHide") } });
    EXPECT_FALSE(sidebar->state().revealed());
    EXPECT_FALSE(strip().isVisible());
    platform.pointer.moveTo({ 1919, 10 });
    EXPECT_FALSE(sidebar->state().revealed()) << "the edge beyond the dock's ends does nothing";
    platform.pointer.moveTo({ 1919, 540 });
    EXPECT_TRUE(sidebar->state().revealed());
    EXPECT_TRUE(strip().isVisible());
    platform.pointer.moveTo(away);
    platform.loop.advance(0.5);
    EXPECT_FALSE(sidebar->state().revealed());
    platform.loop.advance(0.25);
    EXPECT_FALSE(strip().isVisible()) << "once it has faded";
}

TEST_F(SidebarControllerTest, aFastPointerThatLeavesAcrossTheDockRevealsIt)
{
    start({ { QStringLiteral("sidebarVisibility"), QStringLiteral("autoHide") } });
    platform.pointer.moveTo({ 2500, 540 });
    EXPECT_FALSE(sidebar->state().revealed()) << "the first sample has none before it";
    platform.pointer.moveTo({ 1800, 540 });
    platform.pointer.moveTo({ 2500, 540 });
    EXPECT_TRUE(sidebar->state().revealed());
}

TEST_F(SidebarControllerTest, thePillOpensWhereItIsTouched)
{
    start({ { QStringLiteral("sidebarVisibility"), QStringLiteral("pill") } });
    EXPECT_TRUE(frame().collapsed);
    EXPECT_EQ(QSizeF(6, 44), frame().dock.size());
    enter({ 1918, 550 });
    EXPECT_FALSE(frame().collapsed);
    EXPECT_NEAR(550, frame().dock.center().y(), 1);
    platform.pointer.moveTo(away);
    platform.loop.advance(0.6);
    EXPECT_TRUE(frame().collapsed);
}

TEST_F(SidebarControllerTest, openedByKeyItStaysUntilThePointerHasComeAndGone)
{
    start();
    sidebar->toggle();
    platform.loop.turn();
    EXPECT_TRUE(sidebar->cardShown());
    platform.pointer.moveTo({ 500, 500 });
    platform.loop.advance(5);
    EXPECT_TRUE(sidebar->cardShown());
    platform.pointer.moveTo(frame().dock.center());
    platform.pointer.moveTo(away);
    platform.loop.advance(0.6);
    EXPECT_FALSE(sidebar->cardShown());
    sidebar->toggle();
    sidebar->toggle();
    EXPECT_FALSE(sidebar->cardShown());
}

TEST_F(SidebarControllerTest, thePointerMagnifiesAndItsShapeOnlyGrowsUntilItLeaves)
{
    start({ { QStringLiteral("dockMagnification"), true } });
    const QRectF rest = frame().dock;
    enter(rest.center());
    EXPECT_GT(frame().dock.height(), rest.height());
    EXPECT_NEAR(36 * 1.6 + 16, frame().arrangement.layout.thickness, 4);
    EXPECT_EQ(rest.height(), frame().rest.height());
    const QRegion shape = platform.panels.shapes.value(&strip());
    platform.pointer.moveTo(rest.center() + QPointF(0, 40));
    EXPECT_TRUE((shape - platform.panels.shapes.value(&strip())).isEmpty());
    platform.pointer.moveTo(away);
    EXPECT_EQ(rest, frame().dock);
    EXPECT_EQ(painted(), platform.panels.shapes.value(&strip()));
}

TEST_F(SidebarControllerTest, theCardStaysWhileTheIconsSwellAndShrink)
{
    for (const char* edge : { "right", "left", "bottom" }) {
        SCOPED_TRACE(edge);
        start(
            { { QStringLiteral("dockMagnification"), true }, { QStringLiteral("sidebarEdge"), QLatin1String(edge) } });
        enter(frame().dock.center());
        sidebar->hoverItem(1);
        platform.loop.turn();
        const QRect card = window("Kestro Card")->geometry();
        EXPECT_FALSE(frame().dock.intersects(platform.screens.fromWindowSystem(card.adjusted(24, 24, -24, -24))));
        platform.pointer.moveTo(platform.screens.fromWindowSystem(card).center());
        platform.loop.advance(1);
        EXPECT_EQ(frame().arrangement.layout, frame().arrangement.measure) << "nothing swells";
        EXPECT_EQ(card, window("Kestro Card")->geometry());
        EXPECT_TRUE(sidebar->cardShown());
        sidebar.reset();
        model.reset();
    }
}

TEST_F(SidebarControllerTest, switchedOffItLeavesNothingBehind)
{
    start();
    sidebar->toggle();
    platform.loop.turn();
    ASSERT_TRUE(sidebar->cardShown());
    sidebar->setActive(false);
    platform.loop.turn();
    EXPECT_FALSE(sidebar->cardShown());
    EXPECT_FALSE(strip().isVisible());
    EXPECT_FALSE(model->expanded());
    EXPECT_EQ(nullptr, platform.panels.focused);
    EXPECT_EQ(0, platform.pointer.watches());
    sidebar->show(WidgetKind::ai);
    EXPECT_FALSE(model->expanded());
    sidebar->setActive(true);
    EXPECT_TRUE(strip().isVisible());
}

TEST_F(SidebarControllerTest, reducedMotionMagnifiesNothing)
{
    platform.appearance.current.reduceMotion = true;
    start({ { QStringLiteral("dockMagnification"), true } });
    enter(frame().dock.center());
    EXPECT_EQ(36 + 16, frame().dock.width());
}

TEST_F(SidebarControllerTest, aChangeOfEdgeClosesTheCardAndOneOfTintDoesNot)
{
    start();
    sidebar->toggle();
    platform.loop.turn();
    set("sidebarTint", QStringLiteral("blue"));
    EXPECT_TRUE(sidebar->cardShown());
    set("sidebarEdge", QStringLiteral("left"));
    EXPECT_FALSE(sidebar->cardShown());
}

TEST_F(SidebarControllerTest, aLostScreenFallsBackToTheFirst)
{
    start({ { QStringLiteral("sidebarScreen"), QStringLiteral("Two") } });
    EXPECT_EQ(1844, frame().band.x());
    const QRectF second(1920, 56, 1280, 1024);
    platform.screens.screens.append({ { 2, second, false }, QStringLiteral("Two"), second, 1 });
    Q_EMIT platform.screens.changed();
    EXPECT_EQ(3200 - 76, frame().band.x());
    platform.screens.screens.removeLast();
    Q_EMIT platform.screens.changed();
    EXPECT_EQ(1844, frame().band.x());
    EXPECT_EQ(QStringLiteral("Two"), platform.preferences.values.value(QStringLiteral("sidebarScreen")));
    platform.screens.screens.clear();
    Q_EMIT platform.screens.changed();
    enter(away);
}

TEST_F(SidebarControllerTest, anEmptyLayoutOpensAndClosesWithoutACard)
{
    start({ { QStringLiteral("sidebarVisibility"), QStringLiteral("autoHide") } });
    while (!model->visibleItems().isEmpty())
        model->items().removeItem(model->visibleItems().first());
    platform.loop.turn();
    sidebar->toggle();
    EXPECT_TRUE(sidebar->state().revealed());
    EXPECT_FALSE(sidebar->cardShown());
    EXPECT_EQ(36 + 16 + 20 + 20, frame().dock.height()) << "one icon's length, the cap and the flares";
    sidebar->toggle();
    EXPECT_FALSE(sidebar->state().revealed());
}

} // namespace

} // namespace kestro
