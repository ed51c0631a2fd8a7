#include "KestroCore/Agents/HookHealth.h"

#include "KestroCore/Agents/HookInstaller.h"
#include "KestroCore/Agents/HookInstallerError.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <nlohmann/json.hpp>

namespace kestro::HookHealth {

using nlohmann::json;

namespace {

/// A file that cannot take our hooks at all has not got them as they should be either.
bool isAsWritten(const std::optional<QByteArray>& data, Agent agent)
{
    try {
        return HookInstaller::isInstalled(data, agent, {});
    } catch (const HookInstallerError&) {
        return false;
    }
}

} // namespace

Hooks inFile(const std::optional<QByteArray>& data, Agent agent)
{
    try {
        const QStringList commands = HookInstaller::commands(data, {});
        if (commands.isEmpty())
            return {};
        return { isAsWritten(data, agent) ? HookState::installed : HookState::edited, commands.first() };
    } catch (const HookInstallerError&) {
        return { HookState::unreadable, std::nullopt };
    }
}

QByteArray testInput(Agent agent, const QString& id, const QString& folder)
{
    const std::string session = id.toStdString();
    const std::string place = folder.toStdString();
    json input{ { "hook_event_name", testEvent } };
    if (agent == Agent::cursor) {
        input["conversation_id"] = session;
        input["generation_id"] = session;
        input["workspace_roots"] = json::array({ place });
    } else {
        input["session_id"] = session;
        input["transcript_path"] = "";
        input["cwd"] = place;
    }
    return QByteArray::fromStdString(input.dump(-1, ' ', false, json::error_handler_t::replace));
}

TestResult reasonFromProbe(const QByteArray& errors)
{
    // OpenBSD's and nmap's tell the system's words. The traditional one and busybox's know no -U.
    static constexpr std::array gone{ "no such file", "refused" };
    static constexpr std::array noOption{ "invalid option", "unrecognized option", "unknown option", "usage" };
    const QByteArray words = errors.toLower();
    const auto isThere = [&](const char* text) { return words.contains(text); };
    if (std::ranges::any_of(gone, isThere))
        return TestResult::socketGone;
    return std::ranges::any_of(noOption, isThere) ? TestResult::noUnixSockets : TestResult::silent;
}

QString TestReport::text() const
{
    switch (result) {
    case TestResult::answered: {
        const auto answer = QStringLiteral("Answered in %1 ms").arg(std::max(1.0, std::round(seconds * 1000)));
        if (edited)
            return answer + QStringLiteral(", but the command was edited.");
        return answer
            + (agentIsSilent
                    ? QStringLiteral(", but Codex is active and sends nothing: trust the hook when Codex asks.")
                    : QStringLiteral("."));
    }
    case TestResult::notInstalled:
        return QStringLiteral("Not installed.");
    case TestResult::unreadable:
        return QStringLiteral("%1 cannot be read as JSON.").arg(file);
    case TestResult::noNetcat:
        return QStringLiteral("nc is missing: install netcat-openbsd.");
    case TestResult::noUnixSockets:
        return QStringLiteral("nc cannot reach sockets (-U): install netcat-openbsd.");
    case TestResult::socketGone:
        return QStringLiteral("The socket is gone: nothing listens.");
    case TestResult::silent:
        return edited ? QStringLiteral("The command was edited, and nothing arrives.")
                      : QStringLiteral("The socket does not answer.");
    }
    Q_UNREACHABLE();
}

bool TestReport::isGood() const { return result == TestResult::answered && !edited && !agentIsSilent; }

bool TestReport::isRepairable() const { return result == TestResult::socketGone || result == TestResult::silent; }

bool isSilent(std::optional<Date> log, std::optional<Date> heard, Date since)
{
    // Codex writes its log before it runs a hook and after.
    constexpr double patience = 60;
    return log && *log > (heard ? *heard + patience : since);
}

} // namespace kestro::HookHealth
