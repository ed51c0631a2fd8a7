#pragma once

#include "KestroCore/Statistics/Stats.h"

#include <optional>

namespace kestro {

/// The kernel's counters; a reading that fails is nothing. Cheap enough for the main thread.
class SystemCounters {
public:
    virtual ~SystemCounters() = default;

    virtual std::optional<CPUTicks> cpuTicks() const = 0;
    virtual std::optional<quint64> ramUsed() const = 0; ///< bytes
    virtual quint64 ramTotal() const = 0; ///< bytes; 0 when unknown
};

} // namespace kestro
