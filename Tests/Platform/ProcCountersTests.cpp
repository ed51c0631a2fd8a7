#include "Helpers.h"
#include "Platforms/Linux/System/ProcCounters.h"

#include <QDir>

namespace kestro {
namespace {

using namespace test;

TEST(ProcCounters, AddUpTicksAndReadMemory)
{
    const QTemporaryDir root;
    QDir(root.path()).mkdir(u"proc"_s);
    const ProcCounters counters(QFile::encodeName(root.path()));
    EXPECT_FALSE(counters.cpuTicks()) << "without the files";
    EXPECT_FALSE(counters.ramUsed());
    EXPECT_EQ(counters.ramTotal(), 0U);

    const std::pair<QByteArray, std::optional<CPUTicks>> stats[] = {
        { "cpu  100 20 30 4000 500 6 7 8 9 10\ncpu0 1 1 1 1\n",
            CPUTicks{ .user = 100, .system = 51, .idle = 4500, .nice = 20 } },
        { "cpu 1 2 3 4\nbtime 5\n", CPUTicks{ .user = 1, .system = 3, .idle = 4, .nice = 2 } },
        { "cpu  4294967301 0 0 4294967295 2\n", CPUTicks{ .user = 5, .system = 0, .idle = 1, .nice = 0 } },
        { "cpu  1 2 3 4" + QByteArray(5000, '5'), std::nullopt }, // beyond every type
        { "cpu  1 2 3\n", std::nullopt },
        { "cpu  1 x 3 4\n", std::nullopt },
        { "cpu0 1 2 3 4\n", std::nullopt },
    };
    for (const auto& [stat, ticks] : stats) {
        writeFile(root.filePath(u"proc/stat"_s), stat);
        EXPECT_EQ(counters.cpuTicks(), ticks) << stat.left(100).constData();
    }
    const std::tuple<QByteArray, quint64, std::optional<quint64>> memories[] = {
        { "MemTotal:       4000 kB\nMemFree:         100 kB\nMemAvailable:   1500 kB\n", 4096000, 2560000 },
        { "MemTotal:       4000 kB\nMemFree:         100 kB\n", 4096000, std::nullopt },
        { "MemTotal: 10 kB\nMemAvailable: 11 kB\n", 10240, std::nullopt },
        { "XMemTotal: 10 kB\nMemTotal: 20 kB\nMemAvailable: 1 kB", 20480, 19456 },
        { "MemTotal: -1 kB\nMemAvailable: 1 kB\n", 0, std::nullopt },
    };
    for (const auto& [memory, total, used] : memories) {
        writeFile(root.filePath(u"proc/meminfo"_s), memory);
        EXPECT_EQ(counters.ramTotal(), total) << memory.constData();
        EXPECT_EQ(counters.ramUsed(), used) << memory.constData();
    }
}

TEST(ProcCounters, ReadThisMachine)
{
    const ProcCounters counters;
    EXPECT_TRUE(counters.cpuTicks());
    EXPECT_GT(counters.ramUsed(), 0U);
    EXPECT_LT(counters.ramUsed(), counters.ramTotal());
}

} // namespace
} // namespace kestro
