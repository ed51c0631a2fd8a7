#include "KestroCore/Agents/HookHealth.h"

#include "KestroCore/Agents/HookInstaller.h"
#include "KestroCore/Agents/SessionStore.h"

#include <gtest/gtest.h>

namespace kestro {
namespace {

using namespace HookHealth;

TEST(HookHealth, TellsWhatStandsInTheFile)
{
    const QByteArray ours = HookInstaller::install(std::nullopt, Agent::claude, {});
    const QByteArray cursors = HookInstaller::install(std::nullopt, Agent::cursor, {});
    const QString command = HookInstaller::command(Agent::claude);
    const auto changed = [&](const char* from, const char* to) { return QByteArray(ours).replace(from, to); };
    const QString slower = QString(command).replace(u"-w1"_qs, u"-w9"_qs);
    struct Case {
        const char* name;
        std::optional<QByteArray> data;
        Hooks hooks;
    };
    const Case cases[] = {
        { "no file", std::nullopt, {} },
        { "an empty file", "", {} },
        { "foreign hooks alone", R"({"hooks":{"Stop":[{"hooks":[{"command":"beep"}]}]}})", {} },
        { "the marker elsewhere", R"({"note":"# kestro-hook"})", {} },
        { "hooks of the wrong type", R"({"hooks":["# kestro-hook"]})", {} },
        { "as written", ours, { HookState::installed, command } },
        { "spelt otherwise", QByteArray(ours).replace("\n", "").replace("  ", ""), { HookState::installed, command } },
        { "with others",
            HookInstaller::install(R"({"hooks":{"Stop":[{"command":"beep"}]},"n":1e3})", Agent::claude, {}),
            { HookState::installed, command } },
        { "with a command that was changed", changed("-w1", "-w9"), { HookState::edited, slower } },
        { "with an event less", changed("\"Stop\"", "\"Stopped\""), { HookState::edited, command } },
        { "twice", changed("\"Stop\": [", "\"Stop\": [{\"command\": \"y # kestro-hook\"},"),
            { HookState::edited, command } },
        { "with a time limit", changed("\"type\": \"command\"", "\"type\": \"command\", \"timeout\": 5"),
            { HookState::edited, command } },
        { "with the earlier name's",
            R"({"hooks":{"Stop":[{"hooks":[{"command":"a"},{"command":"x # ombrel-hook"}]}]}})",
            { HookState::edited, QStringLiteral("x # ombrel-hook") } },
        { "with those of another agent", cursors, { HookState::edited, HookInstaller::command(Agent::cursor) } },
        { "and no room for more", R"({"hooks":{"Stop":[{"command":"x # kestro-hook"}],"SessionEnd":null}})",
            { HookState::edited, QStringLiteral("x # kestro-hook") } },
        { "broken", "{ # kestro-hook", { HookState::unreadable, {} } },
        { "an array", "[]", { HookState::unreadable, {} } },
    };
    for (const auto& [name, data, hooks] : cases) {
        SCOPED_TRACE(name);
        const Hooks found = inFile(data, Agent::claude);
        EXPECT_EQ(found.state, hooks.state);
        EXPECT_EQ(found.command.value_or(QString()).toStdString(), hooks.command.value_or(QString()).toStdString());
    }
    for (const Agent agent : allAgents)
        EXPECT_EQ(inFile(HookInstaller::install("{}", agent, {}), agent).state, HookState::installed);
}

TEST(HookHealth, ATestIsHeardAndMakesNoSession)
{
    for (const Agent agent : allAgents) {
        const QByteArray message =
            "agent=" + rawValue(agent).toLatin1() + '\n' + testInput(agent, u"id-1"_qs, u"/home/ü \"u\""_qs);
        const auto event = AgentEvent::parse(message);
        ASSERT_TRUE(event) << message.toStdString();
        const AgentEvent expected{ agent, u"id-1"_qs, u"/home/ü \"u\""_qs, QString::fromLatin1(testEvent), false };
        EXPECT_EQ(*event, expected);
        SessionStore store;
        store.apply(*event, {});
        EXPECT_TRUE(store.sessions.empty());
    }
}

TEST(HookHealth, ReadsTheWordsOfEveryNetcat)
{
    const std::pair<const char*, TestResult> cases[] = {
        { "nc: unix connect failed: No such file or directory\nnc: /h/agents.sock: No such file or directory\n",
            TestResult::socketGone },
        { "nc: unix connect failed: Connection refused\n", TestResult::socketGone },
        { "Ncat: Connection refused.\n", TestResult::socketGone },
        { "nc: invalid option -- 'U'\nnc -h for help\n", TestResult::noUnixSockets },
        { "nc: invalid option -- 'U'\nBusyBox v1.35.0 multi-call binary.\n\nUsage: nc [OPTIONS] HOST PORT\n",
            TestResult::noUnixSockets },
        { "nc: unrecognized option '-U'\n", TestResult::noUnixSockets },
        { "", TestResult::silent },
        { "nc: unix connect failed: Resource temporarily unavailable\n", TestResult::silent },
    };
    for (const auto& [words, result] : cases)
        EXPECT_EQ(reasonFromProbe(words), result) << words;
}

} // namespace
} // namespace kestro
