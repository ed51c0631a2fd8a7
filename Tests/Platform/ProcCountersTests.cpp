#include "Helpers.h"
#include "Platforms/Linux/System/ProcCounters.h"

#include <QDir>
#include <gmock/gmock.h>

namespace kestro {
namespace {

using namespace test;

class ProcCountersTest : public testing::Test {
protected:
    const QTemporaryDir m_root;
    const ProcCounters m_counters{ QFile::encodeName(m_root.path()) };

    void SetUp() override { QDir(m_root.path()).mkdir(QStringLiteral("proc")); }
    void write(const char* name, const QByteArray& content) const
    {
        writeFile(m_root.filePath(QStringLiteral("proc/") + QLatin1String(name)), content);
    }
};

TEST_F(ProcCountersTest, AddsUpTicks)
{
    const struct {
        QByteArray stat;
        std::optional<CPUTicks> ticks;
    } cases[] = {
        { "cpu  100 20 30 4000 500 6 7 8 9 10\ncpu0 1 1 1 1\n",
            CPUTicks{ .user = 100, .system = 51, .idle = 4500, .nice = 20 } },
        { "cpu 1 2 3 4\nbtime 5\n", CPUTicks{ .user = 1, .system = 3, .idle = 4, .nice = 2 } },
        { "cpu  4294967301 0 0 4294967295 2\n", CPUTicks{ .user = 5, .system = 0, .idle = 1, .nice = 0 } },
        { "cpu  1 2 3 4" + QByteArray(5000, '5'), std::nullopt }, // beyond every type
        { "cpu  1 2 3\n", std::nullopt },
        { "cpu  1 x 3 4\n", std::nullopt },
        { "cpu0 1 2 3 4\n", std::nullopt },
        { "cpu ", std::nullopt },
        { "", std::nullopt },
    };
    for (const auto& c : cases) {
        write("stat", c.stat);
        EXPECT_EQ(m_counters.cpuTicks(), c.ticks) << c.stat.left(100).constData();
    }
}

TEST_F(ProcCountersTest, ReadsMemory)
{
    const struct {
        QByteArray meminfo;
        quint64 total;
        std::optional<quint64> used;
    } cases[] = {
        { "MemTotal:       4000 kB\nMemFree:         100 kB\nMemAvailable:   1500 kB\n", 4096000, 2560000 },
        { "MemTotal:       4000 kB\nMemFree:         100 kB\n", 4096000, std::nullopt },
        { "MemTotal: 10 kB\nMemAvailable: 11 kB\n", 10240, std::nullopt },
        { "XMemTotal: 10 kB\nMemTotal: 20 kB\nMemAvailable: 1 kB", 20480, 19456 },
        { "MemTotal: 10", 0, std::nullopt },
        { "MemTotal: -1 kB\nMemAvailable: 1 kB\n", 0, std::nullopt },
        { "", 0, std::nullopt },
    };
    for (const auto& c : cases) {
        write("meminfo", c.meminfo);
        EXPECT_EQ(m_counters.ramTotal(), c.total) << c.meminfo.constData();
        EXPECT_EQ(m_counters.ramUsed(), c.used) << c.meminfo.constData();
    }
}

TEST_F(ProcCountersTest, FindsNothingWithoutTheFiles)
{
    EXPECT_FALSE(m_counters.cpuTicks());
    EXPECT_FALSE(m_counters.ramUsed());
    EXPECT_EQ(m_counters.ramTotal(), 0U);
}

TEST(ProcCounters, ReadsThisMachine)
{
    const ProcCounters counters;
    const auto ticks = counters.cpuTicks();
    ASSERT_TRUE(ticks);
    EXPECT_GT(ticks->idle + ticks->user, 0U);
    const auto used = counters.ramUsed();
    ASSERT_TRUE(used);
    EXPECT_GT(*used, 0U);
    EXPECT_LT(*used, counters.ramTotal());
}

} // namespace
} // namespace kestro
