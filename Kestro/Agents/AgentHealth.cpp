#include "Kestro/Agents/AgentHealth.h"

#include "Kestro/Platform/CommandRunner.h"
#include "Kestro/Platform/Log.h"
#include "Kestro/Platform/Platform.h"
#include "KestroCore/Agents/CodexLimitsReader.h"
#include "KestroCore/Agents/ConfigFile.h"
#include "KestroCore/Agents/HookInstaller.h"
#include "KestroCore/Agents/Session.h"
#include "KestroCore/Support/AtomicFile.h"
#include "KestroCore/Support/StorageError.h"

#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QUuid>
#include <algorithm>
#include <utility>

namespace kestro {

namespace {

using HookHealth::HookState;
using HookHealth::TestReport;
using HookHealth::TestResult;

/// How long an answer may take, and each step of looking for the reason when none came, in seconds.
constexpr double patience = 2;

Date changedAt(const QString& path)
{
    return Date::fromUnix(double(QFileInfo(path).lastModified().toMSecsSinceEpoch()) / 1000);
}

QString stateText(HookState state)
{
    switch (state) {
    case HookState::none:
        return QStringLiteral("No hook");
    case HookState::installed:
        return QStringLiteral("Hook installed");
    case HookState::edited:
        return QStringLiteral("Hook edited");
    case HookState::unreadable:
        return QStringLiteral("Configuration unreadable");
    }
    Q_UNREACHABLE();
}

} // namespace

AgentHealth::AgentHealth(const Platform& platform, QString home, QString socket)
    : m_loop(platform.loop)
    , m_commands(platform.commands)
    , m_log(platform.log)
    , m_home(std::move(home))
    , m_socket(std::move(socket))
    , m_since(platform.loop.now())
{
}

QString AgentHealth::file(Agent agent) const { return HookInstaller::configURL(agent, m_home); }

void AgentHealth::handleEvent(const AgentEvent& event, Date now)
{
    if (event.name != QLatin1String(HookHealth::testEvent)) {
        state(event.agent).lastHeard = now;
        Q_EMIT changed();
        return;
    }
    if (Test* test = running(event.agent, event.sessionID)) {
        test->seconds = now - test->startedAt;
        finishAnswered(event.agent);
    }
}

void AgentHealth::refresh()
{
    for (const Agent agent : allAgents)
        look(agent);
    lookAtSocket();
    Q_EMIT changed();
}

void AgentHealth::look(Agent agent)
{
    try {
        const auto contents = AtomicFile::read(QFile::encodeName(file(agent)), ConfigFile::maxSize);
        state(agent).hooks = HookHealth::inFile(contents ? std::optional(contents->bytes) : std::nullopt, agent);
    } catch (const StorageError&) {
        state(agent).hooks = { HookState::unreadable, std::nullopt };
    }
}

/// A file is removed when the socket is opened; a folder is not, since its content may be needed.
void AgentHealth::lookAtSocket()
{
    const QFileInfo place(m_socket);
    const QString shown = QString(m_socket).replace(m_home, QStringLiteral("~"));
    QString obstacle;
    const bool needed = std::ranges::any_of(allAgents, isWanted);
    if (needed && place.isDir())
        obstacle = QStringLiteral("A folder is in the socket's place: move %1 away, then press Repair.").arg(shown);
    else if (needed && place.isFile())
        obstacle = QStringLiteral("A file is in the socket's place, %1: press Repair.").arg(shown);
    if (std::exchange(m_obstacle, obstacle) != obstacle && !obstacle.isEmpty())
        m_log.write(QStringLiteral("Kestro: no agent can be heard: %1 is a %2, not a socket")
                        .arg(m_socket, place.isDir() ? QStringLiteral("folder") : QStringLiteral("file")));
}

void AgentHealth::test(const QString& agent)
{
    const auto known = agentFromRawValue(agent.toLatin1());
    if (!known || !isWanted(*known) || state(*known).test)
        return;
    look(*known);
    start(*known);
    Q_EMIT changed();
}

void AgentHealth::start(Agent agent)
{
    const auto& [hookState, command] = state(agent).hooks;
    const QString id = QUuid::createUuid().toString(QUuid::WithoutBraces);
    Test& test = state(agent).test.emplace(id, m_loop.now());
    if (!command) {
        finish(agent, hookState == HookState::unreadable ? TestResult::unreadable : TestResult::notInstalled);
        return;
    }
    if (agent == Agent::codex)
        seekNewestLog(id);
    const auto noAnswer = [health = QPointer(this), agent, id] {
        if (health)
            health->examine(agent, id);
    };
    test.limit = m_loop.after(patience, noAnswer);
    m_commands.run({ QStringLiteral("sh"), QStringLiteral("-c"), *command }, HookHealth::testInput(agent, id, m_home),
        patience, [noAnswer](const CommandResult&) { noAnswer(); });
}

void AgentHealth::seekNewestLog(const QString& id)
{
    state(Agent::codex).test->logsAwaited = true;
    m_queue.async([&loop = m_loop, health = QPointer(this), id, folder = CodexLimitsReader::sessionsDir(m_home)] {
        std::optional<Date> newest;
        for (const QByteArray& log : CodexLimitsReader::newestLogs(folder, 1))
            newest = changedAt(QFile::decodeName(log));
        loop.post([health, id, newest] {
            Test* test = health ? health->running(Agent::codex, id) : nullptr;
            if (!test)
                return;
            test->logsAwaited = false;
            test->newestLog = newest;
            if (test->seconds)
                health->finishAnswered(Agent::codex);
        });
    });
}

AgentHealth::Test* AgentHealth::running(Agent agent, const QString& id)
{
    auto& test = state(agent).test;
    return test && test->id == id ? &*test : nullptr;
}

/// The hooks discard what they have to say. So it is asked again, step by step; an answer that comes in the meantime
/// still counts.
void AgentHealth::examine(Agent agent, const QString& id)
{
    Test* test = running(agent, id);
    if (!test || test->examining || test->seconds)
        return;
    test->examining = true;
    test->limit.cancel();
    const QString netcat = QStringLiteral("nc");
    if (!m_commands.exists(netcat)) {
        finish(agent, TestResult::noNetcat);
        return;
    }
    m_commands.run({ netcat, QStringLiteral("-U"), QStringLiteral("-w1"), m_socket }, {}, patience,
        [health = QPointer(this), agent, id = test->id](const CommandResult& result) {
            const Test* still = health ? health->running(agent, id) : nullptr;
            if (!still || still->seconds)
                return;
            health->lookAtSocket();
            health->finish(agent, result.started ? HookHealth::reasonFromProbe(result.errors) : TestResult::noNetcat);
        });
}

void AgentHealth::finishAnswered(Agent agent)
{
    if (!state(agent).test->logsAwaited)
        finish(agent, TestResult::answered);
}

void AgentHealth::finish(Agent agent, TestResult result)
{
    State& own = state(agent);
    const Test& test = *own.test;
    // A hook that was written later than we began to listen could not have told us of what was before it.
    const Date since = std::max(m_since, changedAt(file(agent)));
    const QString shown = file(agent).replace(m_home, QStringLiteral("~"));
    own.report = TestReport{ result, test.seconds.value_or(0), own.hooks.state == HookState::edited,
        agent == Agent::codex && HookHealth::isSilent(test.newestLog, own.lastHeard, since), shown };
    own.test.reset();
    Q_EMIT changed();
}

void AgentHealth::repair()
{
    repairAll([this] {
        refresh();
        for (const Agent agent : allAgents) {
            if (state(agent).report)
                test(rawValue(agent));
        }
    });
}

bool AgentHealth::isRepairable() const
{
    return std::ranges::any_of(allAgents, [this](Agent agent) {
        const State& own = state(agent);
        const bool hookIsOff = own.hooks.state == HookState::none || own.hooks.state == HookState::edited;
        return isWanted(agent) && (hookIsOff || !m_obstacle.isEmpty() || (own.report && own.report->isRepairable()));
    });
}

QVariantMap AgentHealth::rows() const
{
    QVariantMap all;
    for (const Agent agent : allAgents)
        all[rawValue(agent)] = row(agent);
    return all;
}

QVariantMap AgentHealth::row(Agent agent) const
{
    const State& own = state(agent);
    const bool on = isWanted(agent);
    QString caption = QStringLiteral("Off");
    QString result;
    if (on) {
        const QString last = own.lastHeard ? QStringLiteral("Last event %1").arg(agoText(m_loop.now() - *own.lastHeard))
                                           : QStringLiteral("No event yet");
        caption = stateText(own.hooks.state) + QStringLiteral(" · ") + last;
        if (own.test)
            result = QStringLiteral("Testing…");
        else if (!m_obstacle.isEmpty())
            result = m_obstacle;
        else if (own.report)
            result = own.report->text();
    }
    const bool failed = on && !own.test && (!m_obstacle.isEmpty() || (own.report && !own.report->isGood()));
    return { { QStringLiteral("on"), on }, { QStringLiteral("state"), caption }, { QStringLiteral("result"), result },
        { QStringLiteral("failed"), failed }, { QStringLiteral("testing"), own.test.has_value() } };
}

} // namespace kestro
