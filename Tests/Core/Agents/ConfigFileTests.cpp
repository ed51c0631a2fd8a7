#include "KestroCore/Agents/ConfigFile.h"

#include "KestroCore/Agents/HookInstallerError.h"
#include "Tests/Core/Support/ChildProcess.h"
#include "Tests/Core/Support/FolderSnapshot.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>

namespace kestro {
namespace {

using namespace tests;

/// A home folder with a folder "conf" in it.
class ConfigFileTest : public testing::Test {
protected:
    ConfigFileTest()
    {
        qputenv("HOME", QFile::encodeName(m_home.path()));
        QDir(m_home.path()).mkdir(QStringLiteral("conf"));
    }
    ~ConfigFileTest() override { qputenv("HOME", m_homeBefore); }

    QString in(const QString& name) const { return m_home.filePath(name); }
    QString in(const char* name) const { return in(QLatin1String(name)); }
    QString file() const { return in("conf/a.json"); }
    FolderState conf() const { return snapshot(in("conf")); }
    void link(const QByteArray& target, const char* name) const
    {
        ASSERT_EQ(symlink(target.constData(), QFile::encodeName(in(name)).constData()), 0);
    }
    /// Gives all of the home folder to nobody, so that a child that became nobody may work there.
    void giveToNobody() const
    {
        if (geteuid() != 0)
            return;
        for (const char* name : { "", "conf", "conf/a.json" })
            (void)!chown(QFile::encodeName(in(name)).constData(), nobody, nobody);
    }

private:
    QByteArray m_homeBefore = qgetenv("HOME");
    QTemporaryDir m_home;
};

ConfigFile::Transform giving(const char* bytes)
{
    return [bytes](const std::optional<QByteArray>&, const QString&) { return QByteArray(bytes); };
}

/// The description of what `update` throws, or "".
QString failure(const QString& path, const ConfigFile::Transform& transform = giving("{\"new\":1}"))
{
    try {
        ConfigFile::update(path, transform);
        return {};
    } catch (const StorageError& error) {
        return error.description();
    }
}

TEST_F(ConfigFileTest, WritesOnlyWhatChangesTheContent)
{
    const std::tuple<const char*, const char*, const char*, bool> cases[] = {
        { "beyond what a double tells apart", "{\"a\":9007199254740992}", "{\"a\":9007199254740993}", true },
        { "order and layout", "{\"a\":1,\"b\":2}", "{\r\n \"b\" : 2, \"a\" : 1 }\r\n", false },
        { "byte order mark", "\xEF\xBB\xBF{\"a\":1}", "{\"a\":1}", false },
        { "escapes", "{\"a\\u002f\":\"\\u00e9\"}", "{\"a/\":\"é\"}", false },
        { "empty and an empty object", "", "{}", false },
        { "an empty object and nothing", "{}", "", false },
        { "empty and more", "", "{\"a\":1}", true },
        { "a doubled key", "{\"a\":1,\"a\":2}", "{\"a\":2}", false },
        { "order in an array", "{\"a\":[1,2]}", "{\"a\":[2,1]}", true },
        { "odd keys", "{\"\":1,\"/ \\\"é\\u0000\":2}", "{\"\":1}", true },
    };
    for (const auto& [name, before, after, written] : cases) {
        SCOPED_TRACE(name);
        writeFile(file(), before);
        writeFile(in("conf/.a.json.kestro.tmp"), "a leftover");
        writeFile(in("conf/.a.json.kestro.bak.kestro.tmp"), "a leftover");
        QFile::remove(file() + QStringLiteral(".kestro.bak"));
        ConfigFile::update(file(), giving(after));
        const FolderState unchanged{ { "a.json", { before, 0640 } } };
        const FolderState changed{ { "a.json", { after, 0640 } }, { "a.json.kestro.bak", { before, 0640 } } };
        EXPECT_EQ(conf(), written ? changed : unchanged);
    }
}

TEST_F(ConfigFileTest, LeavesTheFileToTheTransform)
{
    struct Mine { };
    const auto refuse = [](const auto&, const auto&) -> std::optional<QByteArray> { throw Mine(); };
    const auto expectNothing = [](const auto& bytes, const QString& display) {
        EXPECT_EQ(bytes, std::nullopt);
        EXPECT_EQ(display, QStringLiteral("~/missing/b.json"));
        return std::optional<QByteArray>();
    };
    ConfigFile::update(in("missing/b.json"), expectNothing);
    EXPECT_FALSE(QDir(in("missing")).exists());
    writeFile(file(), "not JSON");
    EXPECT_THROW(ConfigFile::update(file(), refuse), Mine);
    EXPECT_EQ(failure(file(),
                  [](const auto& bytes, const auto&) {
                      EXPECT_EQ(bytes, QByteArray("not JSON"));
                      return std::optional<QByteArray>();
                  }),
        QString());
    EXPECT_EQ(conf(), (FolderState{ { "a.json", { "not JSON", 0640 } } }));
}

TEST_F(ConfigFileTest, KeepsModeAndOwnerOnFileAndBackup)
{
    for (const unsigned mode : { 0600U, 0400U, 0666U, 0755U }) {
        SCOPED_TRACE(mode);
        writeFile(file() + QStringLiteral(".kestro.bak"), "{\"older\":1}", 0604);
        writeFile(file(), "{}", mode);
        giveToNobody();
        ConfigFile::update(file(), giving("{\"a\":1}"));
        EXPECT_EQ(
            conf(), (FolderState{ { "a.json", { "{\"a\":1}", mode } }, { "a.json.kestro.bak", { "{}", mode } } }));
        for (const char* name : { "conf/a.json", "conf/a.json.kestro.bak" })
            EXPECT_EQ(QFileInfo(in(name)).ownerId(), geteuid() == 0 ? nobody : geteuid()) << name;
    }
    const mode_t before = umask(027);
    ConfigFile::update(in("x/y/b.json"), giving("{}"));
    umask(before);
    EXPECT_EQ(snapshot(in("x/y")), (FolderState{ { "b.json", { "{}", 0640 } } }));
}

TEST_F(ConfigFileTest, FollowsSymbolicLinks)
{
    const std::tuple<const char*, QByteArray, const char*> cases[] = {
        { "absolute", QFile::encodeName(file()), "~/conf/a.json" },
        { "upwards", "conf/../conf/./a.json", "~/conf/a.json" },
        { "chain", "second", "~/conf/a.json" },
        { "through a linked folder", "folder/a.json", "~/conf/a.json" },
        { "to nothing in a folder", "conf/new.json", "~/conf/new.json" },
        { "to nothing in no folder", "nowhere/far/new.json", "~/nowhere/far/new.json" },
        { "through a folder that leads to nothing", "unmade/new.json", "~/made/new.json" },
    };
    link("conf/a.json", "second");
    link("conf", "folder");
    link("made", "unmade");
    for (const auto& [name, target, display] : cases) {
        SCOPED_TRACE(name);
        writeFile(file(), "{}");
        QFile::remove(file() + QStringLiteral(".kestro.bak"));
        QFile::remove(in("link"));
        link(target, "link");
        const QString real = QString::fromLatin1(display).replace(QLatin1Char('~'), in(""));
        const bool existed = QFile::exists(real);
        QString shown;
        ConfigFile::update(in("link"), [&](const auto&, const QString& path) {
            shown = path;
            return QByteArray("{\"a\":1}");
        });
        EXPECT_EQ(shown, QLatin1String(display));
        EXPECT_TRUE(QFileInfo(in("link")).isSymLink());
        EXPECT_EQ(readFile(real), "{\"a\":1}");
        EXPECT_EQ(QFile::exists(real + QStringLiteral(".kestro.bak")), existed);
        EXPECT_FALSE(QFile::exists(in("link.kestro.bak")));
    }
    link("b", "a");
    link("a", "b");
    EXPECT_TRUE(failure(in("a")).endsWith(QLatin1String("its symbolic links lead round in a circle.")));
    EXPECT_TRUE(QFileInfo(in("a")).isSymLink());
}

TEST_F(ConfigFileTest, RefusesWhatIsNoConfiguration)
{
    const QByteArray cases[] = { "[]", "{\"a\":", " \n", "{\"a\":\"\xFF\"}",
        "{}" + QByteArray(ConfigFile::maxSize, ' ') };
    for (const QByteArray& bytes : cases) {
        SCOPED_TRACE(bytes.left(10).toStdString());
        writeFile(file(), bytes);
        EXPECT_EQ(failure(file()), QStringLiteral("Couldn't update ~/conf/a.json — invalid JSON"));
        EXPECT_EQ(conf(), (FolderState{ { "a.json", { bytes, 0640 } } }));
    }
    writeFile(file(), "{}");
    EXPECT_EQ(failure(file(), giving("[]")), QStringLiteral("Couldn't update ~/conf/a.json — invalid JSON"));

    EXPECT_EQ(failure(in("conf")), QStringLiteral("Couldn't update ~/conf — invalid JSON"));
    EXPECT_EQ(failure(QStringLiteral("/dev/zero")), QStringLiteral("Couldn't update /dev/zero — invalid JSON"));
}

TEST_F(ConfigFileTest, ReportsWhatPermissionsForbid)
{
    const std::tuple<const char*, mode_t, mode_t, const char*, const char*> cases[] = {
        { "a folder that cannot be written to", 0500, 0600, "conf/a.json",
            "Couldn't save “a.json.kestro.bak” in “conf” — you don't have permission." },
        { "a new file in it", 0500, 0600, "conf/new.json",
            "Couldn't save “new.json” in “conf” — you don't have permission." },
        { "a new folder in it", 0500, 0600, "conf/x/new.json",
            "Couldn't create the folder “x” in “conf” — you don't have permission." },
        { "a folder that cannot be entered", 0000, 0600, "conf/a.json",
            "Couldn't save “a.json” in “conf” — you don't have permission." },
        { "a file that cannot be read", 0700, 0000, "conf/a.json", "Couldn't update ~/conf/a.json — invalid JSON" },
        { "one that cannot be listed takes the file", 0300, 0600, "conf/new.json", "" },
    };
    for (const auto& [name, folderMode, fileMode, path, error] : cases) {
        SCOPED_TRACE(name);
        writeFile(file(), "{}", fileMode);
        FolderState expected = conf();
        giveToNobody();
        ASSERT_EQ(chmod(QFile::encodeName(in("conf")).constData(), folderMode), 0);
        EXPECT_TRUE(inChild([&, path = in(path), text = QString::fromUtf8(error)] {
            dropPrivileges();
            umask(027);
            // What makes the rest a proof: the plain way is closed too.
            EXPECT_FALSE(QFile(path).open(QIODevice::ReadOnly) && QDir(in("conf")).mkdir(QStringLiteral("proof")));
            EXPECT_EQ(failure(path), text);
        }));
        chmod(QFile::encodeName(in("conf")).constData(), 0700);
        QDir(in("conf")).rmdir(QStringLiteral("proof"));
        if (*error == 0)
            expected["new.json"] = { "{\"new\":1}", 0640 };
        EXPECT_EQ(conf(), expected);
    }
}

/// A disk of 16 pages at `folder`, for this process alone. False where the system does not allow it, as for all but
/// root.
bool mountSmallDisk(const QString& folder)
{
    return unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0
        && mount("none", QFile::encodeName(folder).constData(), "tmpfs", 0, "size=64k,mode=0777") == 0;
}

TEST_F(ConfigFileTest, LeavesAllAsItWasOnAFullDisk)
{
    const QByteArray before = "{\"a\":\"" + QByteArray(9000, 'a') + "\"}";
    const QByteArray after = "{\"b\":\"" + QByteArray(13'000, 'b') + "\"}";
    // From no room at all over room for the backup alone to room for both.
    for (int free = 0; free <= 8; ++free) {
        SCOPED_TRACE(free);
        EXPECT_TRUE(inChild([&] {
            const bool small = mountSmallDisk(in("conf"));
            writeFile(file(), before);
            if (small) {
                QFile filler(in("conf/filler"));
                ASSERT_TRUE(filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
                filler.write(QByteArray(13 * 4096, 'x'));
                ASSERT_TRUE(filler.resize((13 - free) * 4096));
            } else {
                limitFileSize(static_cast<rlim_t>(free) * 2000);
            }
            const QString error = failure(file(), giving(after.constData()));
            FolderState expected = conf();
            const bool saved = error.isEmpty();
            EXPECT_TRUE(saved || error.endsWith(QLatin1String(small ? "the disk is full." : "the file is too large.")))
                << error.toStdString();
            EXPECT_EQ(readFile(file()), saved ? after : before);
            expected.erase("filler");
            expected.erase("a.json");
            if (saved || !expected.empty()) {
                EXPECT_EQ(expected, (FolderState{ { "a.json.kestro.bak", { before, 0640 } } }));
            }
            ASSERT_EQ(saved, free >= 7) << "room for three pages of backup and four of file";
        }));
    }
}

} // namespace
} // namespace kestro
