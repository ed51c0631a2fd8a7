#pragma once

#include "Helpers.h"

#include <QDir>
#include <QFileInfo>
#include <utility>
#include <vector>

namespace kestro::test {

/// The files of procfs and sysfs as one machine shows them.
using Machine = std::vector<std::pair<const char*, QByteArray>>;

/// A folder that stands for the machine's "/".
class MachineRoot {
public:
    explicit MachineRoot(const Machine& machine = {})
    {
        for (const auto& [path, content] : machine)
            write(path, content);
    }
    void write(const QString& path, const QByteArray& content) const
    {
        const QString whole = m_folder.filePath(path);
        QDir().mkpath(QFileInfo(whole).path());
        writeFile(whole, content);
    }
    void write(const char* path, const QByteArray& content) const { write(QString::fromLatin1(path), content); }
    void remove(const char* path) const { QFile::remove(m_folder.filePath(QString::fromLatin1(path))); }
    QByteArray path() const { return QFile::encodeName(m_folder.path()); }

private:
    QTemporaryDir m_folder;
};

/// Two cores with a battery, a wireless card and a bridge over it.
inline const Machine laptop{
    { "proc/stat",
        "cpu  10132153 290696 3084719 46828483 16683 0 25195 0 175628 0\n"
        "cpu0 5032153 140696 1584719 23428483 8683 0 15195 0 75628 0\n"
        "cpu1 5100000 150000 1500000 23400000 8000 0 10000 0 100000 0\n"
        "intr 114930548 113199788 3 0 5 263 0 4\nctxt 1990473\nbtime 1062191376\nprocesses 2915\n" },
    { "proc/meminfo",
        "MemTotal:       16265220 kB\nMemFree:         1023844 kB\nMemAvailable:    9102536 kB\nBuffers:          "
        "544772 kB\n"
        "SwapTotal:       8388604 kB\nSwapFree:        8126460 kB\n" },
    { "proc/loadavg", "0.52 0.71 0.80 2/1210 31337\n" },
    { "proc/pressure/memory",
        "some avg10=12.50 avg60=1.00 avg300=0.10 total=1\nfull avg10=0.20 avg60=0.00 avg300=0.00 total=1\n" },
    { "proc/diskstats",
        "   7       0 loop0 53 0 2110 14 0 0 0 0 0 48 14 0 0 0 0 0 0\n"
        " 259       0 nvme0n1 100 5 2000 70 50 9 1000 40 0 90 110 0 0 0 0 3 1\n"
        " 259       1 nvme0n1p1 90 5 1900 70 50 9 1000 40 0 90 110 0 0 0 0 0 0\n"
        " 253       0 dm-0 90 0 1900 70 50 0 1000 40 0 90 110 0 0 0 0 0 0\n" },
    { "sys/block/nvme0n1/device/model", "DISK\n" },
    { "sys/block/dm-0/size", "1\n" },
    { "sys/block/loop0/size", "1\n" },
    { "proc/net/dev",
        "Inter-|   Receive                                                |  Transmit\n"
        " face |bytes    packets errs drop fifo frame compressed multicast|bytes    packets errs drop fifo colls "
        "carrier compressed\n"
        "    lo: 9000       9    0    0    0     0          0         0     9000       9    0    0    0     0       0  "
        "        0\n"
        "wlp2s0:7000000000 5000    0    0    0     0          0         0   300000     400    0    0    0     0       "
        "0          0\n"
        "docker0: 500       5    0    0    0     0          0         0      600       6    0    0    0     0       0  "
        "        0\n" },
    { "sys/class/net/lo/flags", "0x9\n" },
    { "sys/class/net/wlp2s0/flags", "0x1003\n" },
    { "sys/class/net/wlp2s0/device/vendor", "0x8086\n" },
    { "sys/class/net/docker0/flags", "0x1003\n" },
    { "proc/net/route",
        "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n"
        "docker0\t000011AC\t00000000\t0001\t0\t0\t0\t0000FFFF\t0\t0\t0\n"
        "tun0\t00000000\t01000000\t0003\t0\t0\t700\t00000000\t0\t0\t0\n"
        "wlp2s0\t00000000\t0100A8C0\t0003\t0\t0\t600\t00000000\t0\t0\t0\n" },
    { "sys/class/power_supply/AC/type", "Mains\n" },
    { "sys/class/power_supply/AC/online", "0\n" },
    { "sys/class/power_supply/BAT0/type", "Battery\n" },
    { "sys/class/power_supply/BAT0/capacity", "81\n" },
    { "sys/class/power_supply/BAT0/status", "Discharging\n" },
    { "sys/class/power_supply/BAT0/cycle_count", "137\n" },
    { "sys/class/power_supply/BAT0/charge_full", "3900000\n" },
    { "sys/class/power_supply/BAT0/charge_full_design", "5000000\n" },
    { "sys/class/power_supply/BAT0/voltage_now", "12000000\n" },
    { "sys/class/power_supply/BAT0/current_now", "1500000\n" },
    { "sys/class/power_supply/hidpp_battery_0/type", "Battery\n" },
    { "sys/class/power_supply/hidpp_battery_0/scope", "Device\n" },
    { "sys/class/power_supply/hidpp_battery_0/capacity", "5\n" },
    { "sys/class/hwmon/hwmon0/name", "nvme\n" },
    { "sys/class/hwmon/hwmon0/temp1_input", "61850\n" },
    { "sys/class/hwmon/hwmon0/temp1_label", "Composite\n" },
    { "sys/class/hwmon/hwmon1/name", "coretemp\n" },
    { "sys/class/hwmon/hwmon1/temp1_input", "52000\n" },
    { "sys/class/hwmon/hwmon1/temp1_label", "Package id 0\n" },
    { "sys/class/hwmon/hwmon1/temp2_input", "51000\n" },
    { "sys/class/hwmon/hwmon1/temp2_label", "Core 0\n" },
    { "sys/class/hwmon/hwmon2/name", "thinkpad\n" },
    { "sys/class/hwmon/hwmon2/fan1_input", "2210\n" },
    { "sys/class/hwmon/hwmon2/fan2_input", "65535\n" },
};

/// A desktop with an AMD processor and a graphics card of its own.
inline const Machine towerMachine{
    { "proc/stat", "cpu  100 0 100 800 0 0 0 0 0 0\ncpu0 100 0 100 800 0 0 0 0 0 0\nintr 0\n" },
    { "sys/class/drm/card0/device/gpu_busy_percent", "7\n" },
    { "sys/class/drm/card1/device/gpu_busy_percent", "93\n" },
    { "sys/class/drm/card1-DP-1/device/gpu_busy_percent", "99\n" },
    { "sys/class/hwmon/hwmon0/name", "k10temp\n" },
    { "sys/class/hwmon/hwmon0/temp1_input", "64125\n" },
    { "sys/class/hwmon/hwmon0/temp1_label", "Tctl\n" },
    { "sys/class/hwmon/hwmon1/name", "amdgpu\n" },
    { "sys/class/hwmon/hwmon1/temp1_input", "88000\n" },
    { "sys/class/hwmon/hwmon1/temp1_label", "edge\n" },
    { "sys/class/hwmon/hwmon1/fan1_input", "1200\n" },
};

/// A board with an Arm processor: no hwmon, one zone, a card for a disk.
inline const Machine board{
    { "proc/stat", "cpu 1 2 3 4\ncpu0 1 2 3 4\n" },
    { "proc/diskstats",
        " 179       0 mmcblk0 10 0 20 0 5 0 40 0 0 0 0\n 179       1 mmcblk0p1 10 0 20 0 5 0 40 0 0 0 0\n" },
    { "sys/class/thermal/thermal_zone0/type", "cpu-thermal\n" },
    { "sys/class/thermal/thermal_zone0/temp", "48312\n" },
    { "sys/class/thermal/cooling_device0/type", "fan\n" },
};

} // namespace kestro::test
