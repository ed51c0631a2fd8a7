#include "Kestro/Agents/TerminalActivator.h"
#include "Kestro/Agents/TerminalWindow.h"
#include "Tests/Support/Fakes.h"

#include <gmock/gmock.h>

namespace kestro {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

const ProcessId agent{ 10, 100 };
const ProcessId terminal{ 5, 50 };
const ProcessId desktop{ 2, 20 };

HookOrigin hookUnder(const std::vector<ProcessId>& ancestors, const char* windowID = "")
{
    HookOrigin origin;
    for (const ProcessId& each : ancestors)
        origin.ancestors.push_back({ each, {} });
    origin.windowID = windowID;
    return origin;
}

DesktopWindow window(quint32 id, const ProcessId& owner, const char* title = "")
{
    return { id, owner.pid, QString::fromUtf8(title) };
}

TEST(TerminalWindow, IsTheOneThatCanBeTold)
{
    const HookOrigin plain = hookUnder({ agent, terminal, desktop });
    struct Case {
        const char* name;
        HookOrigin origin;
        quint32 prompt;
        std::vector<DesktopWindow> windows;
        quint32 expected;
    };
    const Case cases[] = {
        { "the nearest ancestor's only one", plain, 0, { window(1, desktop), window(2, terminal) }, 2 },
        { "where the user wrote", plain, 3, { window(2, terminal), window(3, terminal) }, 3 },
        { "which has another owner by now", plain, 3, { window(2, terminal), window(3, { 99, 1 }) }, 2 },
        { "which has gone", plain, 3, { window(2, terminal) }, 2 },
        { "named by the environment", hookUnder({ agent, terminal }, "4"), 0,
            { window(2, terminal), window(4, terminal) }, 4 },
        { "named, but somebody else's", hookUnder({ agent, terminal }, "4"), 0,
            { window(2, terminal), window(3, terminal), window(4, { 99, 1 }) }, 0 },
        { "named in no number", hookUnder({ agent, terminal }, "0x2"), 0, { window(2, terminal), window(3, terminal) },
            0 },
        { "by its title, the topmost", plain, 0,
            { window(2, terminal, "vim"), window(3, terminal, "~/kestro"), window(4, terminal, "kestro") }, 3 },
        { "another program's title", plain, 0,
            { window(2, terminal, "a"), window(3, terminal, "b"), window(9, { 99, 1 }, "kestro") }, 0 },
        { "none at all", plain, 0, { window(9, { 99, 1 }, "kestro") }, 0 },
    };
    for (const Case& each : cases)
        EXPECT_EQ(terminalWindow(each.origin, QStringLiteral("kestro"), each.prompt, each.windows), each.expected)
            << each.name;
    const std::vector<DesktopWindow> two{ window(2, terminal, "a"), window(3, terminal, "b") };
    EXPECT_EQ(terminalWindow(plain, {}, 0, two), 0U) << "a session without a project is in every title";
}

class TerminalActivatorTest : public testing::Test {
protected:
    TerminalActivatorTest()
    {
        for (const ProcessId& each : { agent, terminal, desktop })
            platform.peers.processes[each.pid] = hookUnder({ each });
    }
    void handleEvent(
        const char* event, const HookOrigin& origin, AgentState state = AgentState::working, const char* id = "s")
    {
        Session session{ QString::fromLatin1(id), Agent::claude, QStringLiteral("kestro"), state, platform.loop.now() };
        activator.handleEvent({ Agent::claude, session.id, {}, QString::fromLatin1(event) }, origin, session);
    }
    void raise(const char* id = "s")
    {
        activator.raise({ QString::fromLatin1(id), Agent::claude, QStringLiteral("kestro"), AgentState::working, {} });
    }
    static HookOrigin inTmux()
    {
        HookOrigin origin = hookUnder({ agent, { 77, 30 } });
        origin.tmux = "/tmp/tmux,0/default,77,0";
        origin.tmuxPane = "%3";
        return origin;
    }
    static CommandResult answer(const char* output) { return { true, 0, output, {} }; }

    test::FakePlatform platform;
    TerminalActivator activator{ platform.ports() };
};

TEST_F(TerminalActivatorTest, theWindowThatWasActiveAtThePromptIsRaised)
{
    platform.windows.windows = { window(1, terminal), window(2, terminal), window(3, { 99, 1 }) };
    platform.windows.activeId = 2;
    handleEvent("UserPromptSubmit", hookUnder({ agent, terminal }));
    platform.windows.activeId = 1;
    handleEvent("PostToolUse", hookUnder({ agent, terminal })); // the user may be anywhere by now
    platform.windows.activeId = 3;
    handleEvent("UserPromptSubmit", hookUnder({ agent, terminal })); // sent from elsewhere
    raise();
    EXPECT_THAT(platform.windows.raised, ElementsAre(2));
    EXPECT_THAT(activator.lost(), IsEmpty());
}

TEST_F(TerminalActivatorTest, aLostWindowIsToldUntilTheSessionIsHeardOf)
{
    raise("never seen");
    handleEvent("Stop", hookUnder({ agent, terminal }));
    raise();
    EXPECT_THAT(activator.lost(),
        ElementsAre(Pair(QStringLiteral("never seen"), QStringLiteral("no window")),
            Pair(QStringLiteral("s"), QStringLiteral("no window"))));
    handleEvent("Stop", hookUnder({ agent, terminal }));
    activator.prune([](const QString& id) { return id == QLatin1String("s"); });
    EXPECT_THAT(activator.lost(), IsEmpty());

    // The terminal has ended, and its number belongs to a program with a window.
    platform.windows.windows = { window(1, terminal) };
    platform.peers.processes[terminal.pid] = hookUnder({ { terminal.pid, 999 } });
    raise();
    EXPECT_THAT(platform.windows.raised, IsEmpty());
    EXPECT_THAT(activator.lost(), ElementsAre(Pair(QStringLiteral("s"), QStringLiteral("no window"))));
}

TEST_F(TerminalActivatorTest, inTmuxTheClientShowsThePaneAndItsWindowIsRaised)
{
    platform.windows.windows = { window(1, terminal), window(2, desktop) };
    platform.peers.processes[70] = hookUnder({ { 70, 1 }, desktop });
    platform.peers.processes[71] = hookUnder({ { 71, 1 }, terminal });
    handleEvent("Stop", inTmux());
    raise();
    ASSERT_EQ(platform.commands.running.size(), 1U);
    EXPECT_EQ(platform.commands.running.front().words.mid(0, 3),
        (QStringList{ QStringLiteral("tmux"), QStringLiteral("-S"), QStringLiteral("/tmp/tmux,0/default") }));
    // One client shows another session, two show this one, and in the second of them the user was last.
    platform.commands.answer(answer("$1\n70 900 $0 /dev/pts/1\n70 100 $1 /dev/pts/2\n71 200 $1 /dev/pts/3\n"));
    ASSERT_EQ(platform.commands.running.size(), 1U);
    EXPECT_EQ(platform.commands.running.front().words.mid(3),
        (QStringList{ QStringLiteral("switch-client"), QStringLiteral("-c"), QStringLiteral("/dev/pts/3"),
            QStringLiteral("-t"), QStringLiteral("%3") }));
    platform.commands.answer(answer(""));
    EXPECT_THAT(platform.windows.raised, ElementsAre(1));

    // The terminal in which the user wrote comes before the likeliest one.
    platform.windows.activeId = 2;
    handleEvent("UserPromptSubmit", inTmux());
    platform.commands.answer(answer("$1\n70 900 $0 /dev/pts/1\n71 200 $1 /dev/pts/3\n"));
    raise();
    platform.commands.answer(answer("$1\n70 900 $0 /dev/pts/1\n71 200 $1 /dev/pts/3\n"));
    platform.commands.answer(answer(""));
    EXPECT_THAT(platform.windows.raised, ElementsAre(1, 2));
}

TEST_F(TerminalActivatorTest, aTerminalThatWasStartedFromAPaneHasItsOwnWindow)
{
    HookOrigin origin = inTmux();
    origin.ancestors.insert(origin.ancestors.begin() + 1, { terminal, {} });
    platform.windows.windows = { window(1, terminal), window(2, desktop) };
    handleEvent("Stop", origin);
    raise();
    EXPECT_THAT(platform.windows.raised, ElementsAre(1));
    origin.ancestors.resize(2); // started from a server that has ended since
    handleEvent("Stop", origin);
    raise();
    EXPECT_THAT(platform.windows.raised, ElementsAre(1, 1));
    EXPECT_TRUE(platform.commands.running.empty());
}

TEST_F(TerminalActivatorTest, tmuxWithoutATerminalSaysSo)
{
    const std::pair<CommandResult, const char*> cases[] = {
        { answer("$1\n"), "detached" },
        { { true, 1, {}, "can't find pane: %3" }, "no window" },
        { { false, {}, {}, {} }, "no window" },
        { { true, {}, {}, {} }, "no window" },
    };
    for (const auto& [result, word] : cases) {
        handleEvent("Stop", inTmux());
        raise();
        platform.commands.answer(result);
        EXPECT_THAT(activator.lost(), ElementsAre(Pair(QStringLiteral("s"), QLatin1String(word))));
    }
}

TEST_F(TerminalActivatorTest, theLatestClickCounts)
{
    platform.windows.windows = { window(1, terminal) };
    handleEvent("Stop", inTmux(), AgentState::done, "slow");
    handleEvent("Stop", hookUnder({ agent, terminal }), AgentState::done, "quick");
    raise("slow");
    raise("quick");
    platform.commands.answer(answer("$1\n"));
    EXPECT_THAT(platform.windows.raised, ElementsAre(1));
    EXPECT_THAT(activator.lost(), IsEmpty()) << "nobody asks for it any more";
}

TEST_F(TerminalActivatorTest, theOneThatWaitsLongestIsKnown)
{
    EXPECT_EQ(activator.longestWaiting(), std::nullopt);
    handleEvent("PermissionRequest", {}, AgentState::needsInput, "b");
    platform.loop.advance(1);
    handleEvent("PermissionRequest", {}, AgentState::needsInput, "a");
    platform.loop.advance(1);
    handleEvent("SessionStart", {}, AgentState::needsInput, "b"); // which moves its age, but it has waited all the time
    EXPECT_EQ(activator.longestWaiting(), QStringLiteral("b"));
    handleEvent("PostToolUse", {}, AgentState::working, "b");
    EXPECT_EQ(activator.longestWaiting(), QStringLiteral("a"));
}

} // namespace

} // namespace kestro
