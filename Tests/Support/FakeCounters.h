#pragma once

#include "Kestro/Platform/SystemCounters.h"

namespace kestro::test {

class FakeCounters final : public SystemCounters {
public:
    std::optional<CPUTicks> cpuTicks() const override { return ++readings, ticks; }
    std::optional<quint64> ramUsed() const override { return used; }
    quint64 ramTotal() const override { return 16ull << 30; }

    std::optional<CPUTicks> ticks;
    std::optional<quint64> used = 4ull << 30;
    mutable int readings = 0;
};

} // namespace kestro::test
