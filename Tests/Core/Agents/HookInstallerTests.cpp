#include "KestroCore/Agents/HookInstaller.h"

#include "KestroCore/Agents/HookInstallerError.h"
#include "Tests/Core/Support/FolderSnapshot.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace kestro {
namespace {

using namespace tests;

const QString path = QStringLiteral("~/x.json");

/// Stands in a test's JSON for an entry of ours, in each of its forms.
QByteArray withEntries(const char* text)
{
    return QByteArray(text)
        .replace("OURS", R"({"hooks":[{"command":"x; exit 0 # kestro-hook","type":"command"}]})")
        .replace("FLAT", R"({"command":"x # kestro-hook"})")
        .replace("OLD", R"({"hooks":[{"command":"y # ombrel-hook","type":"command"}]})")
        .replace("MIXED", R"({"hooks":[{"command":"theirs"},{"command":"x # kestro-hook"}],"matcher":"*"})")
        .replace("THEIRS", R"({"hooks":[{"command":"beep","type":"command"}],"matcher":"Edit"})");
}

QJsonObject object(const QByteArray& text)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << text.toStdString();
    return document.object();
}

/// Our entries in what was installed, by event.
QMap<QString, int> ours(const QJsonObject& root)
{
    QMap<QString, int> counts;
    const QJsonObject hooks = root[QStringLiteral("hooks")].toObject();
    for (auto event = hooks.begin(); event != hooks.end(); ++event) {
        const QByteArray text = QJsonDocument(event->toArray()).toJson();
        if (const auto count = text.count(HookInstaller::marker) + text.count(HookInstaller::legacyMarker))
            counts[event.key()] = static_cast<int>(count);
    }
    return counts;
}

TEST(HookInstaller, WritesWhatTheAgentsRead)
{
    EXPECT_EQ(HookInstaller::install(std::nullopt, Agent::cursor, path),
        QByteArray(R"({
  "hooks": {
    "beforeSubmitPrompt": [
      COMMAND
    ],
    "postToolUse": [
      COMMAND
    ],
    "sessionEnd": [
      COMMAND
    ],
    "sessionStart": [
      COMMAND
    ],
    "stop": [
      COMMAND
    ]
  },
  "version": 1
}
)")
            .replace("COMMAND", R"({
        "command": "echo '{\"continue\":true}'; { echo \"agent=cursor\"; cat; } | nc -U -w1 \"$HOME/Library/Application Support/Kestro/agents.sock\" >/dev/null 2>&1; exit 0 # kestro-hook"
      })"));

    const QJsonObject claude = object(HookInstaller::install(QByteArray(), Agent::claude, path));
    EXPECT_EQ(claude.keys(), QStringList{ QStringLiteral("hooks") });
    EXPECT_EQ(claude[QStringLiteral("hooks")][QStringLiteral("PermissionRequest")], QJsonArray({ object(R"({"hooks":[
        {"type":"command","command":"{ echo \"agent=claude\"; cat; } | nc -U -w1 \"$HOME/Library/Application Support/Kestro/agents.sock\" >/dev/null 2>&1; exit 0 # kestro-hook"}
        ]})") }));

    const char* codexEvents[] = { "Interrupt", "PermissionRequest", "PostToolUse", "SessionEnd", "SessionStart", "Stop",
        "UserPromptSubmit" };
    QStringList expected;
    for (const char* event : codexEvents)
        expected += QLatin1String(event);
    EXPECT_EQ(ours(object(HookInstaller::install(std::nullopt, Agent::codex, path))).keys(), expected);
    expected.removeFirst();
    EXPECT_EQ(ours(claude).keys(), expected);
}

TEST(HookInstaller, Uninstalls)
{
    const struct {
        const char* name;
        const char* before;
        const char* after; // none: as before
    } cases[] = {
        { "nothing of ours", R"({"a":{"b":[1.50]},"hooks":{"Stop":[THEIRS],"Empty":[]}})", nullptr },
        { "the last of all", R"({"a":1,"hooks":{"Stop":[OURS]}})", R"({"a":1})" },
        { "the last root key", R"({"hooks":{"Stop":[OURS],"Start":[OURS]}})", "{}" },
        { "the last of an event", R"({"hooks":{"Stop":[OURS],"Start":[THEIRS]}})", R"({"hooks":{"Start":[THEIRS]}})" },
        { "an unknown event", R"({"hooks":{"Whatever":[THEIRS,OURS,THEIRS]}})",
            R"({"hooks":{"Whatever":[THEIRS,THEIRS]}})" },
        { "several of all forms", R"({"hooks":{"Stop":[FLAT,OLD,THEIRS,OURS,OURS]}})",
            R"({"hooks":{"Stop":[THEIRS]}})" },
        { "with a foreign command inside", R"({"hooks":{"Stop":[MIXED,THEIRS]}})", R"({"hooks":{"Stop":[THEIRS]}})" },
        { "the version stays", R"({"version":2,"hooks":{"stop":[FLAT]}})", R"({"version":2})" },
        { "hooks of another type", R"({"hooks":[FLAT]})", nullptr },
        { "an event of another type", R"({"hooks":{"Stop":FLAT,"Start":"# kestro-hook","End":null}})", nullptr },
        { "an empty event beside ours", R"({"hooks":{"Stop":[OURS],"Start":[]}})", R"({"hooks":{"Start":[]}})" },
        { "the marker elsewhere", R"({"hooks":{"Stop":[{"matcher":"# kestro-hook","command":["# kestro-hook"]}]}})",
            nullptr },
        { "inner hooks not all objects", R"({"hooks":{"Stop":[{"hooks":[1,FLAT]}]}})", nullptr },
        { "inner hooks one object", R"({"hooks":{"Stop":[{"hooks":FLAT}]}})", nullptr },
        { "beside what is no entry", R"({"hooks":{"Stop":[1,OURS,null]}})", R"({"hooks":{"Stop":[1,null]}})" },
        { "odd keys", R"({"hooks":{"":[OURS],"é/\"\u0000":[THEIRS]}})", R"({"hooks":{"é/\"\u0000":[THEIRS]}})" },
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const QByteArray after = HookInstaller::uninstall(withEntries(c.before), path);
        EXPECT_EQ(object(after), object(withEntries(c.after ? c.after : c.before))) << after.toStdString();
    }
    EXPECT_EQ(HookInstaller::uninstall(std::nullopt, path), "{}\n");
    EXPECT_EQ(HookInstaller::uninstall(QByteArray(), path), "{}\n");
}

TEST(HookInstaller, InstallsBehindOthersOnce)
{
    const char* files[] = {
        "{}",
        R"({"hooks":{}})",
        R"({"hooks":{"Stop":[THEIRS],"stop":[THEIRS]}})",
        R"({"hooks":{"Stop":[OLD,THEIRS,OURS,THEIRS],"stop":[FLAT]}})",
        R"({"hooks":{"Gone":[OURS],"Stop":[MIXED]}})",
        R"({"hooks":{"Stop":[1,OURS,"x"],"stop":[1,FLAT]}})",
    };
    for (const char* file : files) {
        for (const Agent agent : allAgents) {
            SCOPED_TRACE(file);
            const QByteArray once = HookInstaller::install(withEntries(file), agent, path);
            const QJsonObject root = object(once);
            QMap<QString, int> expected;
            for (const QString& event : HookInstaller::events(agent)) {
                expected[event] = 1;
                const QJsonArray entries = root[QStringLiteral("hooks")][event].toArray();
                EXPECT_TRUE(QJsonDocument(entries.last().toObject()).toJson().contains(HookInstaller::marker));
            }
            EXPECT_EQ(ours(root), expected);
            EXPECT_FALSE(once.contains(HookInstaller::legacyMarker));
            EXPECT_EQ(HookInstaller::install(once, agent, path), once);
        }
    }
}

TEST(HookInstaller, KeepsAnExistingVersion)
{
    for (const QByteArray version : { "2", "\"x\"", "null", "1.0" }) {
        SCOPED_TRACE(version.toStdString());
        const QByteArray data = "{\"version\":" + version + '}';
        EXPECT_TRUE(HookInstaller::install(data, Agent::cursor, path).contains("\"version\": " + version + '\n'));
    }
    EXPECT_FALSE(HookInstaller::install(std::nullopt, Agent::codex, path).contains("version"));
}

/// The home folder of a user with one file for Claude Code.
class HookInstallerFiles : public testing::Test {
protected:
    HookInstallerFiles() { qputenv("HOME", QFile::encodeName(m_home.path())); }
    ~HookInstallerFiles() override { qputenv("HOME", m_before); }

    QString home(const char* name) const { return m_home.filePath(QLatin1String(name)); }
    QString settings() const { return home(".claude/settings.json"); }
    void writeSettings(const QByteArray& bytes, mode_t mode = 0600) const
    {
        QDir(m_home.path()).mkdir(QStringLiteral(".claude"));
        writeFile(settings(), bytes, mode);
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
    const struct {
        const char* name;
        QByteArray content;
        QString install;
        QString removal;
    } cases[] = {
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
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        writeSettings(c.content);
        const FolderState before = snapshot(home(".claude"));
        EXPECT_EQ(failure(false), c.removal);
        EXPECT_EQ(snapshot(home(".claude")), before);
        EXPECT_EQ(failure(true), c.install);
        EXPECT_EQ(snapshot(home(".claude")) == before, !c.install.isEmpty());
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
        EXPECT_EQ(readFile(file), HookInstaller::install(std::nullopt, agent, path));
        EXPECT_EQ(snapshot(QFileInfo(file).path()).size(), 1U) << "no backup of what was not there";
        HookInstaller::apply(false, agent, file);
        EXPECT_EQ(readFile(file), agent == Agent::cursor ? "{\n  \"version\": 1\n}\n" : "{}\n");
        EXPECT_EQ(readFile(file + QStringLiteral(".kestro.bak")), HookInstaller::install(std::nullopt, agent, path));
    }
}

TEST_F(HookInstallerFiles, WritesOnceAndKeepsTheVersionBefore)
{
    writeSettings("");
    EXPECT_EQ(failure(true), QString());
    FolderState state = snapshot(home(".claude"));
    EXPECT_EQ(state["settings.json.kestro.bak"], (FileState{ "", 0600 }));
    EXPECT_EQ(state["settings.json"].mode, 0600U);

    const QByteArray elsewhere = QFile::encodeName(settings() + QStringLiteral(".kestro.bak"));
    struct stat before { };
    struct stat after { };
    ASSERT_EQ(stat(elsewhere.constData(), &before), 0);
    EXPECT_EQ(failure(true), QString());
    ASSERT_EQ(stat(elsewhere.constData(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino) << "a second installation writes nothing";
    EXPECT_EQ(snapshot(home(".claude")), state);
}

TEST_F(HookInstallerFiles, CarriesNumbersUnchanged)
{
    const char* numbers = R"("numbers": [
    123456789012345678901234567890,
    0.1000000000000000055,
    -0,
    1.0,
    1e3
  ])";
    writeSettings(QByteArray("{") + numbers + '}');
    EXPECT_EQ(failure(true), QString());
    EXPECT_TRUE(readFile(settings()).contains(numbers));
    EXPECT_EQ(failure(false), QString());
    EXPECT_EQ(readFile(settings()), QByteArray("{\n  ") + numbers + "\n}\n");
}

TEST_F(HookInstallerFiles, TheCommandSendsAndAnswers)
{
    // In the place of netcat a script that keeps what it was given.
    QDir(home("")).mkdir(QStringLiteral("bin"));
    writeFile(
        home("bin/nc"), "#!/bin/sh\necho \"$@\" >\"$HOME/arguments\"\ncat >\"$HOME/sent\"\necho noise\nexit 3\n", 0755);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(
        QStringLiteral("PATH"), home("bin") + QLatin1Char(':') + environment.value(QStringLiteral("PATH")));
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
