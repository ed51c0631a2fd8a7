#pragma once

#include "KestroCore/Processes/AppGrouping.h"

namespace kestro {

/// All processes at one moment.
struct ProcessList {
    double moment = 0; ///< seconds of a clock that nobody sets
    std::vector<ProcessCPUTime> processes;
};

/// Turns every two lists into applications and what they used in between.
class AppsSampler {
public:
    using Name = std::function<std::optional<QString>(const QString& bundlePath)>; ///< in the user's language

    /// Nothing for the first list, and after one that could not be read.
    std::optional<std::vector<AppGroup>> sample(std::optional<ProcessList> list, const Name& name);

private:
    std::optional<ProcessList> m_last;
};

} // namespace kestro
