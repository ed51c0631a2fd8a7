#include "Machines.h"
#include "Platforms/Linux/System/ProcCounters.h"
#include "Platforms/Linux/System/ProcText.h"

namespace kestro {
namespace {

using namespace test;

TEST(ProcCounters, ReadALaptop)
{
    const MachineRoot root(laptop);
    const ProcCounters counters(root.path());
    const SystemReadings now = counters.readings();
    EXPECT_EQ(now.ticks, (CPUTicks{ .user = 10132153, .system = 3109914, .idle = 46845166, .nice = 290696 }));
    EXPECT_EQ(now.ticks, counters.cpuTicks());
    EXPECT_EQ(now.cores.size(), 2U);
    EXPECT_EQ(now.load, (std::array{ 0.52, 0.71, 0.80 }));
    EXPECT_EQ(now.ramUsed, (16265220ull - 9102536) * 1024);
    EXPECT_EQ(now.swapUsed, (8388604ull - 8126460) * 1024);
    EXPECT_EQ(now.pressure, MemoryPressure::warning);
    EXPECT_EQ(now.disk, (DiskBytes{ 2000 * 512, 1000 * 512 })) << "partitions and what is laid over disks count once";
    EXPECT_EQ(now.interfaces, (std::vector<InterfaceBytes>{ { u"wlp2s0"_s, 7000000000, 300000 } }));
    EXPECT_EQ(now.interface, u"wlp2s0"_s);
    EXPECT_EQ(now.battery,
        (BatteryReading{ .percent = 81,
            .cycles = 137,
            .maxCapacity = 3900000,
            .designCapacity = 5000000,
            .millivolts = 12000,
            .milliamps = -1500 }));
    EXPECT_EQ(now.temperatures.size(), 3U);
    EXPECT_EQ(counters.cpuTemperature(), 52) << "the disk is hotter and no processor";
    EXPECT_EQ(now.fans, (std::vector<double>{ 2210, 65535 }));
    EXPECT_FALSE(now.gpu);
    EXPECT_TRUE(now.diskFree && now.own);
}

TEST(ProcCounters, ReadOtherMachines)
{
    const MachineRoot towerRoot(towerMachine);
    const SystemReadings tower = ProcCounters(towerRoot.path()).readings();
    EXPECT_EQ(tower.gpu, 93);
    EXPECT_EQ(ProcCounters(towerRoot.path()).cpuTemperature(), 64.125);
    EXPECT_FALSE(tower.battery || tower.disk || tower.interfaces || tower.load || tower.ramUsed);

    const MachineRoot boardRoot(board);
    const SystemReadings small = ProcCounters(boardRoot.path()).readings();
    EXPECT_EQ(small.disk, (DiskBytes{ 20 * 512, 40 * 512 }));
    EXPECT_EQ(ProcCounters(boardRoot.path()).cpuTemperature(), 48.312);
    EXPECT_EQ(small.fans, std::vector<double>());

    const MachineRoot none;
    const SystemReadings nothing = ProcCounters(none.path()).readings();
    EXPECT_FALSE(nothing.ticks || nothing.load || nothing.ramUsed || nothing.pressure || nothing.swapTotal
        || nothing.disk || nothing.interfaces || nothing.interface || nothing.battery || nothing.gpu);
    EXPECT_EQ(nothing.ramTotal, 0U);
    EXPECT_TRUE(nothing.cores.empty() && nothing.temperatures.empty());
}

TEST(ProcCounters, TakeBrokenFilesForNothing)
{
    const std::pair<QByteArray, std::optional<CPUTicks>> stats[] = {
        { "cpu 1 2 3 4\nbtime 5\n", CPUTicks{ .user = 1, .system = 3, .idle = 4, .nice = 2 } },
        { "cpu  4294967301 0 0 4294967295 2\n", CPUTicks{ .user = 5, .system = 0, .idle = 1, .nice = 0 } },
        { "cpu  1 2 3 4" + QByteArray(5000, '5'), std::nullopt },
        { "cpu  1 2 3\n", std::nullopt },
        { "cpu  1 x 3 4\n", std::nullopt },
        { "cpu0 1 2 3 4\n", std::nullopt },
        { "", std::nullopt },
    };
    for (const auto& [stat, ticks] : stats)
        EXPECT_EQ(procText::cpuTicks(view(stat)), ticks) << stat.left(100).constData();
    const std::pair<QByteArray, std::optional<quint64>> memories[] = {
        { "XMemTotal: 10 kB\nMemTotal: 20 kB\n", 20480 },
        { "MemTotal: -1 kB\n", std::nullopt },
        { "MemTotal: 18446744073709551615 kB\n", std::nullopt },
        { "MemTotal: 20 k", std::nullopt },
        { "MemTotal: 20\n", std::nullopt },
    };
    for (const auto& [memory, total] : memories)
        EXPECT_EQ(procText::memory(view(memory), "MemTotal:"), total) << memory.constData();
    EXPECT_EQ(procText::load("nan 1 2\n"), std::nullopt);
    EXPECT_EQ(procText::load("0.1 0.2\n"), std::nullopt);
    EXPECT_EQ(procText::pressure("some avg10=x\n"), std::nullopt);
    EXPECT_EQ(procText::interfaces("eth0:0: 1 2\n e: 1 2 3 4 5 6 7 8 9 \n").size(), 1U);
    QByteArray many = "cpu  1 1 1 1\n";
    for (int i = 0; i < 4096; ++i)
        many += "cpu" + QByteArray::number(i) + " 123456 123 123456 12345678 123 0 1 0 0 0\n";
    const MachineRoot root({ { "proc/stat", many } });
    EXPECT_EQ(ProcCounters(root.path()).readings().cores.size(), 4096U);
}

TEST(ProcCounters, FollowBatteriesAndSensorsThatChange)
{
    const MachineRoot root(laptop);
    const ProcCounters counters(root.path());
    root.write("sys/class/power_supply/BAT0/status", "Charging\n");
    root.write("sys/class/power_supply/AC/online", "1\n");
    root.remove("sys/class/power_supply/BAT0/charge_full_design");
    root.write("sys/class/power_supply/BAT0/current_now", "-900000\n");
    const auto battery = counters.battery();
    ASSERT_TRUE(battery);
    EXPECT_TRUE(battery->charging && battery->onMains);
    EXPECT_EQ(battery->milliamps, 900);
    EXPECT_FALSE(battery->designCapacity);
    for (const char* value : { "-274000", "7500000", "x", "" }) {
        root.write("sys/class/hwmon/hwmon1/temp1_input", value);
        EXPECT_FALSE(counters.cpuTemperature()) << value;
    }
}

TEST(ProcCounters, ReadThisMachine)
{
    const ProcCounters counters;
    EXPECT_TRUE(counters.cpuTicks());
    EXPECT_GT(counters.ramUsed(), 0U);
    EXPECT_LT(counters.ramUsed(), counters.ramTotal());
    EXPECT_FALSE(counters.readings().cores.empty());
}

} // namespace
} // namespace kestro
