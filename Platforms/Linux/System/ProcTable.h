#pragma once

#include "Kestro/Platform/ProcessTable.h"
#include "Platforms/Linux/System/AppEntries.h"

#include <mutex>

namespace kestro {

/// Applications by their processes, looked up anew once in a while. From any thread.
class AppLookup {
public:
    std::shared_ptr<const AppEntries> entries();
    void set(AppEntries entries); ///< for good

private:
    std::mutex m_mutex;
    std::shared_ptr<const AppEntries> m_entries;
    double m_readAt = 0; ///< seconds since the boot
    bool m_isFixed = false;
};

/// Reads procfs, and ends processes by their descriptors (Linux 5.3), which no other process can come to have.
class ProcTable final : public ProcessTable {
public:
    /// `root` stands before "/proc"; empty for the machine's own.
    explicit ProcTable(const QByteArray& root = {});

    std::unique_ptr<ProcessLister> lister() override;
    End end(const ProcessKey& process, bool force) override;
    bool isAlive(const ProcessKey& process) const override;
    QString commandLine(const ProcessKey& process) const override;
    std::vector<QByteArray> openPaths(const QByteArray& below) const override;
    qint32 ownPID() const override;
    QString resolved(const QString& path) const override;
    std::optional<ProcessKey> key(qint32 pid) const override;
    std::optional<QString> application(qint32 pid) const override;

    AppLookup& applications() { return *m_applications; }

private:
    QByteArray m_proc;
    std::shared_ptr<AppLookup> m_applications = std::make_shared<AppLookup>();
};

} // namespace kestro
