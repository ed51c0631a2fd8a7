#include "KestroCore/Agents/StatusLineInstaller.h"

#include "KestroCore/Agents/AgentSocket.h"
#include "KestroCore/Agents/HookInstallerError.h"
#include "KestroCore/Support/ForeignJson.h"
#include "Tests/Core/Support/FolderSnapshot.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <semaphore>

namespace kestro {
namespace {

using namespace tests;
using namespace StatusLineInstaller;
using Bytes = std::optional<QByteArray>;

const QString settingsPath = QStringLiteral("~/s.json");
const QByteArray ours = R"("command":"\"$HOME/.claude/kestro/statusline.sh\" # kestro-hook")";

QByteArray normal(const QByteArray& json) { return ForeignJson::print(ForeignJson::parseForEditing(json).value()); }

TEST(StatusLine, IsWrappedAndUnwrapped)
{
    const QByteArray keys = R"("type":"command","padding":1.50,"big":123456789012345678901234567890)";
    const std::tuple<const char*, Bytes, QByteArray, Bytes, Bytes> cases[] = {
        { "none", "{\"model\":\"m\"}", "{\"model\":\"m\",\"statusLine\":{\"type\":\"command\"," + ours + "}}", "{}",
            {} },
        { "no file", {}, "{\"statusLine\":{\"type\":\"command\"," + ours + "}}", "{}", {} },
        { "foreign", "{\"statusLine\":{\"command\":\"printf 'é/\\\"\\\\n'\"," + keys + "},\"hooks\":{}}",
            "{\"hooks\":{},\"statusLine\":{" + ours + "," + keys + "}}",
            "{\"statusLine\":{\"command\":\"printf 'é/\\\"\\\\n'\"," + keys + "}}", "printf 'é/\"\\n'" },
        { "without a command", "{\"statusLine\":{" + keys + "}}", "{\"statusLine\":{" + ours + "," + keys + "}}",
            "{\"statusLine\":{" + keys + "}}", {} },
        { "a command of another type", "{\"statusLine\":{\"command\":1.0}}", "{\"statusLine\":{" + ours + "}}",
            "{\"statusLine\":{\"command\":1.0}}", {} },
        { "an older one of ours", "{\"statusLine\":{\"command\":\"x # ombrel-hook\"," + keys + "}}",
            "{\"statusLine\":{" + ours + "," + keys + "}}", {}, {} },
    };
    for (const auto& [name, before, after, sidecar, originalCommand] : cases) {
        SCOPED_TRACE(name);
        const auto wrapped = wrap(before, settingsPath);
        const Bytes kept = sidecar ? Bytes(normal(*sidecar)) : std::nullopt;
        EXPECT_EQ(wrapped, (Wrapped{ normal(after), kept, originalCommand }));
        EXPECT_EQ(wrap(wrapped->settings, settingsPath), std::nullopt);
        if (sidecar) {
            EXPECT_EQ(unwrap(wrapped->settings, wrapped->sidecar, settingsPath), normal(before.value_or("{}")));
        }
    }
}

TEST(StatusLine, GoesBackAsFarAsIsKnown)
{
    const QByteArray wrapped = "{\"statusLine\":{\"new\":1," + ours + "}}";
    const std::tuple<const char*, Bytes, Bytes, QByteArray> cases[] = {
        { "changed since by the user", R"({"statusLine":{"command":"mine"}})", R"({"statusLine":{"command":"a"}})",
            R"({"statusLine":{"command":"mine"}})" },
        { "none and a broken sidecar that nobody needs", "{}", "{", "{}" },
        { "of another type", R"({"statusLine":"# kestro-hook"})", {}, R"({"statusLine":"# kestro-hook"})" },
        { "keys of today stay", wrapped, R"({"statusLine":{"command":"a","old":2}})",
            R"({"statusLine":{"command":"a","new":1}})" },
        { "lost sidecar", wrapped, {}, "{}" },
        { "empty sidecar", wrapped, "", "{}" },
        { "a sidecar of another shape", wrapped, R"({"statusLine":[]})", "{}" },
    };
    for (const auto& [name, data, sidecar, expected] : cases)
        EXPECT_EQ(unwrap(data, sidecar, settingsPath), normal(expected)) << name;
}

/// The home folder of a user of Claude Code.
class StatusLineFiles : public testing::Test {
protected:
    StatusLineFiles() { QDir(m_home.path()).mkdir(QStringLiteral(".claude")); }

    QString home(const char* name) const { return m_home.filePath(QLatin1String(name)); }
    QString settings() const { return home(".claude/settings.json"); }
    FolderState support() const { return snapshot(home(".claude/kestro")); }
    void apply(bool enabled) const { StatusLineInstaller::apply(enabled, settings(), supportDir(m_home.path())); }
    QString failure(bool enabled) const
    {
        try {
            apply(enabled);
            return {};
        } catch (const StorageError& error) {
            return error.description();
        }
    }

    /// Runs the script by the shell at `path`, which also is the "sh" of whatever it runs.
    void start(QProcess& script, const QString& shell, const QByteArray& input) const
    {
        QDir(m_home.path()).mkdir(QStringLiteral("bin"));
        QFile::remove(home("bin/sh"));
        QFile::link(shell, home("bin/sh"));
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("HOME"), m_home.path());
        const QString path = QStringLiteral("PATH");
        environment.insert(path, home("bin") + QLatin1Char(':') + environment.value(path));
        script.setProcessEnvironment(environment);
        script.start(home("bin/sh"), { home(".claude/kestro/statusline.sh") });
        script.write(input);
        script.closeWriteChannel();
    }

private:
    QTemporaryDir m_home;
};

TEST_F(StatusLineFiles, ComeAndGo)
{
    apply(false);
    EXPECT_EQ(snapshot(home(".claude")), FolderState());

    const QByteArray text(script.data(), script.size());
    const QByteArray before = normal(R"({"statusLine":{"command":"echo 'é'","padding":0}})");
    writeFile(settings(), before, 0600);
    apply(true);
    const FolderState wrapped{ { "statusline.sh", { text, 0755 } }, { "claude-statusline.json", { before, 0600 } },
        { "claude-statusline-command", { "echo 'é'", 0600 } } };
    EXPECT_EQ(support(), wrapped);

    // Again: the script alone is mended.
    for (const char* name : { "statusline.sh", "claude-statusline.json", "claude-statusline-command" })
        writeFile(home(".claude/kestro/") + QLatin1String(name), "{\"changed\":1}", 0600);
    FolderState after = support();
    after["statusline.sh"] = { text, 0755 };
    const FolderState outside = snapshot(home(".claude"));
    apply(true);
    EXPECT_EQ(support(), after);
    EXPECT_EQ(snapshot(home(".claude")), outside);

    // An older command of ours gives way, and what it holds the way back to stays.
    writeFile(settings(), R"({"statusLine":{"command":"x # ombrel-hook"}})");
    apply(true);
    EXPECT_EQ(readFile(settings()), normal("{\"statusLine\":{" + ours + "}}"));
    EXPECT_EQ(support(), after);

    // A status line without a command takes the place of the user's: no command of the one before may remain.
    writeFile(settings(), "{\"statusLine\":{\"type\":\"command\"}}");
    apply(true);
    EXPECT_EQ(readFile(home(".claude/kestro/claude-statusline-command")), "(no such file)");
    apply(false);
    EXPECT_EQ(readFile(settings()), normal("{\"statusLine\":{\"type\":\"command\"}}"));
    EXPECT_EQ(support(), (FolderState{ { "statusline.sh", { text, 0755 } } }));
}

TEST_F(StatusLineFiles, FailAsTold)
{
    const QString broken = QStringLiteral("Couldn't update %1 — invalid JSON").arg(settings());
    const QString sidecar = QStringLiteral("Couldn't update claude-statusline.json — invalid JSON");
    const QByteArray wrapped = "{\"statusLine\":{" + ours + "}}";
    const std::tuple<const char*, QByteArray, QByteArray, QString, QString> cases[] = {
        { "a text", R"({"statusLine":"x"})", "{}", broken, {} },
        { "null", R"({"statusLine":null})", "{}", broken, {} },
        { "an array", "[]", "{}", broken, broken },
        { "a number that cannot be carried over", R"({"a":1e400})", "{}", broken, broken },
        { "a broken sidecar", wrapped, "{\"statusLine\":", {}, sidecar },
        { "a sidecar that is an array", wrapped, "[]", {}, sidecar },
    };
    for (const auto& [name, content, sidecarContent, wrapping, unwrapping] : cases) {
        SCOPED_TRACE(name);
        writeFile(settings(), content);
        QDir().mkpath(home(".claude/kestro"));
        writeFile(home(".claude/kestro/claude-statusline.json"), sidecarContent);
        EXPECT_EQ(failure(true), wrapping);
        EXPECT_EQ(support().count("statusline.sh"), 1U);
        EXPECT_EQ(failure(false), unwrapping);
        EXPECT_EQ(support().count("claude-statusline.json"), unwrapping.isEmpty() ? 0U : 1U);
        EXPECT_EQ(readFile(settings()), content);
        EXPECT_EQ(snapshot(home(".claude")).size(), 2U) << "no backup, since nothing was written";
    }
    QFile::remove(home(".claude/kestro/claude-statusline.json"));
    QDir().mkdir(home(".claude/kestro/claude-statusline.json"));
    EXPECT_EQ(failure(false), sidecar) << "unreadable";
    QDir(home(".claude/kestro")).removeRecursively();
    writeFile(home(".claude/kestro"), "in the way");
    EXPECT_TRUE(failure(true).endsWith(QLatin1String("a file stands where a folder should be.")));
}

TEST_F(StatusLineFiles, TheScriptPassesOnAndShowsTheSame)
{
    const QByteArray status = R"({"rate_limits":{"five_hour":{"used_percentage":7,"resets_at":1}},"x":"\n%s\\)";
    const QByteArray small = status + "é\"}";
    const QByteArray large = status + QByteArray(1'000'000, 'x') + "\"}";
    const std::tuple<QByteArray, QByteArray, QByteArray, QByteArray> cases[] = {
        { "", small, "", "" },
        { "cat", small, small + '\n', "" },
        { "cat", large, large + '\n', "" },
        { "head -c 5", large, "{\"rat", "" },
        { "printf '\\033[1;31m%s\\033[0m\\n\\n ' \"a  \\$b\"; printf '\\342\\234\\223'", small,
            "\033[1;31ma  $b\033[0m\n\n \xE2\x9C\x93", "" },
        { "echo out; echo err >&2; exit 3 # a note", small, "out\n", "err\n" },
    };
    std::counting_semaphore arrived(0);
    AgentSocket socket(home("Library/Application Support/Kestro/agents.sock"), [&](const SocketMessage& message, int) {
        if (message.claudeLimits() && message.claudeLimits()->fiveHour->usedPercent == 7)
            arrived.release();
    });
    int shells = 0;
    for (const char* name : { "dash", "bash", "busybox" }) {
        const QString shell = QStandardPaths::findExecutable(QLatin1String(name));
        if (shell.isEmpty())
            continue;
        ++shells;
        for (const bool listening : { true, false }) {
            listening ? socket.start() : socket.stop();
            for (const auto& [command, input, output, errors] : cases) {
                SCOPED_TRACE(name + (": " + command.toStdString()));
                const nlohmann::json wanted{ { "statusLine", { { "command", command.toStdString() } } } };
                writeFile(settings(), ForeignJson::print(wanted));
                apply(true);
                QProcess process;
                start(process, shell, input);
                ASSERT_TRUE(process.waitForFinished());
                EXPECT_EQ(process.exitCode(), 0);
                EXPECT_TRUE(process.readAllStandardOutput() == output);
                EXPECT_EQ(process.readAllStandardError(), errors);
                EXPECT_TRUE(!listening || arrived.try_acquire_for(std::chrono::seconds(20)));
            }
        }
    }
    EXPECT_GE(shells, 1);
}

TEST_F(StatusLineFiles, TheScriptWaitsForNoSocket)
{
    writeFile(settings(), "{\"statusLine\":{\"command\":\"cat\"}}");
    apply(true);
    // In the place of netcat a script that makes noise and then stays until it is told to go.
    QDir(home("")).mkdir(QStringLiteral("bin"));
    writeFile(home("bin/nc"), "#!/bin/sh\necho noise\necho noise >&2\ncat >~/sent\nread -r line <~/gate\n", 0755);
    ASSERT_EQ(mkfifo(QFile::encodeName(home("gate")).constData(), 0600), 0);
    QProcess process;
    start(process, QStringLiteral("/bin/sh"), "{}\n\n");
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.readAllStandardOutput(), "{}\n");
    EXPECT_EQ(process.readAllStandardError(), "");
    QFile gate(home("gate"));
    ASSERT_TRUE(gate.open(QIODevice::WriteOnly)); // once the other side is there
    EXPECT_EQ(readFile(home("sent")), "limits=claude\n{}\n");
}

} // namespace
} // namespace kestro
