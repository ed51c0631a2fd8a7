#include "Kestro/Launch/AppDelegate.h"
#include "Tests/App/ModelFixture.h"

#include <QGuiApplication>
#include <QSignalSpy>

namespace kestro {

namespace {

constexpr QPointF away{ 400, 540 };

/// The dock on a screen of 1920 by 1080 with Stats and AI on it: its strip is 52 points thick.
class SidebarControllerTest : public test::ModelFixture {
protected:
    void start(const QVariantMap& preferences = {})
    {
        platform.screens.setOne({ 1920, 1080 });
        platform.pointer.at = away;
        platform.preferences.values = preferences;
        platform.preferences.values[QStringLiteral("agentsEnabled")] = true;
        theme = std::make_unique<Theme>(platform.appearance);
        engine = std::make_unique<QQmlEngine>();
        theme->install(*engine);
        model = std::make_unique<AppModel>(platform.ports(), Folders::under(home.path()));
        sidebar = std::make_unique<SidebarController>(*model, *engine);
        sidebar->setActive(true);
        model->start();
        platform.loop.turn();
    }
    ~SidebarControllerTest() override
    {
        sidebar.reset();
        model.reset();
    }
    void set(const char* key, const QVariant& value)
    {
        platform.preferences.setValue(QString::fromLatin1(key), value);
        platform.loop.turn();
    }
    /// As the strip's own window tells it: the pointer crossed its border.
    void enter(QPointF point)
    {
        platform.pointer.moveTo(point);
        QEnterEvent event(QPointF(1, 1), QPointF(1, 1), QPointF(1, 1));
        QCoreApplication::sendEvent(&strip(), &event);
        platform.loop.turn();
    }
    const SidebarFrame& frame() const { return *sidebar->state().frame(); }
    QRegion painted() const { return sidebar->state().outline().region(sidebar->state().dockRect()); }
    static QWindow* window(const char* title)
    {
        for (QWindow* each : QGuiApplication::allWindows()) {
            if (each->title() == QLatin1String(title))
                return each;
        }
        return nullptr;
    }
    QWindow& strip() const { return *platform.panels.adopted.first(); }

    std::unique_ptr<Theme> theme;
    std::unique_ptr<QQmlEngine> engine;
    std::unique_ptr<SidebarController> sidebar;
};

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

TEST_F(SidebarControllerTest, theMenuMovesAddsAndRemoves)
{
    start();
    const auto titles = [this](int row, bool vertical) {
        QStringList list;
        for (const MenuEntry& entry : itemMenuEntries(*model, model->visibleItems().at(row), vertical))
            list.append(entry.isSeparator() ? QStringLiteral("-") : entry.enabled ? entry.title : entry.title + u'!');
        return list.join(u'|');
    };
    const auto run = [this](int row, const char* title) {
        for (const MenuEntry& entry : itemMenuEntries(*model, model->visibleItems().at(row), true)) {
            if (entry.title == QString::fromUtf8(title))
                entry.action();
        }
        platform.loop.turn();
    };
    EXPECT_EQ(QStringLiteral("Assign Shortcut…|Move Up!|Move Down|Add Divider After|-|Remove (turns Stats off)"),
        titles(0, true));
    EXPECT_EQ(QStringLiteral("Assign Shortcut…|Move Left|Move Right!|Add Divider After|-|Remove (turns AI off)"),
        titles(1, false));
    run(0, "Add Divider After");
    EXPECT_TRUE(model->visibleItems().at(1).isDivider());
    EXPECT_EQ(QStringLiteral("Move Up|Move Down|Add Divider After|-|Remove"), titles(1, true));
    run(0, "Move Down");
    EXPECT_TRUE(model->visibleItems().at(0).isDivider());
    run(2, "Remove (turns AI off)");
    EXPECT_FALSE(agents().isOn());
    EXPECT_EQ(2, model->visibleItems().size());

    ASSERT_EQ(std::nullopt,
        model->launcher().add(
            { QUuid::createUuid(), LaunchItem::Link{ QUrl(QStringLiteral("https://example.org")), {} }, {} }));
    EXPECT_EQ(QStringLiteral("Open|-|Assign Shortcut…|Move Up|Move Down!|Add Divider After|-|Remove"), titles(2, true));
    run(2, "Open");
    EXPECT_EQ(QStringList(QStringLiteral("https://example.org")), platform.workspace.opened);

    int opened = 0;
    model->host().openSettings = [&] { ++opened; };
    run(2, "Assign Shortcut…");
    EXPECT_EQ(1, opened);
    EXPECT_EQ(QStringLiteral("layout"), model->settingsPane());
    EXPECT_EQ(model->visibleItems().at(2).id, model->settingsTarget());
}

TEST_F(SidebarControllerTest, theNextIconsNameOutlivesThePointersLeavingTheLast)
{
    start();
    for (const char* name : { "one", "two" }) {
        const LaunchItem item{ QUuid::createUuid(), LaunchItem::App{ QLatin1StringView(name) } };
        ASSERT_EQ(std::nullopt, model->launcher().add(item));
    }
    platform.loop.turn();
    sidebar->hoverItem(2);
    sidebar->hoverItem(3);
    sidebar->leaveItem(2);
    platform.loop.advance(0.5);
    EXPECT_TRUE(window("Kestro Tooltip"));
    sidebar->leaveItem(3);
    EXPECT_FALSE(window("Kestro Tooltip"));
}

TEST_F(SidebarControllerTest, aRowsExplanationComesAndGoesWithThePointer)
{
    start();
    QQuickWindow below;
    below.setGeometry(100, 100, 300, 200);
    QQuickItem first(below.contentItem());
    QQuickItem second(below.contentItem());
    first.setSize({ 300, 24 });
    ToolTip toolTip(model->platform(), *engine);
    const auto shows = [] { return window("Kestro Tooltip") != nullptr; };
    const auto pass = [this](double seconds) { platform.loop.advance(seconds); };

    toolTip.entered(
        &first, QStringLiteral("A sentence that is far too long to stand in one line, which is why it is broken"));
    pass(0.39);
    EXPECT_FALSE(shows());
    pass(0.02);
    ASSERT_TRUE(shows());
    const QRect place = window("Kestro Tooltip")->geometry().adjusted(24, 24, -24, -24); // without its shadow's room
    EXPECT_EQ(place.topLeft(), QPoint(100, 128)) << "below the item";
    EXPECT_LE(place.width(), 340);
    EXPECT_GT(place.height(), 30) << "two lines";
    toolTip.left(&first);
    toolTip.entered(&first, QStringLiteral("A"));
    pass(1);
    EXPECT_TRUE(shows()) << "left for an instant";
    toolTip.entered(&second, QString());
    EXPECT_FALSE(shows()) << "nothing to say";

    toolTip.entered(&first, QStringLiteral("A"));
    toolTip.left(&second);
    pass(0.5);
    EXPECT_TRUE(shows()) << "another was left";
    first.setVisible(false);
    EXPECT_FALSE(shows());
    below.setGeometry(1900, 1050, 300, 200);
    toolTip.entered(&second, QStringLiteral("At the corner"));
    pass(0.5);
    ASSERT_TRUE(shows());
    EXPECT_TRUE(QRect(0, 0, 1920, 1080).contains(window("Kestro Tooltip")->geometry().adjusted(24, 24, -24, -24)));
    toolTip.left(&second);
    pass(0.2);
    EXPECT_FALSE(shows());
}

TEST_F(SidebarControllerTest, theLiveTileShowsTheFiveHoursWhileTheyAreKnown)
{
    start({ { QStringLiteral("limitsEnabled"), true } });
    DockItemsModel& items = *const_cast<SidebarState&>(sidebar->state()).items();
    const auto share = [&](int row) { return items.data(items.index(row), DockItemsModel::Share).toDouble(); };
    EXPECT_EQ(-1, share(1));
    QSignalSpy changed(&items, &DockItemsModel::dataChanged);
    const auto tell = [&](double percent) {
        sendMessage("limits=claude\n"
                    R"({"rate_limits":{"five_hour":{"used_percentage":)"
            + QByteArray::number(percent) + R"(,"resets_at":)"
            + QByteArray::number(platform.loop.now().seconds + Date::unixEpochOffset + 3600, 'f', 0) + "}}}");
    };
    tell(28);
    EXPECT_EQ(0.28, share(1));
    EXPECT_EQ(-1, share(0));
    tell(28);
    EXPECT_EQ(1, changed.count()) << "the same again draws nothing";
    set("dockLiveTiles", false);
    EXPECT_EQ(-1, share(1));
    set("dockLiveTiles", true);
    EXPECT_EQ(0.28, share(1));
    platform.loop.advance(3601);
    EXPECT_EQ(0, share(1)) << "the window has passed";
    turn("limitsEnabled", false);
    platform.loop.turn();
    EXPECT_EQ(-1, share(1));
}

TEST_F(SidebarControllerTest, itGivesWayToAWindow)
{
    for (const char* visibility : { "dock", "autoHide" }) {
        SCOPED_TRACE(visibility);
        start({ { QStringLiteral("sidebarVisibility"), QString::fromLatin1(visibility) } });
        std::optional<WidgetKind> opened;
        model->host().openWindow = [&](WidgetKind kind) {
            opened = kind;
            sidebar->giveWay();
        };
        sidebar->toggle();
        platform.loop.turn();
        ASSERT_TRUE(sidebar->cardShown());
        platform.pointer.moveTo(frame().dock.center());
        sidebar->clickItem(0);
        platform.loop.turn();
        EXPECT_TRUE(sidebar->cardShown()) << "Stats has a card alone";
        sidebar->clickItem(1);
        EXPECT_EQ(WidgetKind::ai, opened);
        EXPECT_FALSE(sidebar->cardShown());
        EXPECT_EQ(nullptr, platform.panels.focused);
        EXPECT_TRUE(sidebar->state().revealed()) << "the pointer is on it";
        platform.pointer.moveTo(away);
        platform.loop.advance(1);
        EXPECT_EQ(sidebar->state().revealed(), QLatin1String(visibility) == QLatin1String("dock"));

        sidebar->show(WidgetKind::ai);
        model->openShownWindow();
        EXPECT_FALSE(model->expanded());
        EXPECT_EQ(sidebar->state().revealed(), QLatin1String(visibility) == QLatin1String("dock"));
        sidebar.reset();
        model.reset();
    }
}

TEST_F(SidebarControllerTest, aShortcutGivesItTheKeyboard)
{
    start();
    ASSERT_EQ(std::nullopt, model->launcher().addDivider(model->visibleItems().first().id)); // Stats, divider, AI
    const LaunchItem app{ QUuid::createUuid(), LaunchItem::App{ QStringLiteral("/app.desktop") } };
    ASSERT_EQ(std::nullopt, model->launcher().add(app));
    platform.workspace.names[QStringLiteral("/app.desktop")] = QStringLiteral("App");
    platform.loop.turn();
    const auto press = [this](Qt::Key key) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(&strip(), &event);
        platform.loop.turn();
        return sidebar->state().focusedRow();
    };

    sidebar->toggle();
    EXPECT_EQ(&strip(), platform.panels.focused);
    EXPECT_EQ(0, sidebar->state().focusedRow());
    EXPECT_EQ(0, press(Qt::Key_Up));
    EXPECT_EQ(2, press(Qt::Key_Down)) << "the divider is stepped over";
    EXPECT_EQ(WidgetKind::ai, model->shownWidget());
    EXPECT_EQ(0, press(Qt::Key_Home));
    EXPECT_EQ(3, press(Qt::Key_End));
    EXPECT_EQ(3, press(Qt::Key_Tab));
    EXPECT_EQ(-1, press(Qt::Key_Return)) << "an application that opens takes the keyboard";
    EXPECT_EQ(QStringList(QStringLiteral("/app.desktop")), platform.workspace.opened);
    EXPECT_EQ(nullptr, platform.panels.focused);
    EXPECT_FALSE(model->expanded());

    sidebar->show(WidgetKind::ai);
    EXPECT_EQ(2, sidebar->state().focusedRow());
    EXPECT_EQ(2, press(Qt::Key_Return)) << "a widget's card stays";
    EXPECT_EQ(-1, press(Qt::Key_Escape));
    EXPECT_EQ(nullptr, platform.panels.focused);
    EXPECT_FALSE(sidebar->cardShown());
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
