#pragma once

#include "KestroCore/Agents/Agent.h"
#include "KestroCore/Support/SerialQueue.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <array>
#include <functional>

namespace kestro {

class MainLoop;

/// Writes what Kestro needs into the agents' configuration files: hooks, and Claude Code's status line. One queue for
/// all, since two changes may concern one file, and since the disk is waited for after each. Main thread.
class AgentFiles final : public QObject {
    Q_OBJECT
public:
    /// Failures, a line each; on the main thread.
    using Done = std::function<void(const QStringList& errors)>;

    /// `home` is the user's home folder. `loop` must outlive it.
    AgentFiles(MainLoop& loop, QString home);

    const QString& home() const { return m_home; }

    /// Puts each agent's hook into its file where `wanted` says so, and takes it out elsewhere. `done` hears of the
    /// latest call alone.
    void applyHooks(const std::array<bool, allAgents.size()>& wanted, Done done);
    /// The same for the status line.
    void applyStatusLine(bool wanted, Done done);
    /// Runs `done` on the main thread when everything that was asked for before has been written.
    void afterwards(std::function<void()> done);

    /// Waits until everything has been written, at the end of the process, for a limited time.
    void finish();

private:
    using Write = std::function<void()>; ///< throws a StorageError

    void run(std::vector<Write> writes, quint64& latest, Done done);

    MainLoop& m_loop;
    QString m_home;
    quint64 m_latestHooks = 0;
    quint64 m_latestStatusLine = 0;
    SerialQueue m_queue{ "kestro.agent-files" };
};

} // namespace kestro
