#include "KestroCore/Timer/TimerState.h"
#include "KestroCore/Support/StorageError.h"

#include <functional>
#include <gtest/gtest.h>

namespace kestro {
namespace {

using Running = TimerState::Running;
using Paused = TimerState::Paused;
using Idle = TimerState::Idle;

// A moment with a fraction: sums with it are not exact.
constexpr Date now{ 822222222.1234567 };

TimerState running(double left, double duration = 300) { return { Running{ now + left }, duration }; }
TimerState paused(double left, double duration = 300) { return { Paused{ left }, duration }; }
TimerState idle(double duration = 300) { return { Idle{}, duration }; }

std::string shown(const TimerState& state)
{
    const char* phase = state.isRunning() ? "running " : state.isIdle() ? "idle " : "paused ";
    return phase + TimerState::format(state.remaining(now)).toStdString() + " of "
        + TimerState::format(state.duration).toStdString();
}

TEST(TimerState, Transitions)
{
    const auto preset = [](int minutes) { return [=](TimerState& state) { state.start(minutes, now); }; };
    const auto adjust = [](int minutes) { return [=](TimerState& state) { state.adjust(minutes, now); }; };
    const auto resume = [](TimerState& state) { state.start(now); };
    const auto pause = [](TimerState& state) { state.pause(now); };
    const auto reset = [](TimerState& state) { state.reset(); };
    const struct {
        int line;
        TimerState before;
        std::function<void(TimerState&)> step;
        const char* after;
    } table[] = {
        { __LINE__, idle(), preset(5), "running 5:00 of 5:00" },
        { __LINE__, paused(10), preset(25), "running 25:00 of 25:00" },
        { __LINE__, idle(), preset(0), "running 0:00 of 0:00" },
        { __LINE__, idle(), preset(2147483647), "running 99:00 of 99:00" },
        { __LINE__, idle(), resume, "running 5:00 of 5:00" },
        { __LINE__, idle(0), resume, "idle 0:00 of 0:00" },
        { __LINE__, paused(90), resume, "running 1:30 of 5:00" },
        { __LINE__, paused(0), resume, "paused 0:00 of 5:00" },
        { __LINE__, running(90), pause, "paused 1:30 of 5:00" },
        { __LINE__, running(-90), pause, "paused 0:00 of 5:00" },
        { __LINE__, running(90, 600), reset, "idle 10:00 of 10:00" },
        { __LINE__, running(90), adjust(1), "running 2:30 of 5:00" },
        { __LINE__, running(30), adjust(-1), "running 0:00 of 5:00" },
        { __LINE__, running(99 * 60), adjust(1), "running 99:00 of 5:00" },
        { __LINE__, paused(30), adjust(-1), "paused 0:00 of 5:00" },
        { __LINE__, idle(), adjust(1), "idle 6:00 of 6:00" },
        { __LINE__, idle(60), adjust(-2), "idle 0:00 of 0:00" },
    };
    for (const auto& row : table) {
        TimerState state = row.before;
        row.step(state);
        EXPECT_EQ(shown(state), row.after) << "line " << row.line;
    }
}

TEST(TimerState, EndsAtItsMomentAndNotBefore)
{
    EXPECT_FALSE(running(0.001).isFinished(now));
    EXPECT_TRUE(running(0).isFinished(now));
    EXPECT_EQ(running(-86400).remaining(now), 0);
    EXPECT_FALSE(paused(0).isFinished(now));
}

TEST(TimerState, Texts)
{
    const struct {
        double seconds;
        const char *full, *wings;
    } table[] = {
        { 0, "0:00", "0s" },
        { 0.2, "0:01", "1s" },
        { 59.1, "1:00", "1m" },
        { 60, "1:00", "1m" },
        { 61, "1:01", "2m" },
        { 90.2, "1:31", "2m" },
        { 3 * 3600, "180:00", "180m" },
        { 1e300, "16666666666666:40", "16666666666667m" },
    };
    for (const auto& row : table) {
        EXPECT_EQ(TimerState::format(row.seconds).toStdString(), row.full) << row.seconds;
        EXPECT_EQ(TimerState::wingText(row.seconds).toStdString(), row.wings) << row.seconds;
    }
    for (int minutes = 1; minutes <= 99; ++minutes)
        EXPECT_EQ(
            TimerState::format(running(minutes * 60).remaining(now)).toStdString(), std::to_string(minutes) + ":00");
}

TEST(TimerState, IsStoredAsJson)
{
    EXPECT_EQ(idle().encode(), R"({"duration":300.0,"phase":{"idle":{}}})");
    EXPECT_EQ(paused(12.5).encode(), R"({"duration":300.0,"phase":{"paused":{"remaining":12.5}}})");
    EXPECT_EQ((TimerState{ Running{ { 8e8 } }, 60 }.encode()),
        R"({"duration":60.0,"phase":{"running":{"until":800000000.0}}})");
    for (const TimerState& state : { idle(0), paused(12.3), running(33.3) })
        EXPECT_EQ(TimerState::decode(*state.encode()), state);
    EXPECT_FALSE(paused(std::numeric_limits<double>::infinity()).encode());
}

TEST(TimerState, RefusesWhatIsNoState)
{
    EXPECT_EQ(
        TimerState::decode(R"({"phase":{"paused":{"remaining":7,"new":1}},"duration":60,"new":1})"), paused(7, 60));
    const std::pair<const char*, const char*> table[] = {
        { "[]", "not a JSON object" },
        { R"({"duration":1})", "not a JSON object with a phase" },
        { R"({"phase":{"idle":{}}})", "\"duration\" is not a number" },
        { R"({"phase":{"idle":{}},"duration":1e400})", "not a JSON object" },
        { R"({"phase":"idle","duration":1})", "\"phase\" is not an object" },
        { R"({"phase":{},"duration":1})", "Invalid number of keys found, expected one." },
        { R"({"phase":{"idle":{},"paused":{"remaining":1}},"duration":1})",
            "Invalid number of keys found, expected one." },
        { R"({"phase":{"running":5},"duration":1})", "\"until\" is not a number" },
        { R"({"phase":{"walking":{}},"duration":1})", "\"walking\" is not a phase" },
    };
    for (const auto& [bytes, reason] : table) {
        try {
            TimerState::decode(bytes);
            ADD_FAILURE() << bytes;
        } catch (const StorageError& error) {
            EXPECT_TRUE(error.description().contains(QLatin1StringView(reason))) << error.what() << " of " << bytes;
        }
    }
}

} // namespace
} // namespace kestro
