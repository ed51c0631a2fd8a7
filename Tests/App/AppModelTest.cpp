#include "KestroCore/Agents/HookInstaller.h"
#include "Tests/App/ModelFixture.h"

#include <gmock/gmock.h>

namespace kestro {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AppModelTest : public test::ModelFixture {
protected:
    QStringList layout() const
    {
        QStringList names;
        for (const LaunchItem& item : model->launcher().store().items())
            names.append(item.name());
        return names;
    }
    LaunchItem item(WidgetKind kind) const
    {
        for (const LaunchItem& each : model->launcher().store().items()) {
            if (each.widget() == kind)
                return each;
        }
        ADD_FAILURE() << "no such widget in the layout";
        return {};
    }
    bool hooked(Agent agent) const
    {
        QFile file(HookInstaller::configURL(agent, home.path()));
        return file.open(QIODevice::ReadOnly) && file.readAll().contains(HookInstaller::marker);
    }
};

TEST_F(AppModelTest, startsWithTheWidgetsOfItsSwitches)
{
    start();
    EXPECT_THAT(layout(), ElementsAre(QStringLiteral("Stats")));
    EXPECT_FALSE(QFile::exists(socketPath()));
    EXPECT_EQ(0, platform.loop.waiting()) << "with nothing to do nothing may wake";

    // Turned in the file while nothing ran: the migration is long done, and the tile comes even so.
    model.reset();
    set("agentsEnabled", true);
    start();
    EXPECT_THAT(layout(), ElementsAre(QStringLiteral("Stats"), QStringLiteral("AI")));
    model.reset();
    set("agentsEnabled", false);
    start();
    EXPECT_THAT(layout(), ElementsAre(QStringLiteral("Stats")));
}

TEST_F(AppModelTest, aSwitchTurnedInTheFileActsAsOneTurnedHere)
{
    start();
    set("agentsEnabled", true);
    platform.loop.turn();
    waitForAgentFiles();
    EXPECT_TRUE(agents().isOn());
    EXPECT_TRUE(hooked(Agent::claude));
    EXPECT_TRUE(hooked(Agent::codex));
    EXPECT_FALSE(hooked(Agent::cursor));
    EXPECT_TRUE(QFile::exists(socketPath()));
    EXPECT_THAT(layout(), ElementsAre(QStringLiteral("Stats"), QStringLiteral("AI")));

    set("codexEnabled", false);
    platform.loop.turn();
    waitForAgentFiles();
    EXPECT_TRUE(hooked(Agent::claude));
    EXPECT_FALSE(hooked(Agent::codex));

    send("UserPromptSubmit");
    EXPECT_EQ(AgentState::working, stateOf("s"));
    set("agentsEnabled", QStringLiteral("rubbish"));
    platform.loop.turn();
    waitForAgentFiles();
    EXPECT_FALSE(hooked(Agent::claude));
    EXPECT_FALSE(QFile::exists(socketPath()));
    EXPECT_THAT(agents().store().sessions, IsEmpty());
    EXPECT_THAT(layout(), ElementsAre(QStringLiteral("Stats")));
}

TEST_F(AppModelTest, cursorIsAdoptedOnceAndOnlyWhereItLives)
{
    start();
    turn("agentsEnabled", true);
    EXPECT_FALSE(stored("cursorEnabled").isValid()) << "without its folder nothing is decided";
    turn("cursorEnabled", true);
    EXPECT_FALSE(hooked(Agent::cursor)) << "on, yet there is no folder to hook in";
    EXPECT_THAT(agents().errorLines(), IsEmpty());

    platform.preferences.values.remove(QStringLiteral("cursorEnabled"));
    QDir(home.path()).mkdir(QStringLiteral(".cursor"));
    turn("agentsEnabled", true);
    EXPECT_EQ(QVariant(true), stored("cursorEnabled"));
    EXPECT_TRUE(hooked(Agent::cursor));

    turn("cursorEnabled", false);
    turn("agentsEnabled", true);
    EXPECT_FALSE(hooked(Agent::cursor)) << "switched off by hand, it stays off";
}

TEST_F(AppModelTest, oneBrokenFileDoesNotStopTheOtherAgents)
{
    QDir(home.path()).mkdir(QStringLiteral(".claude"));
    QFile broken(home.path() + QStringLiteral("/.claude/settings.json"));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly));
    broken.write("{ not json");
    broken.close();
    start();
    turn("agentsEnabled", true);
    ASSERT_EQ(1, agents().errorLines().size());
    EXPECT_TRUE(agents().errorLines().first().startsWith(QStringLiteral("Couldn't update ")));
    EXPECT_TRUE(agents().errorLines().first().endsWith(QStringLiteral("/.claude/settings.json — invalid JSON")));
    EXPECT_TRUE(hooked(Agent::codex));
    EXPECT_EQ(48, model->cardBodyHeight(WidgetKind::ai)) << "one line for the error, one for the lack of sessions";
}

TEST_F(AppModelTest, aSocketThatCannotStartIsToldAndTriedAgain)
{
    // The data folder is a file: no socket can be put in it.
    QDir(home.path()).mkpath(QStringLiteral("Library/Application Support"));
    QFile inTheWay(home.path() + QStringLiteral("/Library/Application Support/Kestro"));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    start();
    turn("agentsEnabled", true);
    EXPECT_THAT(agents().errorLines(), ElementsAre(QStringLiteral("Agent status unavailable")));
    EXPECT_TRUE(agents().isOn());
    inTheWay.remove();
    model->agents().applyAgents();
    EXPECT_THAT(agents().errorLines(), IsEmpty());
    EXPECT_TRUE(QFile::exists(socketPath()));
}

TEST_F(AppModelTest, sessionsAgeByTheTickerWhichSleepsWithoutThem)
{
    set("agentsEnabled", true);
    start();
    EXPECT_EQ(0, platform.loop.waiting());
    send("Stop");
    EXPECT_EQ(AgentState::done, agents().badge());
    platform.loop.advance(3);
    EXPECT_EQ(AgentState::done, agents().badge());
    platform.loop.advance(1);
    EXPECT_EQ(std::nullopt, agents().badge()) << "fresh for four seconds";
    platform.loop.advance(595);
    EXPECT_EQ(AgentState::done, stateOf("s"));
    platform.loop.advance(1);
    EXPECT_EQ(std::nullopt, stateOf("s"));
    EXPECT_EQ(0, platform.loop.waiting());
}

TEST_F(AppModelTest, limitsAloneKeepTheSocketAndHearNoEvents)
{
    set("limitsEnabled", true);
    set("agentsEnabled", true);
    start();
    turn("agentsEnabled", false);
    ASSERT_TRUE(QFile::exists(socketPath()));
    EXPECT_THAT(layout(), ElementsAre(QStringLiteral("Stats"), QStringLiteral("AI")));
    send("UserPromptSubmit");
    EXPECT_THAT(agents().store().sessions, IsEmpty());
    turn("limitsEnabled", false);
    EXPECT_FALSE(QFile::exists(socketPath()));
}

TEST_F(AppModelTest, removingAWidgetTurnsItsFeatureOffAndItStaysAway)
{
    set("agentsEnabled", true);
    set("limitsEnabled", true);
    start();
    model->items().removeItem(item(WidgetKind::ai));
    platform.loop.turn();
    EXPECT_FALSE(agents().isOn());
    EXPECT_FALSE(limits().isOn());
    EXPECT_EQ(QVariant(false), stored("limitsEnabled"));
    EXPECT_THAT(layout(), ElementsAre(QStringLiteral("Stats")));

    EXPECT_EQ(std::nullopt, model->items().addWidget(WidgetKind::ai));
    EXPECT_TRUE(agents().isOn());
    EXPECT_THAT(layout(), ElementsAre(QStringLiteral("Stats"), QStringLiteral("AI")));
}

TEST_F(AppModelTest, aFullLayoutKeepsTheSwitchAndSaysSo)
{
    start();
    for (int i = 0; i < 15; ++i) {
        const QString path = QStringLiteral("/apps/%1.desktop").arg(i);
        ASSERT_EQ(std::nullopt, model->launcher().add({ QUuid::createUuid(), LaunchItem::App{ path }, {} }));
    }
    EXPECT_EQ(QStringLiteral("The layout holds up to 16 items"), model->items().addWidget(WidgetKind::ai));
    EXPECT_TRUE(agents().isOn());
    EXPECT_EQ(QStringLiteral("The layout holds up to 16 items"), model->items().addWidget(WidgetKind::shelf));
}

TEST_F(AppModelTest, theSelectionHoldsWhileOpenAndFallsBackToTheFirstWidget)
{
    set("agentsEnabled", true);
    start();
    EXPECT_EQ(WidgetKind::stats, model->shownWidget());
    model->setExpanded(true);
    model->setSelectedWidget(WidgetKind::ai);
    EXPECT_EQ(WidgetKind::ai, model->shownWidget());
    model->items().removeItem(item(WidgetKind::ai));
    EXPECT_EQ(WidgetKind::stats, model->shownWidget());
    model->setExpanded(false);
    EXPECT_EQ(std::nullopt, model->selectedWidget());
    model->items().removeItem(item(WidgetKind::stats));
    EXPECT_EQ(std::nullopt, model->shownWidget());
}

TEST_F(AppModelTest, aLayoutThatAnotherProgramWroteIsTakenOver)
{
    start();
    set("launcherItems", LauncherStore({ { QUuid::createUuid(), LaunchItem::Divider{} } }).encoded());
    platform.loop.turn();
    EXPECT_THAT(layout(), ElementsAre(QStringLiteral("Divider")));
    set("launcherItems", QByteArray("rubbish"));
    platform.loop.turn();
    EXPECT_THAT(layout(), IsEmpty());
    EXPECT_EQ(QVariant(QByteArray("rubbish")), stored("launcherItems.corrupt"));
}

TEST_F(AppModelTest, widgetsWithoutACardAreNotShown)
{
    set("musicEnabled", true);
    start();
    EXPECT_THAT(layout(), ElementsAre(QStringLiteral("Stats"), QStringLiteral("Music")));
    EXPECT_THAT(model->visibleWidgets(), ElementsAre(WidgetKind::stats));
}

TEST_F(AppModelTest, rowsTellOnlyWhatChanged)
{
    set("agentsEnabled", true);
    start();
    model->setExpanded(true);
    send("UserPromptSubmit", "a");
    platform.loop.advance(2);
    send("PermissionRequest", "b", "/");
    SessionRows& rows = *agents().rows();
    ASSERT_EQ(2, rows.rowCount());
    EXPECT_EQ(QStringLiteral("Needs input"), rows.data(rows.index(0), SessionRows::StateWord));
    EXPECT_EQ(QStringLiteral("kestro"), rows.data(rows.index(1), SessionRows::Project));

    QList<int> changed;
    QObject::connect(&rows, &SessionRows::dataChanged, &rows, [&](const QModelIndex& at) { changed.append(at.row()); });
    platform.loop.advance(57);
    EXPECT_THAT(changed, IsEmpty()) << "nothing reads differently";
    platform.loop.advance(1);
    EXPECT_THAT(changed, ElementsAre(1));
    EXPECT_EQ(QStringLiteral("1m ago"), rows.data(rows.index(1), SessionRows::Ago));
}

} // namespace

} // namespace kestro
