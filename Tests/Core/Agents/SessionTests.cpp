#include "KestroCore/Agents/SessionStore.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace kestro {
namespace {

constexpr Date start{ 1000 };
using S = AgentState;

AgentEvent event(const char* name, const char* id = "a", const char* folder = "", Agent agent = Agent::claude)
{
    return { agent, QString::fromUtf8(id), QString::fromUtf8(folder), QString::fromUtf8(name) };
}

/// A store with one session "a" that the event brought into being.
SessionStore after(const char* name, Date at = start)
{
    SessionStore store;
    store.apply(event(name), at);
    return store;
}

std::optional<AgentState> stateOf(const SessionStore& store)
{
    const auto found = store.sessions.find(QStringLiteral("a"));
    return found == store.sessions.end() ? std::nullopt : std::optional(found->second.state);
}

TEST(SessionStore, FollowsEvents)
{
    constexpr std::optional<AgentState> none;
    const SessionStore befores[]{ {}, after("SessionStart"), after("PermissionRequest"), after("Stop") };
    const std::pair<std::vector<const char*>, std::array<std::optional<AgentState>, 4>> table[]{
        { { "SessionEnd", "sessionEnd" }, { none, none, none, none } },
        { { "SessionStart", "sessionStart" }, { S::idle, S::idle, S::needsInput, S::done } },
        { { "UserPromptSubmit", "PostToolUse", "beforeSubmitPrompt", "postToolUse" },
            { S::working, S::working, S::working, S::working } },
        { { "PermissionRequest" }, { S::needsInput, S::needsInput, S::needsInput, S::needsInput } },
        { { "Stop", "stop" }, { S::done, S::done, S::done, S::done } },
        { { "Interrupt" }, { S::idle, S::idle, S::idle, S::idle } },
    };
    for (const auto& [names, expected] : table) {
        for (const char* name : names) {
            for (size_t i = 0; i < std::size(befores); ++i) {
                SessionStore store = befores[i];
                store.apply(event(name), start + 9);
                EXPECT_EQ(stateOf(store), expected[i]) << name << i;
                for (const Session& session : store.sorted())
                    EXPECT_EQ(session.lastEventAt, start + 9);
            }
        }
    }
    for (const char* name : { "", "STOP", "interrupt", "permissionRequest", "PreToolUse", "Stop " }) {
        for (const SessionStore& before : befores) {
            SessionStore store = before;
            store.apply(event(name, "a", "/elsewhere"), start + 9);
            EXPECT_EQ(store, before) << name;
        }
    }
}

TEST(SessionStore, NamesTheProjectByTheFolder)
{
    const std::pair<const char*, const char*> table[]{ { "/home/u/dock", "dock" }, { "/home/u/dock/", "dock" },
        { "/home/u//dock///", "dock" }, { "/", "/" }, { "///", "/" }, { "dock", "dock" }, { "a/b", "b" }, { "d/", "d" },
        { "/w/my app.git", "my app.git" }, { "", "before" } };
    for (const auto& [folder, project] : table) {
        SCOPED_TRACE(folder);
        SessionStore store;
        store.apply(event("Stop", "a", "/w/before"), start);
        store.apply(event("SessionStart", "a", folder, Agent::codex), start);
        const Session expected{ QStringLiteral("a"), Agent::codex, QString::fromUtf8(project), S::done, start };
        EXPECT_EQ(store.sorted(), std::vector{ expected });
    }
    EXPECT_EQ(after("Stop").sorted().front().project, QString());
}

TEST(SessionStore, PrunesAtTheAge)
{
    const std::tuple<const char*, double, double> table[]{ { "Stop", 599.9, 600 },
        { "SessionStart", std::nextafter(1800, 0), 1800 }, { "PostToolUse", 1799.9, 1800 },
        { "PermissionRequest", 1799.9, 1800 } };
    for (const auto& [name, keptAt, goneAt] : table) {
        SCOPED_TRACE(name);
        SessionStore store = after(name, Date{ 0 });
        store.prune(Date{ -5 }); // the clock was set back
        store.prune(Date{ keptAt });
        EXPECT_TRUE(stateOf(store));
        store.prune(Date{ goneAt });
        EXPECT_FALSE(stateOf(store));
    }
}

TEST(SessionStore, CountsAndLightsTheWing)
{
    // The events of one session each, how many work and ask, and the wing 3.9 s later.
    const std::tuple<std::vector<const char*>, int, int, std::optional<AgentState>> table[]{ { {}, 0, 0, {} },
        { { "SessionStart", "Interrupt" }, 0, 0, {} }, { { "SessionStart", "Stop" }, 0, 0, S::done },
        { { "Stop", "PostToolUse", "stop" }, 1, 0, S::working },
        { { "PostToolUse", "PermissionRequest", "Stop", "postToolUse" }, 2, 1, S::needsInput } };
    for (const auto& [events, working, asking, wing] : table) {
        SCOPED_TRACE(events.size());
        SessionStore store;
        for (const char* name : events)
            store.apply(event(name, std::to_string(store.sessions.size()).c_str()), start);
        EXPECT_EQ(store.workingCount(), working);
        EXPECT_EQ(store.needsInputCount(), asking);
        EXPECT_EQ(store.activeCount(), working + asking);
        EXPECT_EQ(store.wingState(start + 3.9), wing);
        EXPECT_EQ(store.wingState(start + 4), wing == S::done ? std::nullopt : wing);
    }
}

TEST(SessionStore, KeepsTheNewest)
{
    SessionStore store;
    const auto id = [](std::size_t number) { return std::to_string(number); };
    const std::size_t most = SessionStore::mostSessions;
    for (std::size_t i = 0; i < most; ++i)
        store.apply(event(i == 1 ? "PermissionRequest" : "PostToolUse", id(i).c_str()), start + double(i));
    store.apply(event("PostToolUse", "0"), start + double(most)); // is the newest now
    EXPECT_EQ(store.sessions.size(), most);
    store.apply(event("Stop", "earlier"), start + -9); // the clock was set back
    EXPECT_EQ(store.sessions.size(), most);
    EXPECT_FALSE(store.sessions.contains(QStringLiteral("1"))) << "the oldest";
    EXPECT_EQ(store.wingState(start), AgentState::working) << "and what it was waiting for";
    EXPECT_EQ(store.sorted().front().id, QStringLiteral("0"));
    EXPECT_EQ(store.sorted().back().id, QStringLiteral("earlier"));
    store.apply(event("Stop", "later"), start + 5000);
    EXPECT_FALSE(store.sessions.contains(QStringLiteral("earlier")));
}

TEST(SessionStore, CountsAsAWalkWould)
{
    const char* const events[] = { "SessionStart", "PostToolUse", "PermissionRequest", "Stop", "Interrupt",
        "SessionEnd" };
    SessionStore store;
    unsigned chance = 1;
    for (int step = 0; step < 3000; ++step) {
        chance = chance * 1'664'525 + 1'013'904'223;
        const Date now = start + step;
        store.apply(event(events[(chance >> 16) % 6], std::to_string((chance >> 24) % 40).c_str()), now);
        if (step % 500 == 499)
            store.prune(now + double(chance % 2000));
        const std::vector<Session> all = store.sorted();
        const auto count = [&](S state) { return std::ranges::count(all, state, &Session::state); };
        ASSERT_EQ(store.workingCount(), count(S::working));
        ASSERT_EQ(store.needsInputCount(), count(S::needsInput));
        ASSERT_EQ(store.wingState(now) == S::done,
            count(S::working) + count(S::needsInput) == 0 && std::ranges::any_of(all, [&](const Session& each) {
                return each.state == S::done && now - each.lastEventAt < 4;
            }));
        ASSERT_TRUE(std::ranges::is_sorted(all, std::ranges::greater(), &Session::lastEventAt));
        const auto next = store.nextChange(now);
        ASSERT_EQ(next.has_value(), !all.empty());
        if (!next || *next <= now)
            continue;
        SessionStore waited = store;
        waited.prune(*next + -0.001);
        ASSERT_TRUE(waited == store && store.wingState(*next + -0.001) == store.wingState(now));
        waited.prune(*next);
        ASSERT_TRUE(waited != store || waited.wingState(*next) != store.wingState(now));
    }
}

TEST(SessionStore, SortsTheNewestFirstAndEqualsById)
{
    SessionStore store;
    const std::pair<const char*, double> events[]{ { "c", 1 }, { "b", 2 }, { "d", 1 }, { "a", 1 }, { "e", 3 } };
    for (const auto& [id, at] : events)
        store.apply(event("Stop", id), Date{ at });
    QString order;
    for (const Session& session : store.sorted())
        order += session.id;
    EXPECT_EQ(order, QStringLiteral("ebacd"));
}

TEST(Session, TellsItsAge)
{
    const std::pair<double, const char*> table[]{ { -90, "now" }, { 0, "now" }, { 59.9, "now" }, { 60, "1m ago" },
        { 119.9, "1m ago" }, { 3599.9, "59m ago" }, { 3600, "1h ago" }, { 7199, "1h ago" }, { 360000, "100h ago" } };
    for (const auto& [seconds, text] : table)
        EXPECT_EQ(agoText(seconds), QString::fromUtf8(text)) << seconds;
}

} // namespace
} // namespace kestro
