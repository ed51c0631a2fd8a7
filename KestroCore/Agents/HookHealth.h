#pragma once

#include "KestroCore/Agents/Agent.h"
#include "KestroCore/Support/Date.h"

#include <QByteArray>
#include <QString>
#include <optional>

/// Whether an agent's hooks are as they should be, and what came of trying one out. Pure functions, from any thread.
namespace kestro::HookHealth {

enum class HookState {
    none, ///< nothing of ours
    installed,
    edited, ///< something of ours, but not as we would write it
    unreadable, ///< not a JSON object
};

struct Hooks {
    HookState state = HookState::none;
    std::optional<QString> command; ///< the first one of ours, as it stands there

    bool operator==(const Hooks&) const = default;
};

/// Kestro's hooks in the content of the agent's configuration file; nothing stands for no file.
Hooks inFile(const std::optional<QByteArray>& data, Agent agent);

/// The event's name in a test. No agent has it, so it makes no session.
inline constexpr char testEvent[] = "KestroSelfTest";

/// The input that the agent would give its hook, for a test with the id `id`. `folder` is its working directory.
QByteArray testInput(Agent agent, const QString& id, const QString& folder);

enum class TestResult {
    answered,
    notInstalled,
    unreadable,
    noNetcat,
    noUnixSockets, ///< a netcat of another make
    socketGone,
    silent, ///< what could be tried works, and nothing arrived
};

/// The reason for a missing answer, from the error output of `nc -U -w1 SOCKET`. Unknown output, and none at all, mean
/// that it got through.
TestResult reasonFromProbe(const QByteArray& errors);

/// The result in one line for the user.
struct TestReport {
    TestResult result = TestResult::answered;
    double seconds = 0; ///< from the start of the command to the arrival
    bool edited = false; ///< the command was not as we would write it
    bool agentIsSilent = false; ///< the agent works and sends nothing
    QString file; ///< its configuration file, as shown to the user

    QString text() const;
    /// Nothing is wrong.
    bool isGood() const;
    /// Whether writing the hooks and opening the socket anew may help.
    bool isRepairable() const;
};

/// Whether Codex is at work without telling: its newest log changed at `log`, and its last event came at `heard`. Until
/// there is one, logs from before `since`, when we began to listen, prove nothing.
bool isSilent(std::optional<Date> log, std::optional<Date> heard, Date since);

} // namespace kestro::HookHealth
