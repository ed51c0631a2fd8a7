#pragma once

#include "Kestro/Platform/MainLoop.h"
#include "KestroCore/Agents/AgentEvent.h"
#include "KestroCore/Agents/HookHealth.h"
#include "KestroCore/Support/Date.h"
#include "KestroCore/Support/SerialQueue.h"

#include <QObject>
#include <QVariantMap>
#include <array>
#include <functional>
#include <optional>

namespace kestro {

class CommandRunner;
class Log;
struct CommandResult;
struct Platform;

/// Whether each agent's hooks are in place and reach us: what the Agents pane shows of it, the test that the user can
/// run, and the repair. Main thread.
class AgentHealth final : public QObject {
    Q_OBJECT
    /// A map for each agent, by its word: "on", "state" (what a caption says of the hooks and the last event), "result"
    /// (the line of the last test, or empty), "failed" (whether that line tells of a fault), "testing". The ages are
    /// those of the moment of reading.
    Q_PROPERTY(QVariantMap rows READ rows NOTIFY changed)
    Q_PROPERTY(bool repairable READ isRepairable NOTIFY changed)
public:
    /// `home` is the user's home folder, `socket` the path of the agents' socket. The ports must outlive it.
    AgentHealth(const Platform& platform, QString home, QString socket);

    /// Every event that arrives comes here, also one that makes no session.
    void handleEvent(const AgentEvent& event, Date now);

    /// Looks at the files anew, and at the time.
    Q_INVOKABLE void refresh();
    /// Runs the command that stands in the file of `agent`, given by its word. Nothing while a test of it runs, or
    /// while it is switched off.
    Q_INVOKABLE void test(const QString& agent);
    /// Has all repaired, looks again, and tests again what was tested.
    Q_INVOKABLE void repair();

    QVariantMap rows() const;
    bool isRepairable() const;

    /// Puts the hooks into the files, opens the socket anew, then calls `done`; bound by the feature.
    std::function<void(std::function<void()> done)> repairAll = [](const auto& done) { done(); };
    /// Whether the user wants to hear of this agent; bound by the model.
    std::function<bool(Agent)> isWanted = [](Agent) { return true; };

Q_SIGNALS:
    void changed();

private:
    struct Test {
        Test(QString ownId, Date start)
            : id(std::move(ownId))
            , startedAt(start)
        {
        }

        QString id; ///< by which its message is known
        Date startedAt;
        bool examining = false; ///< no answer came in time, and the reason is looked for
        bool logsAwaited = false;
        std::optional<Date> newestLog;
        std::optional<double> seconds; ///< to the answer
        WorkItem limit;
    };
    struct State {
        HookHealth::Hooks hooks;
        std::optional<Date> lastHeard;
        std::optional<HookHealth::TestReport> report;
        std::optional<Test> test;
    };

    State& state(Agent agent) { return m_states[std::size_t(agent)]; }
    const State& state(Agent agent) const { return m_states[std::size_t(agent)]; }
    QString file(Agent agent) const;
    void look(Agent agent);
    void lookAtSocket();
    void start(Agent agent);
    void seekNewestLog(const QString& id);
    /// The test of this agent, while it is still the one known by `id`.
    Test* running(Agent agent, const QString& id);
    void examine(Agent agent, const QString& id);
    void finishAnswered(Agent agent);
    void finish(Agent agent, HookHealth::TestResult result);
    QVariantMap row(Agent agent) const;

    MainLoop& m_loop;
    CommandRunner& m_commands;
    Log& m_log;
    QString m_home;
    QString m_socket;
    /// The sentence about a file or folder in the socket's place; empty where there is none.
    QString m_obstacle;
    Date m_since; ///< when we began to listen
    std::array<State, allAgents.size()> m_states;
    SerialQueue m_queue{ "kestro.health" };
};

} // namespace kestro
