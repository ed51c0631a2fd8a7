#include "Tests/App/SidebarFixture.h"

#include <QSignalSpy>

namespace kestro {

namespace {

using SidebarItemsTest = test::SidebarFixture;

TEST_F(SidebarItemsTest, theMenuMovesAddsAndRemoves)
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

TEST_F(SidebarItemsTest, theLiveTileShowsTheFiveHoursWhileTheyAreKnown)
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

TEST_F(SidebarItemsTest, itGivesWayToAWindow)
{
    for (const char* visibility : { "dock", "autoHide" }) {
        SCOPED_TRACE(visibility);
        start({ { QStringLiteral("sidebarVisibility"), QString::fromLatin1(visibility) } });
        std::optional<WidgetKind> opened;
        model->host().openWindow = [&](WidgetKind kind) {
            opened = kind;
            sidebar->giveWay();
        };
        model->launcher().add({ QUuid::createUuid(), LaunchItem::Widget{ WidgetKind::timer } });
        sidebar->toggle();
        platform.loop.turn();
        ASSERT_TRUE(sidebar->cardShown());
        platform.pointer.moveTo(frame().dock.center());
        sidebar->clickItem(2);
        platform.loop.turn();
        EXPECT_TRUE(sidebar->cardShown()) << "the timer has a card alone";
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

TEST_F(SidebarItemsTest, aShortcutGivesItTheKeyboard)
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

} // namespace

} // namespace kestro
