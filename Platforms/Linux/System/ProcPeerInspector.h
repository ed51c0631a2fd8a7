#pragma once

#include "Kestro/Platform/PeerInspector.h"
#include "KestroCore/Support/FileDescriptor.h"

#include <QString>
#include <map>
#include <mutex>

namespace kestro {

/// Reads procfs, and watches processes by their descriptors (Linux 5.3).
class ProcPeerInspector final : public PeerInspector {
public:
    /// `root` is where procfs is mounted.
    explicit ProcPeerInspector(const QString& root = QStringLiteral("/proc"));

    HookOrigin peer(int connection) const override;
    HookOrigin process(qint64 pid) const override;
    std::unique_ptr<ProcessWatch> watch(const ProcessId& process, std::function<void()> ended) override;

private:
    std::vector<QByteArray> namesOf(const ProcessId& id, const QByteArray& name) const;

    FileDescriptor m_root;
    mutable std::mutex m_mutex;
    /// Agents and terminals are met again and again; the first of a process's names tells whether the others hold.
    mutable std::map<ProcessId, std::vector<QByteArray>> m_known;
};

} // namespace kestro
