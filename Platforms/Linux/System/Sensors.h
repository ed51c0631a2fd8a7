#pragma once

#include "KestroCore/Statistics/Readings.h"
#include "Platforms/Linux/System/SystemFiles.h"

/// What sysfs tells of temperatures, fans, batteries and graphics processors. From any thread.
namespace kestro::sensors {

struct Sensor {
    QByteArray path; ///< of its value, in thousandths of a degree
    QString name;
    bool isProcessor = false;
};

/// Every thermometer, those of hwmon first; the kernel's zones only where hwmon has none.
std::vector<Sensor> thermometers(const SystemFiles& files);
std::optional<double> celsius(const SystemFiles& files, const Sensor& sensor);
/// Nothing where a fan is there and none can be read, empty where there is none.
std::optional<std::vector<double>> fans(const SystemFiles& files);
/// The first battery of the computer itself; those of mice and keyboards are none.
std::optional<BatteryReading> battery(const SystemFiles& files);
/// How busy the busiest graphics processor is, in percent.
std::optional<int> gpu(const SystemFiles& files);

} // namespace kestro::sensors
