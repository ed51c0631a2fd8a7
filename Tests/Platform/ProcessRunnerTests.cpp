#include "Helpers.h"
#include "Platforms/Linux/System/ProcessRunner.h"

#include <QElapsedTimer>
#include <csignal>

namespace kestro {
namespace {

using namespace test;

struct ProcessRunnerTest : testing::Test {
    CommandResult run(const QStringList& words, const QByteArray& input = {}, double limit = 5)
    {
        std::optional<CommandResult> result;
        runner->run(words, input, limit, [&](const CommandResult& each) { result = each; });
        EXPECT_FALSE(result) << "never at once";
        EXPECT_TRUE(waitFor([&] { return result.has_value(); }));
        return result.value_or(CommandResult());
    }
    CommandResult shell(const char* script, const QByteArray& input = {}, double limit = 5)
    {
        return run({ u"/bin/sh"_s, u"-c"_s, QString::fromUtf8(script) }, input, limit);
    }

    std::unique_ptr<ProcessRunner> runner = std::make_unique<ProcessRunner>();
};

TEST_F(ProcessRunnerTest, TellsWhatBecameOfACommand)
{
    struct Case {
        const char* script;
        QByteArray input;
        std::optional<int> status;
        QByteArray output, errors;
    };
    const Case cases[] = {
        { "cat; echo no >&2; exit 3", "a\nb", 3, "a\nb", "no\n" },
        { "exit 0", QByteArray(1 << 20, 'x'), 0, {}, {} }, // reads nothing of what it is given
        { "kill -TERM $$", {}, std::nullopt, {}, {} },
        { "head -c 200000 /dev/zero | tr '\\0' y", {}, 0, QByteArray(65'536, 'y'), {} },
    };
    for (const Case& each : cases) {
        const CommandResult result = shell(each.script, each.input);
        EXPECT_TRUE(result.started) << each.script;
        EXPECT_EQ(result.status, each.status) << each.script;
        EXPECT_EQ(result.output, each.output) << each.script;
        EXPECT_EQ(result.errors, each.errors) << each.script;
    }
    const CommandResult missing = run({ u"/nowhere/at-all"_s });
    EXPECT_FALSE(missing.started || missing.status);
    EXPECT_TRUE(runner->exists(u"sh"_s));
    EXPECT_FALSE(runner->exists(u"no-such-program"_s));
}

TEST_F(ProcessRunnerTest, AtItsLimitItGoesWithAllThatItStarted)
{
    QElapsedTimer clock;
    clock.start();
    // The grandchild keeps the pipe open.
    const CommandResult result = shell("sleep 60 & echo $!; wait", {}, 0.2);
    EXPECT_LT(clock.elapsed(), 4000);
    EXPECT_TRUE(result.started);
    EXPECT_EQ(result.status, std::nullopt);
    const int grandchild = result.output.trimmed().toInt();
    ASSERT_GT(grandchild, 0);
    EXPECT_TRUE(waitFor([&] { return ::kill(grandchild, 0) != 0; }));
}

TEST_F(ProcessRunnerTest, WhatRunsGoesWithTheRunner)
{
    bool told = false;
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"pid"_s);
    runner->run(
        { u"/bin/sh"_s, u"-c"_s, u"echo $$ >\"$0\"; sleep 60"_s, file }, {}, 60, [&](const auto&) { told = true; });
    ASSERT_TRUE(waitFor([&] { return contentOf(file).endsWith('\n'); }));
    const int pid = contentOf(file).trimmed().toInt();
    runner.reset();
    EXPECT_TRUE(waitFor([&] { return ::kill(pid, 0) != 0; }));
    settle();
    EXPECT_FALSE(told);
}

} // namespace
} // namespace kestro
