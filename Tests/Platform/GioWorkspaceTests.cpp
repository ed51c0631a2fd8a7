#include "Helpers.h"
#include "Platforms/Linux/System/GioWorkspace.h"

#include <QDir>
#include <QIcon>
#include <cerrno>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace kestro {
namespace {

using namespace test;

class GioWorkspaceTest : public testing::Test {
protected:
    // GIO looks at these once: they are set before its first use, for the whole program.
    static void SetUpTestSuite()
    {
        qputenv("XDG_DATA_HOME", QFile::encodeName(s_data.path()));
        qputenv("XDG_DATA_DIRS", QFile::encodeName(s_data.path()));
        qputenv("LANGUAGE", "xx");
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(s_data.path()));
        // Without an address GIO would start a bus and leave it running.
        if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS"))
            qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");

        QDir(s_data.path()).mkdir(QStringLiteral("applications"));
        writeFile(s_data.filePath(QStringLiteral("applications/opener.desktop")),
            "[Desktop Entry]\nType=Application\nName=Opener\nMimeType=x-scheme-handler/kestro-test;\nExec=sh "
                + QFile::encodeName(s_data.filePath(QStringLiteral("opener"))) + " %u\n");
        writeFile(s_data.filePath(QStringLiteral("opener")),
            "cd \"${0%/*}\"; echo \"$1\" > opened.part; mv opened.part opened\n");
        writeFile(s_data.filePath(QStringLiteral("mimeapps.list")),
            "[Default Applications]\nx-scheme-handler/kestro-test=opener.desktop\n");
    }

    QString write(const QString& name, const QByteArray& content) const
    {
        const QString path = m_folder.filePath(name);
        writeFile(path, content);
        return path;
    }
    QString entry(const QByteArray& keys, const QString& name = QStringLiteral("app.desktop")) const
    {
        return write(name, "[Desktop Entry]\nType=Application\nName=App\n" + keys);
    }
    // The reason, or "started".
    QString open(const QString& path)
    {
        QString outcome = QStringLiteral("started");
        m_workspace.openApplication(path, [&](const QString& error) { outcome = error; });
        return outcome;
    }

    static inline const QTemporaryDir s_data;
    const QTemporaryDir m_folder;
    GioWorkspace m_workspace;
};

TEST_F(GioWorkspaceTest, KnowsAnApplicationFromAnythingElse)
{
    const struct {
        const char* name;
        QByteArray content;
        std::optional<QString> displayName;
    } cases[] = {
        { "a.desktop", "[Desktop Entry]\nType=Application\nName=Files\nExec=true\n", QStringLiteral("Files") },
        { "utf8.desktop", "[Desktop Entry]\nType=Application\nName=Caf\xC3\xA9\nExec=true %U\n",
            QStringLiteral("Caf\u00e9") },
        { "tongues.desktop", "[Desktop Entry]\nType=Application\nName=Files\nName[xx]=Dateien\nExec=\"true\" %U\n",
            QStringLiteral("Dateien") },
        { "try.desktop", "[Desktop Entry]\nType=Application\nName=X\nExec=true\nTryExec=no-such-program\n",
            std::nullopt },
        { "link.desktop", "[Desktop Entry]\nType=Link\nName=Link\nURL=https://example.org\n", std::nullopt },
        { "hidden.desktop", "[Desktop Entry]\nType=Application\nName=X\nExec=true\nHidden=true\n", std::nullopt },
        { "gone.desktop", "[Desktop Entry]\nType=Application\nName=X\nExec=/nonexistent/x\n", std::nullopt },
        { "notype.desktop", "[Desktop Entry]\nName=X\nExec=true\n", std::nullopt },
        { "garbage.desktop", "\x01\xFF[[[", std::nullopt },
        { "empty.desktop", "", std::nullopt },
        { "huge.desktop", "[Desktop Entry]\nType=Application\nName=X\nExec=true\n" + QByteArray(2 << 20, '#'),
            std::nullopt },
        { "a.txt", "[Desktop Entry]\nType=Application\nName=X\nExec=true\n", std::nullopt },
    };
    for (const auto& c : cases) {
        const QString path = write(QLatin1String(c.name), c.content);
        EXPECT_EQ(m_workspace.isApplication(path), c.displayName.has_value()) << c.name;
        EXPECT_EQ(m_workspace.displayName(path), c.displayName) << c.name;
        EXPECT_TRUE(m_workspace.fileExists(path));
    }
    const QString pipe = m_folder.filePath(QStringLiteral("pipe.desktop"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    EXPECT_FALSE(m_workspace.isApplication(pipe));
    EXPECT_FALSE(m_workspace.isApplication(m_folder.path()));
    EXPECT_FALSE(m_workspace.fileExists(m_folder.filePath(QStringLiteral("missing"))));
}

TEST_F(GioWorkspaceTest, DrawsIconsFromFilesAndThemes)
{
    const QString wide = m_folder.filePath(QStringLiteral("wide.png"));
    QImage picture(200, 100, QImage::Format_ARGB32);
    picture.fill(Qt::red);
    ASSERT_TRUE(picture.save(wide));
    const QString small = m_folder.filePath(QStringLiteral("small.png"));
    ASSERT_TRUE(picture.copy(0, 0, 20, 20).save(small));
    const QString drawing = write(QStringLiteral("drawing.svg"),
        R"(<svg xmlns="http://www.w3.org/2000/svg" width="10" height="10"><rect width="10" height="10" fill="red"/></svg>)");
    const QString theme = s_data.filePath(QStringLiteral("icons/hicolor"));
    QDir().mkpath(theme + QStringLiteral("/48x48/apps"));
    writeFile(theme + QStringLiteral("/index.theme"),
        "[Icon "
        "Theme]\nName=hicolor\nDirectories=48x48/apps\n[48x48/apps]\nSize=48\nType=Fixed\nContext=Applications\n");
    ASSERT_TRUE(picture.copy(0, 0, 48, 48).save(theme + QStringLiteral("/48x48/apps/themed.png")));
    QIcon::setThemeSearchPaths({ s_data.filePath(QStringLiteral("icons")) });

    const struct {
        QString icon;
        QSize size;
    } cases[] = {
        { wide, { 64, 32 } },
        { small, { 20, 20 } },
        { drawing, { 64, 64 } },
        { QStringLiteral("themed"), { 48, 48 } },
        { QStringLiteral("no-such-icon"), {} },
        { m_folder.path(), {} },
        { write(QStringLiteral("broken.png"), "not a picture"), {} },
    };
    for (const auto& c : cases) {
        const QImage image = m_workspace.icon(entry("Exec=true\nIcon=" + c.icon.toUtf8() + '\n'), 64);
        EXPECT_EQ(image.size(), c.size.isValid() ? c.size : QSize(0, 0)) << c.icon.toStdString();
        if (!image.isNull()) {
            EXPECT_EQ(image.pixelColor(image.rect().center()), QColor(Qt::red)) << c.icon.toStdString();
        }
    }
    EXPECT_TRUE(m_workspace.icon(m_folder.filePath(QStringLiteral("missing")), 64).isNull());
}

TEST_F(GioWorkspaceTest, StartsApplicationsInASessionOfTheirOwn)
{
    const QString trace = m_folder.filePath(QStringLiteral("trace"));
    const QString script = write(QStringLiteral("script"),
        "echo $(ps -o sid= -p $$) ${DESKTOP_STARTUP_ID-none} $GIO_LAUNCHED_DESKTOP_FILE > \"$1.part\"; mv \"$1.part\" "
        "\"$1\"\n");
    qputenv("DESKTOP_STARTUP_ID", "ours");
    const QString path =
        entry("Exec=sh \"" + QFile::encodeName(script) + "\" \"" + QFile::encodeName(trace) + "\" %U\n");
    EXPECT_EQ(open(path), QStringLiteral("started"));
    qunsetenv("DESKTOP_STARTUP_ID");
    ASSERT_TRUE(waitFor([&] { return QFile::exists(trace); }));
    const QByteArrayList words = contentOf(trace).trimmed().split(' ');
    ASSERT_EQ(words.size(), 3);
    EXPECT_NE(words[0].toInt(), ::getsid(0));
    EXPECT_EQ(words[1], "none");
    EXPECT_EQ(QFile::decodeName(words[2]), path);
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "a child of ours was left";
    EXPECT_EQ(errno, ECHILD);
}

TEST_F(GioWorkspaceTest, SaysWhyItCannotOpen)
{
    const struct {
        QString path;
        QString reason;
    } cases[] = {
        { m_folder.filePath(QStringLiteral("missing.desktop")), QStringLiteral("there is no such file") },
        { entry("Exec=/nonexistent/x\n"), QStringLiteral("it is not an application that can be started") },
        { entry({}, QStringLiteral("noexec.desktop")), QStringLiteral("Desktop file didn\u2019t specify Exec field") },
    };
    for (const auto& c : cases)
        EXPECT_EQ(open(c.path), c.reason);
    EXPECT_NE(open(write(QStringLiteral("odd.kestro-odd"), "x")), QStringLiteral("started"));
}

TEST_F(GioWorkspaceTest, OpensAddressesWithTheirApplication)
{
    const QString trace = s_data.filePath(QStringLiteral("opened"));
    EXPECT_TRUE(m_workspace.openUrl(QUrl(QStringLiteral("kestro-test://a/b%20c?d=e"))));
    ASSERT_TRUE(waitFor([&] { return QFile::exists(trace); }));
    EXPECT_EQ(contentOf(trace), "kestro-test://a/b%20c?d=e\n");

    for (const char* const url : { "kestro-none://x", "relative/path", "" })
        EXPECT_FALSE(m_workspace.openUrl(QUrl(QLatin1String(url)))) << url;
}

TEST_F(GioWorkspaceTest, MovesToTheTrash)
{
    EXPECT_FALSE(m_workspace.moveToTrash(m_folder.filePath(QStringLiteral("missing"))));
    // Where temporary files are on a disk of their own there may be no trash for them: what counts is a true answer.
    const QString file = write(QStringLiteral("file"), "x");
    const bool moved = m_workspace.moveToTrash(file);
    EXPECT_NE(QFile::exists(file), moved);
}

} // namespace
} // namespace kestro
