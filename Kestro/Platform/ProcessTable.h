#pragma once

#include "KestroCore/Processes/AppsSampler.h"

#include <memory>

namespace kestro {

/// Lists processes again and again, and remembers of each what does not change. One thread at a time.
class ProcessLister {
public:
    virtual ~ProcessLister() = default;

    /// Nothing where the list cannot be read.
    virtual std::optional<ProcessList> list() = 0;
};

/// The processes of this computer.
class ProcessTable {
public:
    virtual ~ProcessTable() = default;

    /// It may be used on any one thread, and outlive this.
    virtual std::unique_ptr<ProcessLister> lister() = 0;

    enum class End {
        sent, ///< it was told to end
        gone, ///< it had ended already, even if another process has its number now
        refused
    };
    /// Tells exactly this process to end: it may clean up, or with `force` may not. Main thread.
    virtual End end(const ProcessKey& process, bool force) = 0;
    /// Whether this process, and no other of its number, still runs. Main thread.
    virtual bool isAlive(const ProcessKey& process) const = 0;
    /// With its arguments; empty where it is gone or not ours to see. Main thread.
    virtual QString commandLine(const ProcessKey& process) const = 0;

    /// The files below a folder that some process has open or works in, as far as they are ours to see. From any
    /// thread; some tens of milliseconds.
    virtual std::vector<QByteArray> openPaths(const QByteArray& below) const = 0;

    virtual qint32 ownPID() const = 0;
    /// The path with all links followed, as far as it exists. From any thread.
    virtual QString resolved(const QString& path) const = 0;
    /// Which process has this number now; nothing where none runs. Main thread.
    virtual std::optional<ProcessKey> key(qint32 pid) const = 0;
    /// The entry of the application that a process belongs to. From any thread; the first call may take tens of
    /// milliseconds.
    virtual std::optional<QString> application(qint32 pid) const = 0;
};

} // namespace kestro
