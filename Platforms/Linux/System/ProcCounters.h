#pragma once

#include "Kestro/Platform/SystemCounters.h"

#include <QByteArray>

namespace kestro {

/// The counters in /proc.
class ProcCounters final : public SystemCounters {
public:
    /// `root` stands before "/proc"; empty for the machine's own.
    explicit ProcCounters(const QByteArray& root = {});

    /// Waiting for a disk counts as idle, what interrupts take as the system's.
    std::optional<CPUTicks> cpuTicks() const override;
    /// Memory that is neither free nor could be freed at once.
    std::optional<quint64> ramUsed() const override;
    quint64 ramTotal() const override;

private:
    QByteArray m_stat;
    QByteArray m_meminfo;
};

} // namespace kestro
