#include "KestroCore/Agents/HookInstaller.h"

#include "KestroCore/Agents/HookInstallerError.h"
#include "Tests/Core/Support/FolderSnapshot.h"

#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace kestro {
namespace {

using namespace tests;

/// The home folder of a user with one file for Claude Code.
class HookInstallerFiles : public testing::Test {
protected:
    HookInstallerFiles() { qputenv("HOME", QFile::encodeName(m_home.path())); }
    ~HookInstallerFiles() override { qputenv("HOME", m_before); }

    QString home(const char* name) const { return m_home.filePath(QLatin1String(name)); }
    QString settings() const { return home(".claude/settings.json"); }
    void writeSettings(const QByteArray& bytes) const
    {
        QDir(m_home.path()).mkdir(QStringLiteral(".claude"));
        writeFile(settings(), bytes);
    }
    QString failure(bool enabled) const
    {
        try {
            HookInstaller::apply(enabled, Agent::claude, HookInstaller::configURL(Agent::claude));
            return {};
        } catch (const HookInstallerError& error) {
            return error.description();
        }
    }

private:
    QByteArray m_before = qgetenv("HOME");
    QTemporaryDir m_home;
};

TEST_F(HookInstallerFiles, FailsAsTold)
{
    const QString error = QStringLiteral("Couldn't update ~/.claude/settings.json — invalid JSON");
    const std::tuple<const char*, QByteArray, QString, QString> cases[] = {
        { "broken", "{\"hooks\":", error, {} },
        { "broken, with the marker", "{\"hooks\": # kestro-hook", error, error },
        { "broken, with the old marker", "# ombrel-hook", error, error },
        { "an array", "[\"# kestro-hook\"]", error, error },
        { "white space", " ", error, {} },
        { "invalid UTF-8, with the marker", "{\"a\":\"\xFF # kestro-hook\"}", error, error },
        { "hooks of the wrong type", R"({"hooks":[],"a":"# kestro-hook"})", error, {} },
        { "no hooks object but null", R"({"hooks":null})", error, {} },
        { "an event of the wrong type", R"({"hooks":{"Stop":{"command":"# kestro-hook"}}})", error, {} },
        { "an event that is null", R"({"hooks":{"SessionEnd":null}})", error, {} },
        { "another agent's event of the wrong type", R"({"hooks":{"Interrupt":1}})", {}, {} },
        { "the marker elsewhere", R"({"note":"# kestro-hook"})", {}, {} },
    };
    for (const auto& [name, content, install, removal] : cases) {
        SCOPED_TRACE(name);
        writeSettings(content);
        const FolderState before = snapshot(home(".claude"));
        EXPECT_EQ(failure(false), removal);
        EXPECT_EQ(snapshot(home(".claude")), before);
        EXPECT_EQ(failure(true), install);
        EXPECT_EQ(snapshot(home(".claude")) == before, !install.isEmpty());
        QFile::remove(settings() + QStringLiteral(".kestro.bak"));
    }
}

TEST_F(HookInstallerFiles, ComesAndGoes)
{
    for (const Agent agent : allAgents) {
        SCOPED_TRACE(rawValue(agent).toStdString());
        const QString file = HookInstaller::configURL(agent);
        HookInstaller::apply(false, agent, file);
        EXPECT_FALSE(QFileInfo(file).dir().exists()) << "an agent that was never hooked is left alone";
        HookInstaller::apply(true, agent, file);
        EXPECT_EQ(readFile(file), HookInstaller::install(std::nullopt, agent, {}));
        EXPECT_EQ(snapshot(QFileInfo(file).path()).size(), 1U) << "no backup of what was not there";
        HookInstaller::apply(false, agent, file);
        EXPECT_EQ(readFile(file), agent == Agent::cursor ? "{\n  \"version\": 1\n}\n" : "{}\n");
    }
    const QByteArray numbers = "{\n  \"a\": 123456789012345678901234567890,\n  \"b\": 1.0,\n  \"c\": -0\n}\n";
    writeSettings(numbers);
    EXPECT_EQ(failure(true), QString());
    EXPECT_EQ(failure(false), QString());
    EXPECT_EQ(readFile(settings()), numbers);
}

TEST_F(HookInstallerFiles, TheCommandSendsAndAnswers)
{
    // In the place of netcat a script that keeps what it was given.
    QDir(home("")).mkdir(QStringLiteral("bin"));
    writeFile(home("bin/nc"), "#!/bin/sh\necho \"$@\" >~/arguments\ncat >~/sent\necho noise\nexit 3\n", 0755);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const QString path = QStringLiteral("PATH");
    environment.insert(path, home("bin") + QLatin1Char(':') + environment.value(path));
    for (const Agent agent : allAgents) {
        SCOPED_TRACE(rawValue(agent).toStdString());
        QProcess shell;
        shell.setProcessEnvironment(environment);
        shell.start(QStringLiteral("sh"), { QStringLiteral("-c"), HookInstaller::command(agent) });
        shell.write("{\"event\": 1}");
        shell.closeWriteChannel();
        ASSERT_TRUE(shell.waitForFinished());
        EXPECT_EQ(shell.exitCode(), 0);
        EXPECT_EQ(shell.readAllStandardOutput(), agent == Agent::cursor ? "{\"continue\":true}\n" : "");
        EXPECT_EQ(shell.readAllStandardError(), "");
        EXPECT_EQ(readFile(home("sent")), "agent=" + rawValue(agent).toUtf8() + "\n{\"event\": 1}");
        EXPECT_EQ(readFile(home("arguments")),
            "-U -w1 " + QFile::encodeName(home("Library/Application Support/Kestro/agents.sock")) + '\n');
    }
}

} // namespace
} // namespace kestro
