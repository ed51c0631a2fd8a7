#include "Kestro/Timer/TimerFeature.h"
#include "Kestro/Layout/LauncherModel.h"
#include "Tests/Support/Fakes.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace kestro {
namespace {

class FakeNotices final : public TimerNotices {
public:
    bool show(const QString& symbol, const QString& title) override
    {
        if (!blocked)
            shown.append(symbol + u'|' + title);
        return !blocked;
    }
    bool blocked = false;
    QStringList shown;
};

/// A clock that can be set, also by a sleep of the computer, while work waits by a clock of its own.
class JumpingLoop final : public MainLoop {
public:
    Date now() const override { return inner.now() + jump; }
    WorkItem after(double seconds, Work work) override { return inner.after(seconds, std::move(work)); }
    Timer every(double seconds, Work work) override { return inner.every(seconds, std::move(work)); }
    void post(Work work) override { inner.post(std::move(work)); }

    test::FakeLoop inner;
    double jump = 0;
};

class TimerTest : public testing::Test {
protected:
    TimerTest() { launcher.add({ QUuid::createUuid(), LaunchItem::Widget{ WidgetKind::timer } }); }

    /// As at a start of the program.
    TimerModel& start()
    {
        feature.reset();
        feature = std::make_unique<TimerFeature>(
            host, launcher, TimerPorts{ loop, platform.preferences, platform.session, platform.sounds, &notices });
        feature->start();
        return feature->model();
    }
    TimerModel& model() const { return feature->model(); }
    Widget& widget() const { return *feature->widgets().front(); }
    void pass(double seconds) { loop.inner.advance(seconds); }
    QString time() const { return TimerState::format(model().remaining()); }
    QString tile() const { return widget().tile().figure; }
    void setInLayout(bool there)
    {
        if (there)
            launcher.add({ QUuid::createUuid(), LaunchItem::Widget{ WidgetKind::timer } });
        else
            launcher.remove(launcher.store().items().first().id);
    }

    test::FakePlatform platform;
    JumpingLoop loop;
    FakeNotices notices;
    FeatureHost host{ platform.preferences };
    LauncherModel launcher{ platform.loop, platform.preferences, platform.workspace, platform.fetcher, platform.log,
        {} };
    std::unique_ptr<TimerFeature> feature;
};

TEST_F(TimerTest, EndsOnceWithASoundAndANotice)
{
    start().preset(5);
    EXPECT_EQ(loop.inner.waiting(), 1) << "nothing but the check at the end";
    pass(300);
    EXPECT_TRUE(model().state().isRunning());
    pass(0.05);
    EXPECT_TRUE(model().state().isIdle());
    EXPECT_EQ(time(), QStringLiteral("5:00"));
    pass(86400);
    EXPECT_EQ(platform.sounds.played.size(), 1);
    EXPECT_EQ(notices.shown, QStringList{ QStringLiteral("timer|Timer done") });
    EXPECT_EQ(loop.inner.waiting(), 0);
}

TEST_F(TimerTest, SurvivesARestart)
{
    start().preset(10);
    pass(60);
    start();
    EXPECT_EQ(time(), QStringLiteral("9:00"));
    pass(541);
    EXPECT_EQ(platform.sounds.played.size(), 1);

    model().preset(1);
    feature.reset(); // the program is off
    pass(3600);
    start();
    EXPECT_EQ(model().state(), (TimerState{ TimerState::Idle{}, 60 }));
    EXPECT_EQ(platform.sounds.played.size(), 1) << "nobody was there to hear it";
    EXPECT_EQ(notices.shown.size(), 1);

    platform.preferences.values[QStringLiteral("timerState")] = QByteArray("rubbish");
    EXPECT_EQ(start().state(), TimerState());
}

TEST_F(TimerTest, IsSilentOutsideOfTheLayout)
{
    start().preset(1);
    EXPECT_TRUE(model().showsWings(false));
    EXPECT_FALSE(model().showsWings(true));
    setInLayout(false);
    EXPECT_FALSE(model().showsWings(false));
    pass(3600);
    Q_EMIT platform.session.didWake();
    EXPECT_TRUE(model().state().isRunning());
    EXPECT_EQ(loop.inner.waiting(), 0);
    setInLayout(true);
    EXPECT_TRUE(model().state().isIdle());
    EXPECT_EQ(platform.sounds.played.size(), 0);
}

TEST_F(TimerTest, GoesByTheClockOfTheWall)
{
    start().preset(5);
    loop.jump = 600;
    Q_EMIT platform.session.didWake();
    EXPECT_EQ(platform.sounds.played.size(), 1) << "ended during the sleep";

    model().preset(5);
    loop.jump -= 100; // set back
    pass(301);
    EXPECT_EQ(time(), QStringLiteral("1:39"));
    pass(99.1);
    EXPECT_EQ(platform.sounds.played.size(), 2);

    model().preset(5);
    loop.jump += 600; // set forward
    widget().shown(true);
    EXPECT_EQ(platform.sounds.played.size(), 3) << "a card never stands at 0:00";
}

TEST_F(TimerTest, ANoticeWaitsForAMinuteAtMost)
{
    const std::tuple<const char*, double, bool, int> table[] = {
        { "soon", 59, true, 1 },
        { "too late", 60, true, 0 },
        { "switched off", 0, false, 0 },
    };
    for (const auto& [what, waited, on, told] : table) {
        start();
        platform.preferences.values[QStringLiteral("liveActivity.timer")] = on;
        notices.shown.clear();
        notices.blocked = true;
        host.surface.setExpanded(true);
        model().preset(1);
        pass(60.05 + waited);
        notices.blocked = false;
        for (const bool expanded : { false, true, false })
            host.surface.setExpanded(expanded);
        EXPECT_EQ(notices.shown.size(), told) << what;
    }
}

TEST_F(TimerTest, WakesForWhatIsSeen)
{
    start().preset(5);
    QSignalSpy tileChanged(&widget(), &Widget::tileChanged);
    // What the tile tells when it changes in this time.
    const auto figures = [&](double seconds) {
        QByteArray told;
        tileChanged.clear();
        for (; seconds > 0; seconds -= 0.5) {
            pass(0.5);
            if (!tileChanged.isEmpty())
                told += tile().toLatin1() + ' ';
            tileChanged.clear();
        }
        return told;
    };
    pass(10);
    EXPECT_EQ(loop.inner.waiting(), 1) << "nobody looks";
    EXPECT_EQ(widget().tile(), WidgetTile());

    host.surface.setDockVisible(true);
    EXPECT_EQ(tile(), QStringLiteral("5m"));
    EXPECT_EQ(widget().tile().badgeText, QStringLiteral("5m left"));
    EXPECT_EQ(figures(60), "4m ");
    EXPECT_EQ(widget().tile().share, 0.8);
    widget().shown(true);
    EXPECT_EQ(figures(10), "") << "the card's seconds are not the tile's";
    widget().shown(false);
    EXPECT_EQ(figures(162.5), "3m 2m 1m 59s 58s ");
    model().startOrPause();
    EXPECT_EQ(widget().tile().badgeText, QStringLiteral("Paused, 58s left"));
    EXPECT_EQ(loop.inner.waiting(), 0);
    model().startOrPause();
    host.surface.setDisplaysAsleep(true);
    EXPECT_EQ(loop.inner.waiting(), 1);
    host.surface.setDisplaysAsleep(false);
    pass(58.01);
    EXPECT_EQ(platform.sounds.played.size(), 1);
    EXPECT_EQ(widget().tile(), WidgetTile());
    EXPECT_EQ(loop.inner.waiting(), 0);
    model().preset(1);
    platform.preferences.setValue(QStringLiteral("dockLiveTiles"), false);
    platform.loop.turn();
    EXPECT_EQ(loop.inner.waiting(), 1);
}

} // namespace
} // namespace kestro
