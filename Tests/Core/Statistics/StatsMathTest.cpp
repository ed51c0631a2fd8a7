#include "KestroCore/Statistics/StatsMath.h"
#include "KestroCore/Statistics/DetailedSampler.h"
#include "KestroCore/Statistics/StatsText.h"

#include <gmock/gmock.h>
#include <limits>

using namespace kestro;
using namespace Qt::StringLiterals;

TEST(StatsMath, networkRates)
{
    using Table = std::tuple<const char*, std::vector<InterfaceBytes>, std::vector<InterfaceBytes>, double,
        std::optional<Throughput>>;
    const Table table[] = {
        { "wrapped", { { u"e"_s, 0xFFFFFFF0, 0 } }, { { u"e"_s, 0x10, 0 } }, 1, Throughput{ 32, 0 } },
        { "one began anew", { { u"e"_s, 100, 0 }, { u"w"_s, 0, 0 } }, { { u"e"_s, 50, 9 }, { u"w"_s, 8, 4 } }, 2,
            Throughput{ 4, 2 } },
        { "only its sent bytes did", { { u"e"_s, 0, 100 } }, { { u"e"_s, 9, 50 } }, 1, Throughput{} },
        { "more than 32 bits in a step", { { u"e"_s, 0, 0 } }, { { u"e"_s, 5'000'000'000, 0 } }, 5,
            Throughput{ 1e9, 0 } },
        { "a wide counter went back", { { u"e"_s, 5'000'000'000, 0 } }, { { u"e"_s, 1, 1 } }, 1, Throughput{} },
        { "a new one", {}, { { u"e"_s, 50, 9 } }, 1, Throughput{} },
        { "all gone", { { u"e"_s, 50, 9 } }, {}, 1, Throughput{} },
        { "no time passed", { { u"e"_s, 0, 0 } }, { { u"e"_s, 9, 9 } }, 0, std::nullopt },
    };
    for (const auto& [what, from, to, seconds, expected] : table)
        EXPECT_EQ(StatsMath::networkRates(from, to, seconds), expected) << what;
}

TEST(StatsMath, sharesAndRates)
{
    EXPECT_EQ(StatsMath::rate(10, 30, 2), 10);
    EXPECT_EQ(StatsMath::rate(30, 10, 2), std::nullopt);
    EXPECT_EQ(StatsMath::rate(10, 30, 0), std::nullopt);
    EXPECT_EQ(StatsMath::rate(10, 30, std::numeric_limits<double>::quiet_NaN()), std::nullopt);
    EXPECT_EQ(StatsMath::swapFraction(3, 2), 1);
    EXPECT_EQ(StatsMath::swapFraction(3, 0), std::nullopt);
    EXPECT_EQ(StatsMath::batteryHealth(60, 50), 1);
    EXPECT_EQ(StatsMath::batteryHealth(60, 0), std::nullopt);
    EXPECT_EQ(StatsMath::batteryWatts(12000, -1500), -18);
    EXPECT_EQ(StatsMath::batteryWatts(0, 1), std::nullopt);
    EXPECT_EQ(StatsMath::perCoreUsage({ {} }, { {}, {} }), std::nullopt) << "a core came";
    EXPECT_EQ(cpuUsage({ 10, 0, 500, 0 }, { 20, 0, 498, 0 }), 1) << "idle time stepped back";
}

TEST(StatsMath, temperatures)
{
    const std::vector<TemperatureReading> readings{ { u"nvme"_s, 60 }, { u"core"_s, 50, true }, { u"core"_s, 55, true },
        { u"PMU TCal"_s, 90 }, { u"broken"_s, -274 }, { u"wrong"_s, 7500 }, { u"zero"_s, 0 }, { u"edge"_s, 150 },
        { u"a"_s, 55 } };
    const auto top = StatsMath::topTemperatures(readings, 3);
    ASSERT_EQ(top.size(), 3U);
    EXPECT_EQ(top[0].name + top[1].name + top[2].name, u"nvmeacore"_s);
    EXPECT_EQ(top[2].celsius, 55);
    EXPECT_TRUE(StatsMath::topTemperatures(readings, -1).empty());
    const std::pair<std::vector<TemperatureReading>, std::optional<double>> table[] = { { readings, 55 },
        { { { u"x"_s, 40 }, { u"y"_s, 41 } }, 41 }, { { { u"PMU tcal"_s, 40 } }, std::nullopt },
        { { { u"PMU tdie1"_s, 40 }, { u"PMU tdie2"_s, 50 }, { u"PMU TDIE3"_s, 90 } }, 45 }, { {}, std::nullopt } };
    for (const auto& [of, expected] : table)
        EXPECT_EQ(StatsMath::cpuTemperature(of), expected);
}

TEST(StatsText, figures)
{
    EXPECT_EQ(StatsText::percent(0.125), u"13%"_s);
    EXPECT_EQ(StatsText::percent(std::nullopt), u"–"_s);
    EXPECT_EQ(StatsText::watts(-18), u"-18.0 W"_s);
    const std::tuple<double, const char*, const char*> sizes[] = { { 0, "0 bytes", "0 bytes" },
        { 1, "1 byte", "1 byte" }, { 1000, "1000 bytes", "1 KB" }, { 1024, "1 KB", "1 KB" },
        { 999'999, "977 KB", "1 MB" }, { 1'572'864, "1.5 MB", "1.6 MB" }, { 1e18, "888.18 PB", "1000 PB" } };
    for (const auto& [bytes, memory, file] : sizes) {
        EXPECT_EQ(StatsText::memory(quint64(bytes)), QString::fromLatin1(memory));
        EXPECT_EQ(StatsText::file(bytes), QString::fromLatin1(file));
    }
    EXPECT_EQ(StatsText::rate(2e6), u"2 MB/s"_s);
}

TEST(DetailedSampler, measuresBetweenTwoReadings)
{
    const auto none = [](const QString&) { return std::nullopt; };
    SystemReadings first{ .moment = 100,
        .ticks = CPUTicks{},
        .cores = { {}, {} },
        .disk = DiskBytes{ 100, 100 },
        .interfaces = std::vector<InterfaceBytes>{ { u"e"_s, 0, 0 } },
        .own = OwnUsage{ 0, 5, 0 } };
    DetailedSampler sampler;
    const DetailedStats nothing = sampler.sample(first, std::nullopt, none);
    EXPECT_FALSE(
        nothing.base.cpu || nothing.cores || nothing.diskRead || nothing.network || nothing.own || nothing.battery);
    EXPECT_EQ(nothing.fans, FanStatus(FansUnavailable{}));
    EXPECT_EQ(statsReport(nothing),
        u"cpu – · – cores · load –\nmemory – of 0 bytes · pressure – · swap – of –\ngpu –\n"
        "disk – free of – · read – · write –\nnetwork – – · down – · up –\nbattery none\n"
        "temperatures 0 sensors · hottest –\nfans unavailable\napps –\n"_s);

    SystemReadings second = first;
    second.moment = 102;
    second.ticks = CPUTicks{ 50, 0, 150, 0 };
    second.cores = { { 100, 0, 0, 0 }, { 0, 0, 100, 0 } };
    second.load = std::array{ 0.5, 1.0, 2.0 };
    second.disk = DiskBytes{ 2100, 50 };
    second.interfaces->front().received = 4000;
    second.interface = u"e"_s;
    second.own = OwnUsage{ 20'000'000, 5, 6 };
    second.battery = BatteryReading{
        .percent = 50, .cycles = 9, .maxCapacity = 40, .designCapacity = 50, .millivolts = 12000, .milliamps = -1500
    };
    second.temperatures = { { u"core"_s, 51.6, true } };
    second.fans = std::vector<double>{};
    const DetailedStats stats = sampler.sample(second, std::nullopt, none);
    EXPECT_EQ(stats.own, (OwnCost{ 1, 5, 3 }));
    EXPECT_EQ(statsReport(stats),
        u"cpu 25% · 2 cores · load 0.50 1.00 2.00\nmemory – of 0 bytes · pressure – · swap – of –\ngpu –\n"
        "disk – free of – · read 1 KB/s · write –\nnetwork e – · down 2 KB/s · up 0 bytes/s\n"
        "battery 50% · 9 cycles · health 80% · -18.0 W\ntemperatures 1 sensors · hottest core 52°\nfans none\napps –\n"_s);
}
