#include "Helpers.h"
#include "Platforms/Linux/System/QtMainLoop.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <limits>
#include <thread>

namespace kestro {
namespace {

using namespace test;

TEST(QtMainLoop, TellsTheTime)
{
    const double unixNow = static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000;
    EXPECT_NEAR(QtMainLoop().now().seconds, unixNow - Date::unixEpochOffset, 1);
}

TEST(QtMainLoop, RunsWorkOnceNotEarlyAndNeverAtOnce)
{
    QtMainLoop loop;
    const WorkItem year = loop.after(365 * 24 * 3600.0, [] { ADD_FAILURE() << "longer than a timer can count"; });
    const WorkItem ever = loop.after(std::numeric_limits<double>::infinity(), [] { ADD_FAILURE() << "for ever"; });
    for (const double seconds : { 0.0, -1.0, std::numeric_limits<double>::quiet_NaN(), 0.03 }) {
        int runs = 0;
        QElapsedTimer clock;
        clock.start();
        const WorkItem item = loop.after(seconds, [&] { ++runs; });
        EXPECT_EQ(runs, 0);
        EXPECT_TRUE(item);
        ASSERT_TRUE(waitFor([&] { return runs > 0; })) << seconds;
        EXPECT_GE(static_cast<double>(clock.nsecsElapsed()) / 1e9, seconds > 0 ? seconds : 0);
        EXPECT_FALSE(item);
        settle();
        EXPECT_EQ(runs, 1);
    }
    EXPECT_TRUE(year && ever);
}

TEST(QtMainLoop, TakesWorkBack)
{
    QtMainLoop loop;
    int runs = 0;
    WorkItem cancelled = loop.after(0, [&] { ++runs; });
    cancelled.cancel();
    WorkItem replaced = loop.after(0, [&] { ++runs; });
    replaced = loop.after(0, [&] { runs += 100; });
    (void)Timer(loop.every(0.001, [&] { ++runs; }));
    ASSERT_TRUE(waitFor([&] { return runs >= 100; }));
    settle();
    EXPECT_EQ(runs, 100);
}

TEST(QtMainLoop, AllowsWorkToCancelAndReplaceItself)
{
    QtMainLoop loop;
    // The captured string is used after the handle is gone: it must still be there.
    const QString words = u"still here, and too long to be stored in place"_s;
    QStringList heard;
    Scheduled once;
    once = loop.after(0, [&, words] {
        once.cancel();
        heard.append(words);
    });
    Scheduled repeated;
    int ticks = 0;
    repeated = loop.every(0.001, [&, words] {
        if (++ticks < 3)
            return;
        repeated = loop.after(0, [&] { heard.append(u"next"_s); });
        heard.append(words);
    });
    ASSERT_TRUE(waitFor([&] { return heard.size() == 3; }));
    EXPECT_EQ(ticks, 3);
    EXPECT_FALSE(once || repeated);
}

TEST(QtMainLoop, TakesPostsFromAnyThreadInOrderAndDropsThoseItOutlives)
{
    QList<int> order;
    const auto dropped = std::make_shared<bool>(false);
    {
        QtMainLoop loop;
        std::thread([&] {
            for (int i = 0; i < 100; ++i)
                loop.post([&order, i] { order.append(i); });
        }).join();
        EXPECT_TRUE(order.isEmpty());
        settle();
        loop.post([dropped] { *dropped = true; });
    }
    settle();
    EXPECT_EQ(order.size(), 100);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    EXPECT_FALSE(*dropped);
    EXPECT_EQ(dropped.use_count(), 1);
}

} // namespace
} // namespace kestro
