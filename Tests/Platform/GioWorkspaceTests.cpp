#include "Helpers.h"
#include "Platforms/Linux/System/GioWorkspace.h"

#include <QDir>
#include <QIcon>
#include <QSignalSpy>
#include <cerrno>
#include <sys/stat.h>
#include <sys/wait.h>

namespace kestro {
namespace {

using namespace test;

const QByteArray app = "[Desktop Entry]\nType=Application\nName=App\n";

class GioWorkspaceTest : public testing::Test {
protected:
    // GIO looks at these once: they are set before its first use, for the whole program.
    static void SetUpTestSuite()
    {
        for (const char* const name : { "XDG_DATA_HOME", "XDG_DATA_DIRS", "XDG_CONFIG_HOME" })
            qputenv(name, QFile::encodeName(dataFolder.path()));
        qputenv("LANGUAGE", "xx");
        // Without an address GIO would start a bus and leave it running.
        if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS"))
            qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");

        QDir(dataFolder.path()).mkdir(u"applications"_s);
        const QString opener = dataFolder.filePath(u"opener"_s);
        writeFile(opener, "cd \"${0%/*}\"; echo \"$1\" > opened.part; mv opened.part opened\n");
        writeFile(dataFolder.filePath(u"applications/opener.desktop"_s),
            app + "MimeType=x-scheme-handler/kestro-test;\nExec=sh " + QFile::encodeName(opener) + " %u\n");
        writeFile(dataFolder.filePath(u"mimeapps.list"_s),
            "[Default Applications]\nx-scheme-handler/kestro-test=opener.desktop\n");
    }
    QString write(const QString& name, const QByteArray& content) const
    {
        writeFile(m_folder.filePath(name), content);
        return m_folder.filePath(name);
    }
    // The reason, or "started".
    QString open(const QString& path)
    {
        QString outcome = u"started"_s;
        m_workspace.openApplication(path, [&](const QString& error) { outcome = error; });
        return outcome;
    }

    static inline const QTemporaryDir dataFolder;
    const QTemporaryDir m_folder;
    GioWorkspace m_workspace;
};

TEST_F(GioWorkspaceTest, KnowsAnApplicationFromAnythingElse)
{
    const std::tuple<QString, QByteArray, std::optional<QString>> cases[] = {
        { u"a.desktop"_s, app + "Exec=true\n", u"App"_s },
        { u"utf8.desktop"_s, "[Desktop Entry]\nType=Application\nName=Caf\xC3\xA9\nExec=true %U\n", u"Café"_s },
        { u"tongues.desktop"_s, app + "Name[xx]=Dateien\nExec=\"true\" %U\n", u"Dateien"_s },
        { u"try.desktop"_s, app + "Exec=true\nTryExec=no-such-program\n", std::nullopt },
        { u"link.desktop"_s, "[Desktop Entry]\nType=Link\nName=Link\nURL=https://example.org\n", std::nullopt },
        { u"hidden.desktop"_s, app + "Exec=true\nHidden=true\n", std::nullopt },
        { u"gone.desktop"_s, app + "Exec=/nonexistent/x\n", std::nullopt },
        { u"garbage.desktop"_s, "\x01\xFF[[[", std::nullopt },
        { u"huge.desktop"_s, app + "Exec=true\n" + QByteArray(2 << 20, '#'), std::nullopt },
        { u"a.txt"_s, app + "Exec=true\n", std::nullopt },
    };
    for (const auto& [name, content, displayName] : cases) {
        const QString path = write(name, content);
        EXPECT_EQ(m_workspace.isApplication(path), displayName.has_value()) << name.toStdString();
        EXPECT_EQ(m_workspace.displayName(path), displayName) << name.toStdString();
        EXPECT_TRUE(m_workspace.fileExists(path));
    }
    const QString pipe = m_folder.filePath(u"pipe.desktop"_s);
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_FALSE(m_workspace.isApplication(pipe));
    EXPECT_FALSE(m_workspace.isApplication(m_folder.path()));
}

TEST_F(GioWorkspaceTest, ListsWhatTheMenusShow)
{
    const QString folder = dataFolder.filePath(u"applications/listed"_s);
    const std::tuple<const char*, const char*, const char*> entries[] = {
        { "zebra", "Name=zebra\n", "Exec=true\n" },
        { "one", "Name=Éclair b\n", "Exec=true\n" },
        { "two", "Name=eclair A\n", "Exec=true\n" },
        { "deep/three", "Name=Three\nName[xx]=apfel\n", "Exec=true\n" },
        { "nodisplay", "Name=A\nNoDisplay=true\n", "Exec=true\n" },
        { "hidden", "Name=B\nHidden=true\n", "Exec=true\n" },
        { "elsewhere", "Name=C\nOnlyShowIn=Kestro-Test;\n", "Exec=true\n" },
        { "gone", "Name=D\n", "Exec=/nonexistent/x\n" },
        { "nameless", "", "Exec=true\n" },
    };
    QDir().mkpath(folder + u"/deep"_s);
    for (const auto& [file, name, command] : entries)
        writeFile(u"%1/%2.desktop"_s.arg(folder, QLatin1String(file)),
            QByteArray("[Desktop Entry]\nType=Application\n") + name + command);
    QStringList names;
    QStringList paths;
    for (const Application& application : m_workspace.applications()) {
        if (!application.path.startsWith(folder))
            continue;
        names.append(application.name);
        paths.append(QDir(folder).relativeFilePath(application.path));
    }
    EXPECT_THAT(names, testing::ElementsAre(u"apfel"_s, u"eclair A"_s, u"Éclair b"_s, u"zebra"_s));
    EXPECT_EQ(paths.value(0), u"deep/three.desktop"_s);
    QDir(folder).removeRecursively();
}

TEST_F(GioWorkspaceTest, DrawsIconsFromFilesAndThemes)
{
    QImage picture(200, 100, QImage::Format_ARGB32);
    picture.fill(Qt::red);
    const QString wide = m_folder.filePath(u"wide.png"_s);
    const QString small = m_folder.filePath(u"small.png"_s);
    const QString longStrip = m_folder.filePath(u"long.png"_s);
    const QString theme = dataFolder.filePath(u"icons/hicolor"_s);
    QDir().mkpath(theme + u"/48x48/apps"_s);
    ASSERT_TRUE(picture.save(wide) && picture.copy(0, 0, 20, 20).save(small) && picture.scaled(3000, 1).save(longStrip)
        && picture.copy(0, 0, 48, 48).save(theme + u"/48x48/apps/themed.png"_s));
    writeFile(theme + u"/index.theme"_s,
        "[Icon Theme]\nName=hicolor\nDirectories=48x48/apps\n[48x48/apps]\nSize=48\nType=Fixed\n");
    QIcon::setThemeSearchPaths({ dataFolder.filePath(u"icons"_s) });
    const std::pair<QString, QSize> cases[] = {
        { wide, { 64, 32 } },
        { small, { 20, 20 } },
        { write(u"drawing.svg"_s, R"(<svg xmlns="http://www.w3.org/2000/svg" width="10" height="10">
            <rect width="10" height="10" fill="red"/></svg>)"),
            { 64, 64 } },
        { u"themed"_s, { 48, 48 } },
        { u"no-such-icon"_s, { 0, 0 } },
        { m_folder.path(), { 0, 0 } },
        { write(u"broken.png"_s, "not a picture"), { 0, 0 } },
        { longStrip, { 0, 0 } },
        { write(u"huge.svg"_s, "<svg width='10' height='10'/>" + QByteArray(9 << 20, ' ')), { 0, 0 } },
    };
    int number = 0;
    for (const auto& [icon, size] : cases) {
        SCOPED_TRACE(icon.toStdString());
        const QByteArray entry = app + "Exec=true\nIcon=" + icon.toUtf8() + '\n';
        const QImage image = m_workspace.icon(write(u"app%1.desktop"_s.arg(++number), entry), 64);
        EXPECT_EQ(image.size(), size);
        EXPECT_TRUE(image.isNull() || image.pixelColor(image.rect().center()) == QColor(Qt::red));
    }
}

TEST_F(GioWorkspaceTest, KeepsNamesAndIconsUntilAFileBehindThemChanges)
{
    QImage picture(8, 8, QImage::Format_ARGB32);
    const auto paint = [&](Qt::GlobalColor colour) {
        picture.fill(colour);
        ASSERT_TRUE(picture.save(m_folder.filePath(u"icon.png"_s)));
    };
    paint(Qt::red);
    const QByteArray entry = "Exec=true\nIcon=" + QFile::encodeName(m_folder.filePath(u"icon.png"_s)) + '\n';
    const QString path = write(u"app.desktop"_s, app + entry);
    const QString later = m_folder.filePath(u"deep/folder/later.desktop"_s);
    const auto told = [&] {
        return std::tuple(m_workspace.displayName(path).value_or(QString()), m_workspace.displayName(later).has_value(),
            m_workspace.icon(path, 8).pixelColor(0, 0));
    };
    const std::tuple red(u"App"_s, false, QColor(Qt::red));
    EXPECT_EQ(told(), red);
    settle();

    QSignalSpy changes(&m_workspace, &Workspace::changed);
    write(u"something-else.desktop"_s, app + entry);
    settle();
    EXPECT_EQ(m_workspace.icon(path, 8).cacheKey(), m_workspace.icon(path, 8).cacheKey());
    EXPECT_EQ(changes.size(), 0) << "a file that was not asked about";

    const std::pair<std::function<void()>, decltype(red)> cases[] = {
        { [&] { paint(Qt::blue); }, { u"App"_s, false, QColor(Qt::blue) } },
        { [&] { writeFile(path, app + "Name[xx]=Neu\n" + entry); }, { u"Neu"_s, false, QColor(Qt::blue) } },
        { [&] {
             QDir(m_folder.path()).mkpath(u"deep/folder"_s);
             writeFile(later, app + entry);
         },
            { u"Neu"_s, true, QColor(Qt::blue) } },
        { [&] { QDir(m_folder.filePath(u"deep"_s)).removeRecursively(); }, { u"Neu"_s, false, QColor(Qt::blue) } },
        { [&] {
             QFile::rename(path, path + u'~');
             write(u"new"_s, app + entry);
             QFile::rename(m_folder.filePath(u"new"_s), path);
         },
            { u"App"_s, false, QColor(Qt::blue) } },
    };
    for (const auto& [change, expected] : cases) {
        change();
        EXPECT_TRUE(waitFor([&, &expected = expected] { return !changes.isEmpty() && told() == expected; }));
        settle();
        changes.clear();
    }
}

TEST_F(GioWorkspaceTest, StartsApplicationsInASessionOfTheirOwn)
{
    const QString trace = m_folder.filePath(u"trace"_s);
    const QString script = write(u"script"_s,
        "echo $(ps -o sid= -p $$) ${DESKTOP_STARTUP_ID-none} $GIO_LAUNCHED_DESKTOP_FILE > \"$1.part\"\n"
        "mv \"$1.part\" \"$1\"\n");
    const QString path = write(u"app.desktop"_s, app + u"Exec=sh \"%1\" \"%2\" %U\n"_s.arg(script, trace).toUtf8());
    qputenv("DESKTOP_STARTUP_ID", "ours");
    EXPECT_EQ(open(path), u"started"_s);
    qunsetenv("DESKTOP_STARTUP_ID");
    ASSERT_TRUE(waitFor([&] { return QFile::exists(trace); }));
    const QByteArrayList words = contentOf(trace).trimmed().split(' ');
    EXPECT_NE(words[0].toInt(), ::getsid(0));
    EXPECT_THAT(words.mid(1), testing::ElementsAre("none", QFile::encodeName(path)));
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "a child of ours was left";
    EXPECT_EQ(errno, ECHILD);
}

TEST_F(GioWorkspaceTest, SaysWhatItCannotDo)
{
    const QString missing = m_folder.filePath(u"missing.desktop"_s);
    EXPECT_EQ(open(missing), u"there is no such file"_s);
    EXPECT_EQ(open(write(u"gone.desktop"_s, app + "Exec=/nonexistent/x\n")),
        u"it is not an application that can be started"_s);
    EXPECT_EQ(open(write(u"noexec.desktop"_s, app)), u"Desktop file didn’t specify Exec field"_s);
    EXPECT_NE(open(write(u"odd.kestro-odd"_s, "x")), u"started"_s);
    for (const char* const url : { "kestro-none://x", "relative/path", "" })
        EXPECT_FALSE(m_workspace.openUrl(QUrl(QLatin1String(url)))) << url;
    EXPECT_FALSE(m_workspace.moveToTrash(missing));
    // Where temporary files are on a disk of their own there may be no trash for them: what counts is a true answer.
    const QString file = write(u"file"_s, "x");
    const bool moved = m_workspace.moveToTrash(file);
    EXPECT_NE(m_workspace.fileExists(file), moved);
}

TEST_F(GioWorkspaceTest, OpensAddressesWithTheirApplication)
{
    const QString trace = dataFolder.filePath(u"opened"_s);
    EXPECT_TRUE(m_workspace.openUrl(QUrl(u"kestro-test://a/b%20c?d=e"_s)));
    ASSERT_TRUE(waitFor([&] { return QFile::exists(trace); }));
    EXPECT_EQ(contentOf(trace), "kestro-test://a/b%20c?d=e\n");
}

} // namespace
} // namespace kestro
