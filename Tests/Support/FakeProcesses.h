#pragma once

#include "Kestro/Platform/ProcessTable.h"

#include <QHash>
#include <QStringList>
#include <algorithm>

namespace kestro::test {

class FakeProcesses final : public ProcessTable {
public:
    std::unique_ptr<ProcessLister> lister() override
    {
        struct Lister final : ProcessLister {
            explicit Lister(FakeProcesses& of)
                : table(of)
            {
            }
            std::optional<ProcessList> list() override { return ++table.lists, table.now; }
            FakeProcesses& table;
        };
        return std::make_unique<Lister>(*this);
    }
    End end(const ProcessKey& process, bool force) override
    {
        if (!isAlive(process))
            return End::gone;
        if (refused.contains(process.pid))
            return End::refused;
        ended.append((force ? QStringLiteral("kill %1") : QStringLiteral("end %1")).arg(process.pid));
        return End::sent;
    }
    bool isAlive(const ProcessKey& process) const override { return key(process.pid) == process; }
    QString commandLine(const ProcessKey& process) const override { return QStringLiteral("run %1").arg(process.pid); }
    std::vector<QByteArray> openPaths(const QByteArray&) const override { return open; }
    qint32 ownPID() const override { return 1; }
    QString resolved(const QString& path) const override { return links.value(path, path); }
    std::optional<ProcessKey> key(qint32 pid) const override
    {
        const auto found = started.constFind(pid);
        return found == started.cend() ? std::nullopt : std::optional(ProcessKey{ pid, *found });
    }
    std::optional<QString> application(qint32 pid) const override
    {
        const auto found = entries.constFind(pid);
        return found == entries.cend() ? std::nullopt : std::optional(*found);
    }

    std::optional<ProcessList> now; ///< set while the queues rest
    int lists = 0;
    QHash<qint32, quint64> started; ///< of those that run
    QHash<qint32, QString> entries;
    QHash<QString, QString> links;
    std::vector<QByteArray> open; ///< set while the queues rest
    QList<qint32> refused;
    QStringList ended;
};

} // namespace kestro::test
