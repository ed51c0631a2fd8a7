#include "Helpers.h"
#include "Platforms/Linux/System/ProcPeerInspector.h"
#include "Platforms/Linux/System/ProcProcess.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <csignal>
#include <sys/socket.h>
#include <sys/wait.h>

namespace kestro {
namespace {

using namespace test;
using testing::Contains;
using testing::ElementsAre;

/// A stat of the form that the kernel writes.
QByteArray statText(qint64 pid, const QByteArray& name, qint64 parent, quint64 startTime)
{
    return QByteArray::number(pid) + " (" + name + ") S " + QByteArray::number(parent)
        + " 1 1 0 -1 4194304 1 1 0 0 1 1 1 1 20 0 1 0 " + QByteArray::number(startTime) + " 1 1 18446744073709551615\n";
}

TEST(ProcStat, IsReadBehindTheLastParenthesis)
{
    const QByteArray rest = " S 7 1 1 0 -1 0 1 1 0 0 1 1 1 1 20 0 1 0 4711 1 1\n";
    const std::pair<QByteArray, std::optional<proc::Stat>> cases[] = {
        { "9 (claude)" + rest, proc::Stat{ "claude", 'S', 7, 4711 } },
        { "9 (a) S 1 (\nb ) )" + rest, proc::Stat{ "a) S 1 (\nb ) ", 'S', 7, 4711 } },
        { "9 ()" + rest, proc::Stat{ "", 'S', 7, 4711 } },
        { "9 (claude) S 7 1 1", std::nullopt },
        { "9 (claude", std::nullopt },
        { "9 claude)" + rest, std::nullopt },
        { "9 (x) S x 1 1 0 -1 0 1 1 0 0 1 1 1 1 20 0 1 0 4711 1", std::nullopt },
        { "", std::nullopt },
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(proc::Stat::parse(text), expected) << text.toStdString();
}

class ProcTree : public testing::Test {
protected:
    void add(qint64 pid, qint64 parent, quint64 startTime, const QByteArray& name = "sh",
        const QByteArray& command = {}, const QByteArray& environment = {})
    {
        const QString folder = root.filePath(QString::number(pid));
        QDir().mkpath(folder);
        writeFile(folder + u"/stat"_s, statText(pid, name, parent, startTime));
        writeFile(folder + u"/cmdline"_s, command);
        writeFile(folder + u"/environ"_s, environment);
    }
    std::vector<qint64> chainOf(qint64 pid) const { return chainOf(pid, ProcPeerInspector(root.path())); }
    static std::vector<qint64> chainOf(qint64 pid, const ProcPeerInspector& inspector)
    {
        std::vector<qint64> pids;
        for (const ProcessInfo& each : inspector.process(pid).ancestors)
            pids.push_back(each.id.pid);
        return pids;
    }

    QTemporaryDir root;
};

TEST_F(ProcTree, TheWalkEndsWhereTheParentsDo)
{
    add(1, 0, 0);
    add(10, 1, 10);
    add(11, 10, 20);
    add(12, 11, 30);
    add(20, 21, 5); // each the other's parent
    add(21, 20, 5);
    add(30, 31, 5); // 31 has come later than its child: the number's second owner
    add(31, 1, 6);
    add(40, 41, 5); // has ended
    add(50, 0, 5); // started by the kernel
    add(60, 1, 5);
    writeFile(root.filePath(u"60/stat"_s), "60 (cut) S 1");
    EXPECT_THAT(chainOf(12), ElementsAre(12, 11, 10));
    EXPECT_EQ(chainOf(20).size(), 64U);
    EXPECT_THAT(chainOf(30), ElementsAre(30));
    EXPECT_THAT(chainOf(40), ElementsAre(40));
    EXPECT_THAT(chainOf(50), ElementsAre(50));
    EXPECT_THAT(chainOf(60), testing::IsEmpty());
    EXPECT_THAT(chainOf(99), testing::IsEmpty());
    EXPECT_TRUE(ProcPeerInspector(u"/nowhere"_s).process(10).ancestors.empty());
}

TEST_F(ProcTree, NamesAndThreeVariablesAreRead)
{
    const QByteArray zero(1, '\0');
    add(10, 1, 10, "node", "/usr/bin/node" + zero + "/opt/x y/claude" + zero + "secret" + zero,
        "HOME=/x" + zero + "WINDOWID=77" + zero + "TMUXX=no" + zero + "TMUX=/tmp/t,1,0" + zero + "TMUX_PANE=%3");
    add(11, 10, 20, "sh", "sh" + zero + "-c" + zero + QByteArray(200'000, 'x'), "WINDOWIDX=1" + zero);
    QFile::link(u"/opt/node (deleted)"_s, root.filePath(u"10/exe"_s));
    const HookOrigin origin = ProcPeerInspector(root.path()).process(11);
    ASSERT_EQ(origin.ancestors.size(), 2U);
    EXPECT_EQ(origin.ancestors[0], (ProcessInfo{ { 11, 20 }, { "sh", "sh", "-c" } }));
    EXPECT_EQ(origin.ancestors[1], (ProcessInfo{ { 10, 10 }, { "node", "node", "node", "claude" } }));
    EXPECT_EQ(origin.windowID, "77") << "of the nearest that has any: a program may clear what it hands on";
    EXPECT_EQ(origin.tmux, "/tmp/t,1,0");
    EXPECT_EQ(origin.tmuxPane, "%3");
    EXPECT_THAT(agentCandidates(origin), ElementsAre(ProcessId{ 10, 10 }));
}

TEST_F(ProcTree, WhatIsKnownIsReadAgainWhereAProcessIsNotTheSame)
{
    add(10, 1, 10, "xterm");
    add(20, 10, 20, "bash");
    add(30, 20, 30, "claude");
    add(41, 30, 41, "nc");
    const ProcPeerInspector inspector(root.path());
    EXPECT_THAT(chainOf(41, inspector), ElementsAre(41, 30, 20, 10));

    add(11, 1, 11, "tmux");
    add(30, 11, 30, "claude"); // its shell has ended
    add(42, 30, 42, "nc");
    EXPECT_THAT(chainOf(42, inspector), ElementsAre(42, 30, 11));
    add(30, 11, 30, "codex"); // another program in the same process
    add(43, 30, 43, "nc");
    EXPECT_EQ(inspector.process(43).ancestors.at(1).names.front(), "codex");
    add(42, 20, 50, "nc"); // the number's second owner
    EXPECT_THAT(chainOf(42, inspector), ElementsAre(42, 20, 10));
    add(20, 1, 60, "bash"); // and of this one, younger than its child
    EXPECT_THAT(chainOf(20, inspector), ElementsAre(20));
    EXPECT_THAT(chainOf(42, inspector), ElementsAre(42));
}

/// A shell under another name, which runs until its input ends.
struct Named : QProcess {
    explicit Named(const QString& name, const QString& script = u"read line"_s)
    {
        QFile::copy(u"/bin/sh"_s, folder.filePath(name));
        start(folder.filePath(name), { u"-c"_s, script });
        waitForStarted();
    }
    ~Named() override
    {
        kill();
        waitForFinished();
    }
    Q_DISABLE_COPY_MOVE(Named)

    QTemporaryDir folder;
};

TEST(ProcPeerInspector, FindsWhoConnected)
{
    int ends[2] = { -1, -1 };
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    const FileDescriptor ours(ends[0]);
    const FileDescriptor theirs(ends[1]);
    const ProcPeerInspector inspector;
    const HookOrigin origin = inspector.peer(ours.get());
    ASSERT_GE(origin.ancestors.size(), 1U);
    EXPECT_EQ(origin.ancestors[0].id.pid, QCoreApplication::applicationPid());
    EXPECT_TRUE(inspector.peer(-1).ancestors.empty());

    const Named claude(u"claude"_s);
    const HookOrigin child = inspector.process(claude.processId());
    ASSERT_GE(child.ancestors.size(), 2U);
    EXPECT_EQ(child.ancestors[1].id, origin.ancestors[0].id);
    EXPECT_EQ(agentCandidates(child).size(), 1U);
}

TEST(ProcPeerInspector, TellsTheEndOfTheVeryProcess)
{
    ProcPeerInspector inspector;
    Named agent(u"claude"_s);
    Named namesake(u"claude"_s);
    const ProcessId id = inspector.process(agent.processId()).ancestors.at(0).id;
    int ended = 0;
    std::unique_ptr<ProcessWatch> watch;
    watch = inspector.watch(id, [&] {
        ++ended;
        watch.reset(); // as its owner may
    });
    ASSERT_TRUE(watch);
    EXPECT_FALSE(inspector.watch({ id.pid, id.startTime + 1 }, [] {})) << "the number's other owner";
    namesake.kill();
    namesake.waitForFinished();
    settle();
    EXPECT_EQ(ended, 0);

    QElapsedTimer clock;
    clock.start();
    ::kill(pid_t(agent.processId()), SIGKILL);
    EXPECT_TRUE(waitFor([&] { return ended == 1; }));
    EXPECT_LT(clock.elapsed(), 100);
    settle();
    EXPECT_EQ(ended, 1);
    EXPECT_FALSE(inspector.watch(id, [] {})) << "it has ended";
}

TEST(ProcPeerInspector, AProcessThatNobodyWaitedForHasEnded)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(0);
    siginfo_t info{};
    ASSERT_EQ(::waitid(P_PID, id_t(child), &info, WEXITED | WNOWAIT), 0); // it stays a zombie
    ProcPeerInspector inspector;
    const HookOrigin origin = inspector.process(child);
    ASSERT_FALSE(origin.ancestors.empty());
    EXPECT_FALSE(inspector.watch(origin.ancestors[0].id, [] {}));
    ::waitpid(child, nullptr, 0);
}

} // namespace
} // namespace kestro
