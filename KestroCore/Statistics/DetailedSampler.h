#pragma once

#include "KestroCore/Processes/AppsSampler.h"
#include "KestroCore/Statistics/Readings.h"

#include <variant>

namespace kestro {

struct BatteryDetails {
    std::optional<int> percent;
    bool charging = false;
    std::optional<int> cycles{};
    std::optional<double> health{}; ///< share, 0 to 1
    std::optional<double> watts{}; ///< below 0 while discharging

    bool operator==(const BatteryDetails&) const = default;
};

struct FansUnavailable {
    bool operator==(const FansUnavailable&) const = default;
};
struct NoFans {
    bool operator==(const NoFans&) const = default;
};
/// Speeds in revolutions a minute, in the fans' order.
using FanStatus = std::variant<FansUnavailable, NoFans, std::vector<double>>;

/// What this process uses.
struct OwnCost {
    double percent = 0; ///< of one core
    quint64 memory = 0; ///< bytes
    double wakeUps = 0; ///< a second

    bool operator==(const OwnCost&) const = default;
};

/// What the window shows; what the machine does not tell is absent.
struct DetailedStats {
    Stats base;
    std::optional<double> seconds{}; ///< over how long the rates were measured
    std::optional<std::vector<double>> cores{}; ///< a share for each
    std::optional<std::array<double, 3>> load{};
    std::optional<MemoryPressure> pressure{};
    std::optional<quint64> swapUsed{};
    std::optional<quint64> swapTotal{};
    std::optional<qint64> diskTotal{};
    std::optional<double> diskRead{}; ///< bytes a second
    std::optional<double> diskWrite{}; ///< bytes a second
    bool diskUnavailable = false;
    std::optional<Throughput> network{};
    std::optional<QString> interface {
    };
    std::optional<QString> address{};
    std::optional<BatteryDetails> battery{};
    std::optional<std::vector<TemperatureReading>> temperatures{};
    FanStatus fans;
    std::optional<OwnCost> own{};
    std::optional<std::vector<AppGroup>> apps{};
};

/// Makes every two readings of the machine one sample. One user at a time.
class DetailedSampler {
public:
    /// Reads nothing: `processes` is what stood in the process list just now.
    DetailedStats sample(SystemReadings readings, std::optional<ProcessList> processes, const AppsSampler::Name& name);

private:
    void addRates(DetailedStats& stats, const SystemReadings& now) const;

    std::optional<SystemReadings> m_last;
    AppsSampler m_apps;
};

/// The sample in nine lines of text, for a terminal.
QString statsReport(const DetailedStats& stats);

} // namespace kestro
