#pragma once

#include "Kestro/Platform/PeerInspector.h"
#include "KestroCore/Support/FileDescriptor.h"

#include <QString>
#include <map>
#include <mutex>
#include <optional>

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
    struct Known {
        ProcessInfo info;
        qint64 parent;
        std::optional<QByteArrayList> variables; ///< once they were read
    };
    std::optional<Known> look(qint64 pid, bool& asBefore) const;
    std::optional<Known> recall(qint64 pid) const;
    void remember(const Known& known) const;

    FileDescriptor m_root;
    mutable std::mutex m_mutex;
    mutable std::map<qint64, Known> m_known; ///< agents, shells and terminals are met again and again
};

} // namespace kestro
