#include "KestroCore/Statistics/Stats.h"

#include <gmock/gmock.h>

using namespace kestro;

TEST(Stats, cpuUsage)
{
    constexpr quint32 top = 0xFFFFFFFF;
    const std::tuple<const char*, CPUTicks, CPUTicks, double> table[] = { { "nothing passed", { 5, 5, 5, 5 },
                                                                              { 5, 5, 5, 5 }, 0 },
        { "all idle", { 5, 5, 5, 5 }, { 5, 5, 105, 5 }, 0 }, { "all busy", { 0, 0, 0, 0 }, { 40, 40, 0, 20 }, 1 },
        { "nice counts as busy", { 0, 0, 0, 0 }, { 0, 0, 75, 25 }, 0.25 },
        { "a counter wrapped", { top - 9, 0, 0, 0 }, { 40, 0, 50, 0 }, 0.5 },
        { "idle wrapped", { 0, 0, top, 0 }, { 1, 0, 0, 0 }, 0.5 },
        { "sums beyond 32 bits", { 0, 0, 0, 0 }, { top, top, top, top }, 0.75 } };
    for (const auto& [what, from, to, expected] : table)
        EXPECT_DOUBLE_EQ(cpuUsage(from, to), expected) << what;
}
