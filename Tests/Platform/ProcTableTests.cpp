#include "Machines.h"
#include "Platforms/Linux/System/ProcTable.h"
#include "Platforms/Linux/System/ProcText.h"

#include <QProcess>
#include <csignal>
#include <unistd.h>

namespace kestro {
namespace {

using namespace test;

TEST(ProcText, ReadsProcesses)
{
    const std::string_view rest = " S 1 2 3 0 -1 4194304 0 0 0 0 150 50 0 0 20 0 1 0 7000 18446744073709551615 25";
    const auto parse = [&](const std::string& name) {
        return procText::process("77 (" + name + ")" + std::string(rest));
    };
    for (const char* name : { "bash", "a) R 1 (b", "two\nlines", "\xff\xfe", "" }) {
        const std::string text = "77 (" + std::string(name) + ")" + std::string(rest);
        const auto process = procText::process(text);
        ASSERT_TRUE(process) << name;
        EXPECT_EQ(process->name, name);
        EXPECT_EQ(process->ticks, 200U);
        EXPECT_EQ(process->started, 7000U);
        EXPECT_EQ(process->pages, 25U);
    }
    EXPECT_FALSE(parse("x").has_value() && parse("x")->isKernels);
    for (const char* broken : { "", "77 (x", "77 x) S 1", ")(", "77 (x) S 1 2 3", "77 (x) SS 1 2 3 4 5 6 7 8 9" })
        EXPECT_FALSE(procText::process(broken)) << broken;
    EXPECT_EQ(procText::printable("two\nlines\x01"), u"two lines "_s);
    EXPECT_EQ(procText::diskBytes("rchar: 1\nread_bytes: 5\nwrite_bytes: 7\n"), 12U);
    EXPECT_EQ(procText::diskBytes("read_bytes: 5\n"), std::nullopt);
}

TEST(ProcText, KnowsWhatASessionStarted)
{
    const std::pair<const char*, QByteArrayList> table[] = {
        { "0::/user.slice/user@1000.service/app.slice/app-gnome-org.gnome.Terminal-4242.scope\n",
            { "gnome-org.gnome.Terminal", "org.gnome.Terminal" } },
        { "0::/app.slice/app-flatpak-org.mozilla.firefox-99.scope/inner\n",
            { "flatpak-org.mozilla.firefox", "org.mozilla.firefox" } },
        { "0::/app.slice/app-my\\x2dtool@abc.service\n", { "my-tool" } },
        { "0::/snap.firefox.firefox-1234.scope\n", { "firefox_firefox" } },
        { "0::/user.slice/session-2.scope\n", {} },
        { "", {} },
    };
    for (const auto& [text, ids] : table)
        EXPECT_EQ(procText::applicationIds(text), ids) << text;
}

TEST(AppEntries, BelongToExecutables)
{
    const AppEntries entries({ { u"/e/browser.desktop"_s, u"browser"_s, "/opt/maker/browser/browser", false },
        { u"/e/browser-private.desktop"_s, u"browser-private"_s, "/opt/maker/browser/browser", false },
        { u"/e/term.desktop"_s, u"term"_s, "term", true },
        { u"/e/script.desktop"_s, u"script"_s, "/usr/bin/python3", false },
        { u"/e/writer.desktop"_s, u"writer"_s, "writer", false } });
    EXPECT_EQ(entries.byExecutable("/opt/maker/browser/helper"), u"/e/browser.desktop"_s);
    EXPECT_EQ(entries.byExecutable("/usr/lib/writer/program/writer.bin"), u"/e/writer.desktop"_s);
    EXPECT_EQ(entries.byExecutable("/usr/bin/python3"), std::nullopt);
    EXPECT_EQ(entries.byExecutable("/usr/bin/ls"), std::nullopt);
    EXPECT_EQ(entries.byIds({ "gnome-writer", "Writer" }), u"/e/writer.desktop"_s);
    EXPECT_EQ(entries.byIds({ "term" }), std::nullopt) << "what is started in a terminal is not the terminal";
}

TEST(ProcTable, ListsAndEndsThisProcessesChild)
{
    QProcess child;
    child.start(u"sleep"_s, { u"60"_s });
    ASSERT_TRUE(child.waitForStarted());
    ProcTable table;
    table.applications().set(AppEntries({}));
    const auto lister = table.lister();
    const auto find = [&](qint64 pid) -> std::optional<ProcessCPUTime> {
        const auto list = lister->list();
        const auto found = std::ranges::find(list->processes, qint32(pid), &ProcessCPUTime::pid);
        return found == list->processes.end() ? std::nullopt : std::optional(*found);
    };
    ASSERT_TRUE(waitFor([&] { return find(child.processId())->name == u"sleep"_s; }));
    const auto listed = find(child.processId());
    EXPECT_TRUE(listed->path && listed->path->endsWith(u"/sleep"));
    const ProcessKey key{ listed->pid, *listed->started };
    EXPECT_TRUE(table.commandLine(key).endsWith(u"sleep 60"_s)) << table.commandLine(key).toStdString();
    EXPECT_EQ(table.end({ key.pid, key.started + 1 }, true), ProcessTable::End::gone)
        << "another process has the number";
    EXPECT_TRUE(table.isAlive(key));
    EXPECT_EQ(table.end(key, false), ProcessTable::End::sent);
    ASSERT_TRUE(waitFor([&] { return !table.isAlive(key); }));
    EXPECT_EQ(table.end(key, true), ProcessTable::End::gone);
    EXPECT_TRUE(waitFor([&] { return child.state() == QProcess::NotRunning; }));
    EXPECT_FALSE(find(key.pid));
    EXPECT_FALSE(ProcTable("/nowhere").lister()->list());

    const QTemporaryDir folder;
    QFile open(folder.filePath(u"open"_s));
    ASSERT_TRUE(open.open(QFile::WriteOnly));
    EXPECT_THAT(
        table.openPaths(QFile::encodeName(folder.path())), testing::Contains(QFile::encodeName(open.fileName())));
}

} // namespace
} // namespace kestro
