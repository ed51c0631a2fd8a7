#include "Kestro/Agents/AgentHealth.h"

#include "KestroCore/Agents/HookInstaller.h"
#include "Tests/Support/Fakes.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace kestro {

namespace {

using test::FakeCommands;
using test::FakePlatform;

class AgentHealthTest : public testing::Test {
protected:
    AgentHealthTest()
    {
        health.isWanted = [this](Agent agent) { return !off || *off != agent; };
        for (const Agent agent : allAgents)
            HookInstaller::apply(true, agent, file(agent));
        setTime(file(Agent::codex), -100); // the clock of the test stands in the past of the disk's
        health.refresh();
    }

    QString file(Agent agent) const { return HookInstaller::configURL(agent, home.path()); }
    void write(const QString& path, const QByteArray& bytes) const
    {
        QDir(home.path()).mkpath(QFileInfo(path).path());
        QFile target(path);
        ASSERT_TRUE(target.open(QFile::WriteOnly) && target.write(bytes) == bytes.size());
    }
    void edit(Agent agent, const QByteArray& from, const QByteArray& to) const
    {
        QFile source(file(agent));
        ASSERT_TRUE(source.open(QFile::ReadOnly));
        write(file(agent), source.readAll().replace(from, to));
    }
    /// That of a file, `seconds` from the test's now.
    void setTime(const QString& path, double seconds) const
    {
        const double unixSeconds = platform.loop.now().seconds + Date::unixEpochOffset + seconds;
        QFile target(path);
        ASSERT_TRUE(target.open(QFile::ReadWrite));
        ASSERT_TRUE(target.setFileTime(
            QDateTime::fromMSecsSinceEpoch(qint64(unixSeconds * 1000)), QFile::FileModificationTime));
    }

    QString of(Agent agent, const char* fact) const
    {
        return health.rows()[rawValue(agent)].toMap()[QLatin1String(fact)].toString();
    }
    QString stateOf(Agent agent) const { return of(agent, "state"); }
    QString resultOf(Agent agent) const { return of(agent, "result"); }

    /// The message of the oldest command that runs, a test of `agent`, arrives as one of `named`.
    void arrive(Agent agent, std::optional<Agent> named = {})
    {
        const QByteArray input = platform.commands.running.front().input;
        auto event = AgentEvent::parse("agent=" + rawValue(agent).toLatin1() + '\n' + input);
        ASSERT_TRUE(event);
        event->agent = named.value_or(agent);
        health.handleEvent(*event, platform.loop.now());
    }
    void hear(Agent agent, const char* name = "Stop")
    {
        health.handleEvent({ agent, u"s"_qs, {}, QString::fromLatin1(name), false }, platform.loop.now());
    }
    static CommandResult failed(const char* errors) { return { true, 1, {}, errors }; }

    QTemporaryDir home;
    FakePlatform platform;
    AgentHealth health{ platform.ports(), home.path(), u"/s/agents.sock"_qs };
    std::optional<Agent> off;
};

TEST_F(AgentHealthTest, tellsOfHooksAndEvents)
{
    EXPECT_EQ(stateOf(Agent::claude), u"Hook installed · No event yet"_qs);
    QSignalSpy changed(&health, &AgentHealth::changed);
    hear(Agent::claude);
    EXPECT_EQ(changed.count(), 1);
    platform.loop.advance(301);
    EXPECT_EQ(stateOf(Agent::claude), u"Hook installed · Last event 5m ago"_qs);
    EXPECT_EQ(stateOf(Agent::codex), u"Hook installed · No event yet"_qs);
    EXPECT_EQ(platform.loop.waiting(), 0) << "nothing ticks by itself";

    edit(Agent::claude, "-w1", "-w9");
    write(file(Agent::codex), "{");
    off = Agent::cursor;
    health.refresh();
    EXPECT_EQ(stateOf(Agent::claude), u"Hook edited · Last event 5m ago"_qs);
    EXPECT_EQ(stateOf(Agent::codex), u"Configuration unreadable · No event yet"_qs);
    EXPECT_EQ(stateOf(Agent::cursor), u"Off"_qs);
    health.test(u"cursor"_qs);
    health.test(u"nobody"_qs);
    EXPECT_TRUE(platform.commands.running.empty());
}

TEST_F(AgentHealthTest, runsTheCommandThatStandsInTheFile)
{
    edit(Agent::cursor, "-w1", "-w9");
    health.test(u"cursor"_qs);
    health.test(u"cursor"_qs);
    ASSERT_EQ(platform.commands.running.size(), 1U) << "one at a time";
    const QString edited = HookInstaller::command(Agent::cursor).replace(u"-w1"_qs, u"-w9"_qs);
    EXPECT_EQ(platform.commands.running.front().words, QStringList({ u"sh"_qs, u"-c"_qs, edited }));
    EXPECT_EQ(resultOf(Agent::cursor), u"Testing…"_qs);
    hear(Agent::cursor);
    hear(Agent::cursor, HookHealth::testEvent); // of another test
    EXPECT_EQ(resultOf(Agent::cursor), u"Testing…"_qs);
    arrive(Agent::cursor, Agent::codex);
    EXPECT_EQ(resultOf(Agent::cursor), u"Testing…"_qs) << "a command that names another agent";
    platform.loop.advance(0.025);
    arrive(Agent::cursor);
    EXPECT_EQ(resultOf(Agent::cursor), u"Answered in 25 ms, but the command was edited."_qs);
    platform.commands.answer({ true, 0, {}, {} });
    EXPECT_TRUE(platform.commands.running.empty()) << "nothing is looked for after an answer";
    EXPECT_EQ(platform.loop.waiting(), 0);
}

TEST_F(AgentHealthTest, saysWhyNoAnswerCame)
{
    struct Case {
        const char* name;
        bool ends; ///< the command, before its time is up
        bool hasNetcat;
        CommandResult probe;
        const char* line;
        bool repairable;
    };
    const Case cases[] = {
        { "no netcat", true, false, {}, "nc is missing: install netcat-openbsd.", false },
        { "no netcat in the end", true, true, {}, "nc is missing: install netcat-openbsd.", false },
        { "another netcat", true, true, failed("nc: invalid option -- 'U'\n"),
            "nc cannot reach sockets (-U): install netcat-openbsd.", false },
        { "no socket", true, true, failed("nc: unix connect failed: No such file or directory\n"),
            "The socket is gone: nothing listens.", true },
        { "a dead socket", true, true, failed("nc: unix connect failed: Connection refused\n"),
            "The socket is gone: nothing listens.", true },
        { "a hung socket", false, true, { true, std::nullopt, {}, {} }, "The socket does not answer.", true },
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        platform.commands.missing = each.hasNetcat ? QStringList() : QStringList(u"nc"_qs);
        health.test(u"claude"_qs);
        if (!each.ends)
            platform.loop.advance(2);
        platform.commands.answer({ true, 0, {}, {} });
        if (each.hasNetcat) {
            ASSERT_EQ(platform.commands.running.size(), 1U);
            EXPECT_EQ(platform.commands.running.front().words,
                QStringList({ u"nc"_qs, u"-U"_qs, u"-w1"_qs, u"/s/agents.sock"_qs }));
            platform.commands.answer(each.probe);
        }
        EXPECT_EQ(resultOf(Agent::claude).toStdString(), each.line);
        EXPECT_EQ(of(Agent::claude, "failed"), u"true"_qs);
        EXPECT_EQ(health.isRepairable(), each.repairable);
        EXPECT_EQ(platform.loop.waiting(), 0);
        EXPECT_TRUE(platform.commands.running.empty());
    }
    HookInstaller::apply(false, Agent::claude, file(Agent::claude));
    health.test(u"claude"_qs);
    EXPECT_EQ(resultOf(Agent::claude), u"Not installed."_qs);
    write(file(Agent::claude), "[]");
    health.test(u"claude"_qs);
    EXPECT_EQ(resultOf(Agent::claude), u"~/.claude/settings.json cannot be read as JSON."_qs);
    EXPECT_FALSE(health.isRepairable());
}

TEST_F(AgentHealthTest, anAnswerCountsWhileTheReasonIsLookedFor)
{
    health.test(u"claude"_qs);
    const QByteArray input = platform.commands.running.front().input;
    platform.commands.answer({ true, 0, {}, {} });
    platform.loop.advance(0.5);
    health.handleEvent(*AgentEvent::parse("agent=claude\n" + input), platform.loop.now());
    EXPECT_EQ(resultOf(Agent::claude), u"Answered in 500 ms."_qs);
    platform.commands.answer(failed("refused"));
    EXPECT_EQ(resultOf(Agent::claude), u"Answered in 500 ms."_qs);
}

TEST_F(AgentHealthTest, findsACodexThatWorksAndSendsNothing)
{
    const QString answered = QStringLiteral("Answered in 1 ms.");
    const QString silent = QStringLiteral("Answered in 1 ms, but Codex is active and sends nothing: trust the hook "
                                          "when Codex asks.");
    const QString log = home.path() + QStringLiteral("/.codex/sessions/2026/05/09/rollout-1.jsonl");
    const auto expect = [&](const QString& line) {
        health.test(u"codex"_qs);
        arrive(Agent::codex);
        platform.commands.answer({ true, 0, {}, {} });
        // The logs are looked at on a thread of its own.
        EXPECT_TRUE(QTest::qWaitFor([&] {
            platform.loop.turn();
            return resultOf(Agent::codex) != QStringLiteral("Testing…");
        }));
        EXPECT_EQ(resultOf(Agent::codex), line);
    };
    expect(answered);
    write(log, "{}");
    setTime(log, -1);
    expect(answered);
    setTime(log, 1);
    expect(silent);
    setTime(file(Agent::codex), 2); // the hook came later than the log
    expect(answered);
    setTime(file(Agent::codex), -100);
    hear(Agent::codex);
    setTime(log, 59);
    expect(answered);
    setTime(log, 61);
    expect(silent);
}

TEST_F(AgentHealthTest, repairsAndLooksAgain)
{
    health.repairAll = [this](const std::function<void()>& done) {
        HookInstaller::apply(true, Agent::claude, file(Agent::claude));
        done();
    };
    EXPECT_FALSE(health.isRepairable());
    edit(Agent::claude, "-w1", "-w9");
    health.refresh();
    EXPECT_TRUE(health.isRepairable());
    off = Agent::claude;
    EXPECT_FALSE(health.isRepairable()) << "what is switched off is not missed";
    off.reset();

    health.test(u"claude"_qs);
    arrive(Agent::claude);
    platform.commands.answer({ true, 0, {}, {} });
    health.repair();
    EXPECT_EQ(stateOf(Agent::claude), u"Hook installed · No event yet"_qs);
    ASSERT_EQ(platform.commands.running.size(), 1U) << "what was tested is tested again";
    arrive(Agent::claude);
    EXPECT_EQ(resultOf(Agent::claude), u"Answered in 1 ms."_qs);
    EXPECT_FALSE(health.isRepairable());
}

TEST_F(AgentHealthTest, tellsWhatIsInTheSocketsPlace)
{
    const QString place = home.path() + u"/data/agents.sock"_qs;
    AgentHealth own(platform.ports(), home.path(), place);
    const auto result = [&] { return own.rows()[u"claude"_qs].toMap()[u"result"_qs].toString(); };
    const struct {
        const char* name;
        std::function<bool()> put;
        QString line; ///< empty: nothing is wrong
    } cases[] = {
        { "nothing", [] { return true; }, {} },
        { "a folder", [&] { return QDir().mkpath(place); },
            u"A folder is in the socket's place: move ~/data/agents.sock away, then press Repair."_qs },
        { "a file", [&] { return QDir().rmdir(place) && QFile(place).open(QFile::WriteOnly); },
            u"A file is in the socket's place, ~/data/agents.sock: press Repair."_qs },
        { "nothing again", [&] { return QFile::remove(place); }, {} },
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.name);
        platform.log.lines.clear();
        ASSERT_TRUE(each.put());
        own.refresh();
        own.refresh();
        EXPECT_EQ(result(), each.line);
        EXPECT_EQ(own.isRepairable(), !each.line.isEmpty());
        EXPECT_EQ(own.rows()[u"claude"_qs].toMap()[u"failed"_qs].toBool(), !each.line.isEmpty());
        EXPECT_EQ(platform.log.lines.size(), each.line.isEmpty() ? 0 : 1) << "told once";
        EXPECT_TRUE(platform.log.lines.isEmpty() || platform.log.lines.first().contains(place));
    }
    own.isWanted = [](Agent) { return false; };
    ASSERT_TRUE(QDir().mkpath(place));
    own.refresh();
    EXPECT_EQ(platform.log.lines, QStringList()) << "nobody needs the socket";
}

TEST_F(AgentHealthTest, aTestTellsWhatIsInTheSocketsPlace)
{
    const QString place = home.path() + u"/agents.sock"_qs;
    AgentHealth own(platform.ports(), home.path(), place);
    own.test(u"claude"_qs);
    ASSERT_TRUE(QDir().mkpath(place));
    platform.commands.answer({ true, 0, {}, {} });
    platform.commands.answer(failed("nc: unix connect failed: Connection refused\n"));
    EXPECT_EQ(own.rows()[u"claude"_qs].toMap()[u"result"_qs].toString(),
        u"A folder is in the socket's place: move ~/agents.sock away, then press Repair."_qs);
}

TEST_F(AgentHealthTest, goesWhileATestRuns)
{
    auto brief = std::make_unique<AgentHealth>(platform.ports(), home.path(), u"/s"_qs);
    brief->test(u"codex"_qs);
    brief.reset();
    platform.commands.answer({ true, 0, {}, {} });
    platform.loop.advance(5);
    EXPECT_TRUE(platform.commands.running.empty());
}

} // namespace

} // namespace kestro
