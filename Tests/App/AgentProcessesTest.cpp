#include "Kestro/Agents/AgentProcesses.h"
#include "Tests/Support/Fakes.h"

#include <gmock/gmock.h>

namespace kestro {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const ProcessId shell{ 30, 300 };
const ProcessId helper{ 20, 200 };
const ProcessId claude{ 10, 100 };

/// A hook that was started by these, the nearest first; all but the shell go by an agent's name.
HookOrigin from(const std::vector<ProcessId>& ancestors)
{
    HookOrigin origin;
    for (const ProcessId& each : ancestors)
        origin.ancestors.push_back({ each, { each == shell ? "sh" : "claude" } });
    return origin;
}

struct AgentProcessesTest : testing::Test {
    test::FakePlatform platform;
    QStringList over;
    AgentProcesses processes{ platform.peers, platform.loop, [this](const QString& id) { over.append(id); } };
};

TEST(AgentProcesses, theNearestThatOutlivesItsEventByTwoSecondsIsTheAgent)
{
    struct Case {
        const char* name;
        double helperEnds, claudeEnds; // seconds after the event; 0: already ended, below 0: never
        QStringList over;
    };
    const QStringList one{ QStringLiteral("s") };
    const Case cases[] = {
        { "killed", -1, 10, {} },
        { "a short-lived helper, then killed", 1.9, 10, one },
        { "a helper that was gone at once, then killed", 0, 10, one },
        { "killed before it was proven", 0, 1.9, one },
        { "killed at once, and its helper before it", 0.1, 0.2, one },
        { "both gone before they were looked at", 0, 0, one },
        { "the helper was the agent after all", 2, -1, one },
        { "and its parent's end changes nothing", 2, 3, one },
    };
    for (const Case& each : cases) {
        test::FakePlatform platform;
        QStringList over;
        AgentProcesses processes(platform.peers, platform.loop, [&](const QString& id) { over.append(id); });
        const auto endAt = [&](const ProcessId& process, double seconds) {
            if (seconds == 0)
                platform.peers.end(process);
            return seconds > 0 ? platform.loop.after(seconds, [&platform, process] { platform.peers.end(process); })
                               : WorkItem();
        };
        const WorkItem first = endAt(helper, each.helperEnds);
        const WorkItem second = endAt(claude, each.claudeEnds);
        processes.handleEvent(QStringLiteral("s"), from({ shell, helper, claude }));
        platform.loop.advance(60);
        EXPECT_EQ(over, each.over) << each.name;
    }
}

TEST_F(AgentProcessesTest, aSessionThatGoesOnElsewhereOutlivesItsFirstProcess)
{
    processes.handleEvent(QStringLiteral("s"), from({ shell, claude }));
    processes.handleEvent(QStringLiteral("other"), from({ shell, claude }));
    EXPECT_EQ(platform.peers.watches(), 1) << "one process, one watch";
    platform.loop.advance(5);
    processes.handleEvent(QStringLiteral("s"), from({ shell, helper }));
    processes.handleEvent(QStringLiteral("s"), {}); // one that cannot be seen tells nothing new
    platform.loop.advance(5);
    platform.peers.end(claude);
    EXPECT_THAT(over, ElementsAre(QStringLiteral("other")));
    platform.peers.end(helper);
    EXPECT_THAT(over, ElementsAre(QStringLiteral("other"), QStringLiteral("s")));
    EXPECT_EQ(platform.peers.watches(), 0);
}

TEST_F(AgentProcessesTest, nothingIsWatchedForSessionsThatAreOver)
{
    processes.handleEvent(QStringLiteral("s"), from({ shell, helper, claude }));
    EXPECT_EQ(platform.loop.waiting(), 0) << "no timer for the two seconds";
    processes.prune([](const QString&) { return false; });
    EXPECT_EQ(platform.peers.watches(), 0);
    EXPECT_THAT(over, IsEmpty());
}

} // namespace

} // namespace kestro
