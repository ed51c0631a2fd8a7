#include "Kestro/Timer/TimerModel.h"
#include "Kestro/Timer/TimerActivity.h"
#include "Kestro/Timer/TimerReadout.h"
#include "Kestro/Timer/TimerSound.h"
#include "Tests/Support/Fakes.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace kestro {
namespace {

class FakeSound final : public TimerSound {
public:
    void play() override { ++played; }
    int played = 0;
};

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

class TimerTest : public testing::Test {
protected:
    /// As at a start of the program; `active` as the layout tells.
    TimerModel& start(bool active = true)
    {
        readout.reset();
        activity.reset();
        model = std::make_unique<TimerModel>(platform.loop, platform.preferences, platform.session, sound);
        activity = std::make_unique<TimerActivity>(*model, platform.loop, platform.preferences, notices);
        readout = std::make_unique<TimerReadout>(*model, platform.loop);
        model->setActive(active);
        return *model;
    }
    QString time() const { return TimerState::format(model->remaining()); }
    QByteArray stored() const { return platform.preferences.values.value(QStringLiteral("timerState")).toByteArray(); }

    test::FakePlatform platform;
    FakeSound sound;
    FakeNotices notices;
    std::unique_ptr<TimerModel> model;
    std::unique_ptr<TimerActivity> activity;
    std::unique_ptr<TimerReadout> readout;
};

TEST_F(TimerTest, EndsOnceWithASoundAndANotice)
{
    start().preset(5);
    EXPECT_EQ(platform.loop.waiting(), 1) << "nothing but the check at the end";
    platform.loop.advance(300);
    EXPECT_TRUE(model->state().isRunning());
    platform.loop.advance(0.05);
    EXPECT_TRUE(model->state().isIdle());
    EXPECT_EQ(time(), QStringLiteral("5:00"));
    EXPECT_EQ(sound.played, 1);
    EXPECT_EQ(notices.shown, QStringList{ QStringLiteral("timer|Timer done") });
    platform.loop.advance(86400);
    EXPECT_EQ(sound.played, 1);
    EXPECT_EQ(platform.loop.waiting(), 0);
}

TEST_F(TimerTest, StoresEveryChange)
{
    start();
    EXPECT_EQ(stored(), QByteArray()) << "nothing was changed";
    const std::pair<std::function<void()>, const char*> steps[] = {
        { [this] { model->preset(25); }, R"({"duration":1500.0,"phase":{"running":{"until":800001500.0}}})" },
        { [this] { model->adjust(-5); }, R"({"duration":1500.0,"phase":{"running":{"until":800001200.0}}})" },
        { [this] { model->startOrPause(); }, R"({"duration":1500.0,"phase":{"paused":{"remaining":1200.0}}})" },
        { [this] { model->startOrPause(); }, R"({"duration":1500.0,"phase":{"running":{"until":800001200.0}}})" },
        { [this] { model->reset(); }, R"({"duration":1500.0,"phase":{"idle":{}}})" },
    };
    for (const auto& [step, expected] : steps) {
        step();
        EXPECT_EQ(stored(), expected);
        EXPECT_EQ(platform.loop.waiting(), model->state().isRunning() ? 1 : 0);
    }
}

TEST_F(TimerTest, SurvivesARestart)
{
    start().preset(10);
    platform.loop.advance(60);
    start(false);
    EXPECT_EQ(time(), QStringLiteral("9:00"));
    EXPECT_EQ(platform.loop.waiting(), 0) << "the layout is not known yet";
    model->setActive(true);
    platform.loop.advance(539);
    EXPECT_EQ(sound.played, 0);
    platform.loop.advance(2);
    EXPECT_EQ(sound.played, 1);

    model->preset(1);
    model.reset(); // the program is off
    platform.loop.advance(3600);
    start();
    EXPECT_TRUE(model->state().isIdle());
    EXPECT_EQ(stored(), R"({"duration":60.0,"phase":{"idle":{}}})");
    EXPECT_EQ(sound.played, 1) << "nobody was there to hear it";
    EXPECT_EQ(notices.shown.size(), 1);

    platform.preferences.values[QStringLiteral("timerState")] = QByteArray("rubbish");
    start();
    EXPECT_EQ(model->state(), TimerState());
    EXPECT_EQ(stored(), "rubbish") << "reading writes nothing";
}

TEST_F(TimerTest, IsSilentOutsideOfTheLayout)
{
    start().preset(1);
    model->setActive(false);
    platform.loop.advance(3600);
    EXPECT_TRUE(model->state().isRunning());
    EXPECT_EQ(platform.loop.waiting(), 0);
    Q_EMIT platform.session.didWake();
    EXPECT_TRUE(model->state().isRunning());
    model->setActive(true);
    EXPECT_TRUE(model->state().isIdle());
    EXPECT_EQ(sound.played, 0);
}

/// A loop whose clock the user sets, or whose computer sleeps, while work waits by a clock of its own.
class JumpingLoop final : public MainLoop {
public:
    explicit JumpingLoop(test::FakeLoop& loop)
        : m_loop(loop)
    {
    }
    Date now() const override { return m_loop.now() + jump; }
    WorkItem after(double seconds, Work work) override { return m_loop.after(seconds, std::move(work)); }
    Timer every(double seconds, Work work) override { return m_loop.every(seconds, std::move(work)); }
    void post(Work work) override { m_loop.post(std::move(work)); }

    double jump = 0;

private:
    test::FakeLoop& m_loop;
};

TEST_F(TimerTest, GoesByTheClockOfTheWall)
{
    JumpingLoop loop(platform.loop);
    TimerModel timer(loop, platform.preferences, platform.session, sound);
    TimerReadout shown(timer, loop);
    timer.setActive(true);

    timer.preset(5);
    loop.jump = 600;
    Q_EMIT platform.session.didWake();
    EXPECT_EQ(sound.played, 1) << "ended during the sleep";

    timer.preset(5);
    loop.jump -= 100; // set back
    platform.loop.advance(301);
    EXPECT_EQ(sound.played, 1);
    EXPECT_EQ(TimerState::format(timer.remaining()), QStringLiteral("1:39"));
    platform.loop.advance(99.1);
    EXPECT_EQ(sound.played, 2);

    timer.preset(5);
    loop.jump += 600; // set forward
    shown.setCardShown(true);
    EXPECT_EQ(sound.played, 3) << "who looks is not told 0:00";
    EXPECT_EQ(shown.time(), QStringLiteral("5:00"));
}

TEST_F(TimerTest, ANoticeWaitsForAMinuteAtMost)
{
    const struct {
        const char* what;
        double waited;
        bool on, told;
    } table[] = {
        { "soon", 59, true, true },
        { "too late", 60, true, false },
        { "switched off", 0, false, false },
    };
    for (const auto& row : table) {
        SCOPED_TRACE(row.what);
        start();
        platform.preferences.values[QStringLiteral("liveActivity.timer")] = row.on;
        notices.shown.clear();
        notices.blocked = true;
        model->preset(1);
        platform.loop.advance(60.05);
        EXPECT_TRUE(notices.shown.isEmpty());
        platform.loop.advance(row.waited);
        notices.blocked = false;
        activity->unblocked();
        EXPECT_EQ(notices.shown.size(), row.told ? 1 : 0);
        activity->unblocked();
        EXPECT_EQ(notices.shown.size(), row.told ? 1 : 0) << "told once";
    }
}

TEST_F(TimerTest, WingsGiveWayToTheAgents)
{
    EXPECT_FALSE(start().showsWings(false));
    model->preset(1);
    EXPECT_TRUE(model->showsWings(false));
    EXPECT_FALSE(model->showsWings(true));
    model->setActive(false);
    EXPECT_FALSE(model->showsWings(false));
}

TEST_F(TimerTest, TheReadoutWakesForWhatIsSeen)
{
    start().preset(5);
    QSignalSpy changed(readout.get(), &TimerReadout::changed);
    QSignalSpy shortTimeChanged(readout.get(), &TimerReadout::shortTimeChanged);
    const auto pass = [&](double seconds) {
        changed.clear();
        shortTimeChanged.clear();
        platform.loop.advance(seconds);
    };
    pass(10);
    EXPECT_EQ(changed.size(), 0) << "nobody looks";

    readout->setCardShown(true);
    EXPECT_EQ(readout->time(), QStringLiteral("4:50"));
    pass(2.02);
    EXPECT_EQ(readout->time(), QStringLiteral("4:48"));
    EXPECT_EQ(changed.size(), 2);
    readout->setCardShown(false);
    readout->setTileShown(true);
    pass(47.99);
    EXPECT_EQ(readout->shortTime(), QStringLiteral("4m"));
    EXPECT_EQ(changed.size(), 1) << "once a minute";
    EXPECT_EQ(readout->share(), 0.8);
    pass(180);
    EXPECT_EQ(readout->shortTime(), QStringLiteral("1m"));
    pass(2);
    EXPECT_EQ(readout->shortTime(), QStringLiteral("58s"));
    EXPECT_EQ(shortTimeChanged.size(), 2) << "each second of the last minute";
    pass(60);
    EXPECT_EQ(sound.played, 1);
    EXPECT_EQ(readout->shortTime(), QStringLiteral("5m"));
    EXPECT_EQ(platform.loop.waiting(), 0);

    readout->adjust(1);
    EXPECT_EQ(readout->shortTime(), QStringLiteral("6m"));
    readout->preset(1);
    readout->startOrPause();
    EXPECT_EQ(platform.loop.waiting(), 0) << "a paused timer stands still";
    readout->reset();
    EXPECT_TRUE(readout->isIdle());
}

TEST_F(TimerTest, LimitsOfTheMinuteButtons)
{
    start().preset(99);
    model->reset();
    EXPECT_TRUE(readout->isAtMost());
    for (int i = 0; i < 100; ++i)
        model->adjust(-1);
    EXPECT_TRUE(readout->isAtZero());
    EXPECT_FALSE(readout->isAtMost());
    model->startOrPause();
    EXPECT_FALSE(readout->isRunning());
}

} // namespace
} // namespace kestro
