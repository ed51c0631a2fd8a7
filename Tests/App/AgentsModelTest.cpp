#include "KestroCore/Agents/HookInstaller.h"
#include "KestroCore/Agents/StatusLineInstaller.h"
#include "Tests/App/ModelFixture.h"

#include <gmock/gmock.h>

namespace kestro {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class AgentsModelTest : public test::ModelFixture {
protected:
    bool wrapped() const
    {
        QFile file(HookInstaller::configURL(Agent::claude, home.path()));
        return file.open(QIODevice::ReadOnly) && file.readAll().contains("statusline.sh");
    }
    /// A Codex log in which `percent` of the five hours are used.
    void writeLog(int percent) const
    {
        write(".codex/sessions/2026/rollout.jsonl",
            R"({"timestamp":"2026-05-09T08:00:00Z","payload":{"rate_limits":{"primary":{"used_percent":)"
                + QByteArray::number(percent) + R"(,"window_minutes":300,"resets_at":4102444800}}}})" + "\n");
    }
    void sendLimits(const char* windows)
    {
        sendMessage(QByteArray("limits=claude\n{\"rate_limits\":{") + windows + "}}\n");
    }
    std::optional<double> codexPercent() const
    {
        const auto& codex = limits().codexLimits();
        return codex && codex->fiveHour ? std::optional(codex->fiveHour->usedPercent) : std::nullopt;
    }
    /// Waits for the logs to have been read.
    bool codexComesTo(double percent)
    {
        while (codexPercent() != percent) {
            if (!platform.loop.turnWhenPosted())
                return false;
        }
        return true;
    }
};

TEST_F(AgentsModelTest, limitsGoInAndOutWithTheirSwitch)
{
    write(".claude/settings.json", R"({"statusLine":{"type":"command","command":"mine"}})");
    writeLog(12);
    start();
    turn("limitsEnabled", true);
    EXPECT_TRUE(wrapped());
    EXPECT_TRUE(codexComesTo(12));
    sendLimits(R"("five_hour":{"used_percentage":28.000000000000004,"resets_at":4102444800})");
    sendLimits(R"("five_hour":{"used_percentage":30})"); // tells nothing: the earlier figures stand
    ASSERT_TRUE(limits().claudeLimits());
    EXPECT_EQ(limits().claudeLimits()->toldAt, platform.loop.now());
    EXPECT_DOUBLE_EQ(limits().tileShare().value_or(-1), 0.28000000000000004);
    sendLimits(R"("seven_day":{"used_percentage":1,"resets_at":4102444800})");
    EXPECT_FALSE(limits().claudeLimits()->fiveHour) << "each message replaces the whole";
    EXPECT_EQ(limits().tileShare(), 0.12) << "and the tile shows who has a window of five hours";

    turn("limitsEnabled", false);
    EXPECT_FALSE(wrapped());
    EXPECT_FALSE(limits().claudeLimits() || limits().codexLimits());
    EXPECT_FALSE(QFile::exists(socketPath()));
}

TEST_F(AgentsModelTest, codexLogsAreReadAtTheirMomentsAndNoOthers)
{
    set("agentsEnabled", true);
    set("limitsEnabled", true);
    writeLog(1);
    start();
    EXPECT_TRUE(codexComesTo(1));

    writeLog(2);
    platform.loop.advance(59);
    model->setExpanded(true);
    model->setExpanded(false);
    platform.loop.advance(1);
    model->setExpanded(true); // a minute after the last time
    EXPECT_TRUE(codexComesTo(2));
    writeLog(3);
    platform.loop.advance(60); // and each minute while it stays open
    EXPECT_TRUE(codexComesTo(3));
    model->setExpanded(false);

    writeLog(4);
    send("Stop", "s", "/", "claude");
    send("SessionStart", "s", "/", "codex");
    send("Stop", "s", "/", "codex");
    EXPECT_TRUE(codexComesTo(4));
    QFile::remove(home.filePath(QStringLiteral(".codex/sessions/2026/rollout.jsonl")));
    limits().refreshCodexLimits();
    ASSERT_TRUE(platform.loop.turnWhenPosted());
    EXPECT_EQ(codexPercent(), 4) << "what was found stands until something newer is";
}

TEST_F(AgentsModelTest, failuresOfLimitsAreToldInTheirOwnWords)
{
    write(".claude/settings.json", R"({"statusLine":"a text"})");
    write("Library/Application Support/Kestro", "in the way of the socket's folder");
    start();
    turn("limitsEnabled", true);
    EXPECT_THAT(limits().errorLines(),
        ElementsAre(
            testing::ResultOf([](const QString& line) { return line.toStdString(); }, StartsWith("Couldn't update ")),
            QStringLiteral("Live data unavailable")));
    EXPECT_THAT(agents().errorLines(), IsEmpty());
    turn("limitsEnabled", false);
    EXPECT_THAT(limits().errorLines(), IsEmpty()) << "nothing of ours is in the file, and nobody waits for data";
}

TEST_F(AgentsModelTest, aWindowThatPassesEmptiesTheTile)
{
    set("limitsEnabled", true);
    start();
    const double soon = platform.loop.now().seconds + Date::unixEpochOffset + 90;
    sendLimits(
        ("\"five_hour\":{\"used_percentage\":50,\"resets_at\":" + QByteArray::number(soon, 'f', 0) + '}').constData());
    EXPECT_EQ(limits().tileShare(), 0.5);
    int changes = 0;
    QObject::connect(model.get(), &AppModel::tilesChanged, model.get(), [&] { ++changes; });
    platform.loop.advance(89);
    EXPECT_EQ(changes, 0);
    platform.loop.advance(1);
    EXPECT_EQ(changes, 1) << "once, at that moment";
    EXPECT_EQ(limits().tileShare(), 0);
    EXPECT_EQ(platform.loop.waiting(), 0);
}

TEST_F(AgentsModelTest, aConversationOfCursorIsNotHeardTwice)
{
    QDir(home.path()).mkdir(QStringLiteral(".cursor"));
    start();
    turn("agentsEnabled", true);
    constexpr char version[] = R"(,"cursor_version":"1.7.2")";
    send("UserPromptSubmit", "c", "/p", "claude", version);
    EXPECT_EQ(stateOf("c"), std::nullopt);
    send("UserPromptSubmit", "c", "/p", "codex", version);
    EXPECT_EQ(stateOf("c"), AgentState::working) << "only Claude's hooks are run by Cursor";
    turn("cursorEnabled", false);
    send("UserPromptSubmit", "d", "/p", "claude", version);
    EXPECT_EQ(stateOf("d"), AgentState::working) << "without Cursor's own hook this is the only word of it";
}

TEST_F(AgentsModelTest, aSessionGoesWithItsAgent)
{
    set("agentsEnabled", true);
    start();
    const ProcessId agent{ 10, 100 };
    platform.peers.origin.ancestors = { { { 11, 110 }, { "nc" } }, { agent, { "node", "claude" } } };
    send("UserPromptSubmit");
    send("SomethingElse", "unknown");
    EXPECT_EQ(platform.peers.watches(), 1);
    platform.loop.advance(3);
    platform.peers.end({ 10, 101 });
    EXPECT_EQ(stateOf("s"), AgentState::working) << "a namesake";
    platform.peers.end(agent);
    EXPECT_EQ(stateOf("s"), std::nullopt);
    EXPECT_EQ(platform.loop.waiting(), 0) << "and the ticker sleeps";

    platform.peers.origin.ancestors[1].id = { 12, 120 };
    send("UserPromptSubmit");
    turn("agentsEnabled", false);
    EXPECT_EQ(platform.peers.watches(), 0);
}

TEST_F(AgentsModelTest, onlyWhatIsDrawnAsksForALayout)
{
    set("agentsEnabled", true);
    start();
    int changes = 0;
    QObject::connect(model.get(), &AppModel::tilesChanged, model.get(), [&] { ++changes; });
    struct Step {
        const char *event, *id;
        int changes;
        std::optional<AgentState> badge;
    };
    const Step steps[] = {
        { "UserPromptSubmit", "a", 1, AgentState::working },
        { "PostToolUse", "a", 0, AgentState::working },
        { "UserPromptSubmit", "b", 1, AgentState::working }, // the card is higher by a row
        { "PermissionRequest", "a", 1, AgentState::needsInput },
        { "PermissionRequest", "b", 0, AgentState::needsInput },
        { "SessionEnd", "a", 1, AgentState::needsInput },
        { "Stop", "b", 1, AgentState::done },
    };
    for (const Step& step : steps) {
        changes = 0;
        send(step.event, step.id);
        EXPECT_EQ(changes, step.changes) << step.event << ' ' << step.id;
        EXPECT_EQ(agents().badge(), step.badge) << step.event << ' ' << step.id;
    }
    changes = 0;
    platform.loop.advance(3);
    send("Stop", "b"); // is fresh once more
    platform.loop.advance(3);
    EXPECT_EQ(changes, 0);
    platform.loop.advance(1);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(agents().badge(), std::nullopt);
    EXPECT_EQ(platform.loop.waiting(), 1) << "nobody looks: nothing wakes until a session is too old";
}

TEST_F(AgentsModelTest, theShortcutGoesToWhoHasWaitedLongest)
{
    set("agentsEnabled", true);
    start();
    const KeyCombo combo{ 0, KeyCombo::control | KeyCombo::option };
    EXPECT_EQ(model->shortcuts().combo(AgentsFeature::waitingAgent()), std::nullopt) << "none unless it is given one";
    EXPECT_EQ(model->shortcuts().set(combo, AgentsFeature::waitingAgent()), std::nullopt);
    EXPECT_EQ(stored("waitingAgentShortcut"), KeyCombo::encodeStored(combo));

    platform.windows.windows = { { 1, 10, {} }, { 2, 20, {} } };
    for (const qint64 pid : { 10, 20 }) {
        const HookOrigin origin{ { { { pid, 1 }, { "sh" } } }, {}, {}, {} };
        platform.peers.processes[pid] = origin;
        platform.peers.origin = origin;
        send("PermissionRequest", pid == 10 ? "first" : "second");
        platform.loop.advance(1);
    }
    EXPECT_TRUE(platform.hotKeys.press(combo));
    EXPECT_THAT(platform.windows.raised, ElementsAre(1));
    send("PostToolUse", "first");
    EXPECT_TRUE(platform.hotKeys.press(combo));
    EXPECT_THAT(platform.windows.raised, ElementsAre(1, 2));
    std::optional<WidgetKind> shown;
    model->host().showCard = [&](WidgetKind kind) { shown = kind; };
    platform.windows.windows.clear();
    EXPECT_TRUE(platform.hotKeys.press(combo));
    EXPECT_EQ(shown, WidgetKind::ai) << "where the row says that there is no way";
    turn("agentsEnabled", false);
    EXPECT_FALSE(platform.hotKeys.press(combo)) << "not offered for what is off";
}

} // namespace

} // namespace kestro
