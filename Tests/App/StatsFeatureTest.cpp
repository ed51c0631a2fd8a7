#include "Kestro/Statistics/StatsFeature.h"
#include "Tests/App/ModelFixture.h"

#include <QSignalSpy>

namespace kestro {
namespace {

class StatsFeatureTest : public test::ModelFixture {
protected:
    StatsFeature& stats() const { return model->stats(); }
    StatsWidget& widget() const { return *static_cast<StatsWidget*>(stats().widgets().front()); }
    QString cells() const
    {
        QStringList all;
        const StatsCard& card = *stats().card();
        for (int i = 0; i < card.rowCount(); ++i) {
            all.append(card.data(card.index(i), StatsCard::Label).toString() + u'='
                + card.data(card.index(i), StatsCard::Value).toString());
        }
        return all.join(u'|');
    }
    QStringList apps() const
    {
        QStringList all;
        const AppsModel& list = *stats().window().apps();
        for (int i = 0; i < list.rowCount(); ++i)
            all.append(list.data(list.index(i), AppsModel::Name).toString());
        return all;
    }
    static ProcessCPUTime process(qint32 pid, const char* name, quint64 seconds, const char* app = nullptr)
    {
        return { pid, QString::fromLatin1(name), seconds * 1'000'000'000, 1000, QStringLiteral("/opt/x"), 7, {},
            app ? std::optional(QString::fromLatin1(app)) : std::nullopt };
    }
    /// Other queues post as well.
    bool turnUntil(const QSignalSpy& told, int count)
    {
        while (told.count() < count) {
            if (!platform.loop.turnWhenPosted())
                return false;
        }
        return true;
    }
    /// Opens the window and lets it sample twice, so that applications are there.
    void measure()
    {
        platform.workspace.names.insert(QStringLiteral("/e/files.desktop"), QStringLiteral("Files"));
        platform.processes.now = ProcessList{ 10,
            { process(5, "files", 0, "/e/files.desktop"), process(6, "helper", 0, "/e/files.desktop"),
                process(9, "tool", 0) } };
        platform.processes.started = { { 5, 7 }, { 6, 7 }, { 9, 7 } };
        const QSignalSpy told(&stats().window(), &StatsWindowModel::statsChanged);
        stats().window().setVisible(true);
        ASSERT_TRUE(turnUntil(told, 1));
        platform.processes.now = ProcessList{ 12,
            { process(5, "files", 1, "/e/files.desktop"), process(6, "helper", 1, "/e/files.desktop"),
                process(9, "tool", 1) } };
        stats().window().refresh();
        ASSERT_TRUE(turnUntil(told, 2));
    }
};

TEST_F(StatsFeatureTest, ReadsOnlyWhileSomebodyLooks)
{
    platform.counters.ticks = CPUTicks{ 0, 0, 100, 0 };
    set("dockRunningIndicators", false);
    start();
    const int before = platform.counters.ticksRead;
    platform.loop.advance(60);
    EXPECT_EQ(platform.counters.ticksRead, before);
    EXPECT_EQ(platform.loop.waiting(), 0);

    platform.counters.ticks = CPUTicks{ 25, 0, 175, 0 };
    model->setExpanded(true);
    EXPECT_EQ(cells(), QStringLiteral("CPU=25%|MEMORY=4.0 / 16 GB"));
    platform.loop.advance(4);
    EXPECT_EQ(platform.counters.ticksRead, before + 3) << "at once, then every two seconds";
    platform.counters.ticks.reset();
    platform.counters.used.reset();
    platform.counters.all.battery = BatteryReading{ .percent = 81, .charging = true };
    platform.counters.all.diskFree = 240'900'000'000;
    platform.counters.celsius = 51.6;
    platform.loop.advance(2);
    EXPECT_EQ(cells(), QStringLiteral("CPU=–|MEMORY=–|BATTERY=81%|CPU TEMP=52°|SSD=240 GB free"));
    set("showBattery", false);
    platform.loop.turn();
    EXPECT_FALSE(cells().contains(QStringLiteral("BATTERY")));
    model->setExpanded(false);
    EXPECT_EQ(platform.loop.waiting(), 0);

    platform.counters.ticks = CPUTicks{ 25, 0, 175, 0 };
    model->surface().setDockVisible(true);
    platform.counters.ticks = CPUTicks{ 75, 0, 225, 0 };
    platform.loop.advance(2);
    EXPECT_EQ(widget().tile().share, 0.5);
    model->surface().setDisplaysAsleep(true);
    EXPECT_EQ(platform.loop.waiting(), 0);
    EXPECT_EQ(widget().tile(), WidgetTile());
}

TEST_F(StatsFeatureTest, TheWindowSamplesWhileItIsSeen)
{
    start();
    StatsWindowModel& window = stats().window();
    const QSignalSpy told(&window, &StatsWindowModel::statsChanged);
    const auto sampled = [&](int count) { return turnUntil(told, count) && platform.counters.samples == count; };
    set("statsRefreshInterval", 3.0);
    window.setVisible(true);
    window.refresh();
    EXPECT_TRUE(sampled(1)) << "the one that was under way";
    platform.loop.advance(2);
    EXPECT_TRUE(sampled(2)) << "an interval of 3 is one of 2";
    window.setPaused(true);
    platform.loop.advance(60);
    EXPECT_EQ(platform.counters.samples, 2);
    window.setPaused(false);
    EXPECT_TRUE(sampled(3));
    window.setVisible(false);
    platform.loop.advance(60);
    EXPECT_EQ(platform.counters.samples, 3);
}

TEST_F(StatsFeatureTest, ListsAndQuitsApplications)
{
    start();
    AppsModel& list = *stats().window().apps();
    EXPECT_TRUE(list.isMeasuring());
    measure();
    EXPECT_EQ(apps(), (QStringList{ QStringLiteral("Files"), QStringLiteral("tool") }));
    list.toggle(QStringLiteral("/e/files.desktop"));
    EXPECT_EQ(apps().value(1), QStringLiteral("files (5)"));
    list.setSearch(QStringLiteral("TOO"));
    EXPECT_EQ(apps(), QStringList{ QStringLiteral("tool") });
    list.setSearch({});

    platform.windows.windows = { { 77, 6, {} } };
    list.ask(QStringLiteral("/e/files.desktop"), false);
    EXPECT_EQ(list.question(), QStringLiteral("Files may ask to save first."));
    list.confirm();
    EXPECT_EQ(platform.windows.closed, QList<quint32>{ 77 }) << "asked by its window";
    EXPECT_TRUE(platform.processes.ended.isEmpty());

    platform.windows.windows.clear();
    list.ask(QStringLiteral("/e/files.desktop"), true);
    EXPECT_EQ(list.question(), QStringLiteral("Unsaved changes in Files will be lost."));
    platform.processes.started[5] = 8; // another process has the number now
    list.confirm();
    EXPECT_EQ(platform.processes.ended, QStringList{ QStringLiteral("kill 6") });
    EXPECT_EQ(widget().notice(), QStringLiteral("1 process had already quit"));

    platform.processes.refused = { 9 };
    list.ask(QStringLiteral("pid 9"), false);
    list.confirm();
    EXPECT_EQ(widget().notice(), QStringLiteral("Couldn't quit tool"));
}

TEST_F(StatsFeatureTest, MarksApplicationsThatHaveWindows)
{
    const auto windows = [&](const char* path) {
        return stats().running().windows({ QUuid(), LaunchItem::App{ QString::fromLatin1(path) } });
    };
    platform.windows.windows = { { 1, 5, {} }, { 2, 6, {} }, { 3, 0, {} }, { 4, 9, {} } };
    platform.processes.entries = { { 5, QStringLiteral("/e/files.desktop") },
        { 6, QStringLiteral("/e/files.desktop") } };
    platform.processes.links = { { QStringLiteral("/home/u/link.desktop"), QStringLiteral("/e/files.desktop") } };
    const auto reach = [&](int count) {
        while (windows("/e/files.desktop") != count)
            ASSERT_TRUE(platform.loop.turnWhenPosted());
    };
    start();
    reach(2);
    EXPECT_EQ(windows("/home/u/link.desktop"), 2);
    platform.windows.windows.clear();
    platform.windows.tell();
    reach(0);
    EXPECT_EQ(platform.loop.waiting(), 0) << "nothing polls";
}

} // namespace
} // namespace kestro
