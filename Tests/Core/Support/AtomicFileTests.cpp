#include "KestroCore/Support/AtomicFile.h"

#include "KestroCore/Support/StorageError.h"
#include "Tests/Core/Support/ChildProcess.h"
#include "Tests/Core/Support/FolderSnapshot.h"

#include <QTemporaryDir>
#include <fcntl.h>
#include <gtest/gtest.h>

namespace kestro {
namespace {

using namespace tests;

class AtomicFileTest : public testing::Test {
protected:
    QString in(const char* name) const { return m_folder.filePath(QLatin1String(name)); }
    QByteArray native(const char* name) const { return QFile::encodeName(in(name)); }
    QString folder() const { return m_folder.path(); }

private:
    QTemporaryDir m_folder;
};

QString failure(const std::function<void()>& work)
{
    try {
        work();
        return {};
    } catch (const StorageError& error) {
        EXPECT_EQ(QString::fromUtf8(error.what()), error.description());
        return error.description();
    }
}

TEST_F(AtomicFileTest, SurvivesWhatTheSystemRefuses)
{
    // No error: it finds another way.
    const std::tuple<const char*, RefusedCall, const char*> cases[] = {
        { "a file system without nameless files", { SYS_openat, EOPNOTSUPP, O_TMPFILE }, "" },
        { "another's file", { SYS_fchown, EPERM }, "" },
        { "no modes", { SYS_fchmod, EPERM }, "" },
        { "no room for the entry", { SYS_linkat, ENOSPC }, "the disk is full" },
        { "no replacing", { SYS_renameat, EACCES }, "you don't have permission" },
        { "a failing disk", { SYS_fsync, EIO }, "the disk reported an error" },
        { "too many files", { SYS_openat, EMFILE }, "too many files are open" },
    };
    for (const auto& [name, call, error] : cases) {
        SCOPED_TRACE(name);
        writeFile(in("file"), "before");
        EXPECT_TRUE(inChild([&, refused = call, reason = QString::fromUtf8(error)] {
            refuse(refused);
            const AtomicFile::Attributes attributes{ 0640, AtomicFile::Owner{ 1, 1 } };
            const QString text = failure([&] { AtomicFile::replace(native("file"), "after", attributes); });
            EXPECT_EQ(text.contains(QStringLiteral("Couldn't save “file” in “")), !reason.isEmpty());
            EXPECT_TRUE(text.contains(reason)) << text.toStdString();
        }));
        const FileState unchanged{ "before", 0640 };
        const FileState changed{ "after", call.number == SYS_fchmod ? 0600U : 0640U };
        EXPECT_EQ(snapshot(folder()), (FolderState{ { "file", *error ? unchanged : changed } }));
    }
}

TEST_F(AtomicFileTest, LeavesNothingOfAWriteThatFailsHalfWay)
{
    for (const bool nameless : { true, false }) {
        SCOPED_TRACE(nameless);
        writeFile(in("file"), "before");
        EXPECT_TRUE(inChild([&] {
            if (!nameless)
                refuse({ SYS_openat, EOPNOTSUPP, O_TMPFILE });
            limitFileSize(1000);
            EXPECT_TRUE(failure([&] {
                AtomicFile::replace(native("file"), QByteArray(5000, 'x'), std::nullopt);
            }).contains(QLatin1String("the file is too large")));
        }));
        EXPECT_EQ(snapshot(folder()), (FolderState{ { "file", { "before", 0640 } } }));
    }
}

TEST_F(AtomicFileTest, ReplacesALinkAndNotWhatItLeadsTo)
{
    writeFile(in("real"), "real");
    ASSERT_EQ(symlink("real", native("link").constData()), 0);
    AtomicFile::replace(native("link"), "new", AtomicFile::Attributes{});
    EXPECT_EQ(snapshot(folder()), (FolderState{ { "link", { "new", 0600 } }, { "real", { "real", 0640 } } }));
}

TEST_F(AtomicFileTest, ReadsOrdinaryFilesAlone)
{
    writeFile(in("file"), QByteArray(100'000, 'x'), 0604);
    const auto contents = AtomicFile::read(native("file"), 100'000);
    ASSERT_TRUE(contents);
    EXPECT_EQ(contents->bytes, QByteArray(100'000, 'x'));
    EXPECT_EQ(contents->attributes.mode, 0604U);
    EXPECT_EQ(contents->attributes.owner, (AtomicFile::Owner{ geteuid(), getegid() }));
    EXPECT_FALSE(AtomicFile::read(native("missing"), 10));
    EXPECT_FALSE(AtomicFile::read(native("file/below"), 10));

    ASSERT_EQ(mkfifo(native("pipe").constData(), 0600), 0);
    const std::pair<QByteArray, const char*> unreadable[] = { { native("file"), "the file is too large" },
        { native("pipe"), "it isn't an ordinary file" }, { QFile::encodeName(folder()), "it isn't an ordinary file" },
        { "/dev/zero", "it isn't an ordinary file" }, { '/' + QByteArray(300, 'n'), "its name is too long" } };
    for (const auto& [path, reason] : unreadable) {
        SCOPED_TRACE(path.toStdString());
        const QString text = failure([&] { AtomicFile::read(path, 99'999); });
        EXPECT_TRUE(text.startsWith(QStringLiteral("Couldn't read “"))) << text.toStdString();
        EXPECT_TRUE(text.endsWith(QLatin1String(reason) + QLatin1Char('.'))) << text.toStdString();
    }
}

TEST_F(AtomicFileTest, SaysWhatStandsInTheWay)
{
    writeFile(in("file"), "");
    ASSERT_EQ(mkdir(native("folder").constData(), 0700), 0);
    const std::pair<QString, QString> texts[] = {
        { failure([&] { AtomicFile::createFolder(native("file/a")); }),
            QStringLiteral("Couldn't create the folder “a” in “file” — a file stands where a folder should be.") },
        { failure([&] { AtomicFile::replace(native("missing/a"), "", std::nullopt); }),
            QStringLiteral("Couldn't save “a” in “missing” — the folder is missing.") },
        { failure([&] { AtomicFile::replace(native("folder"), "", std::nullopt); }),
            QStringLiteral("Couldn't save “folder” in “%1” — a folder of that name is in the way.")
                .arg(QDir(folder()).dirName()) },
    };
    for (const auto& [text, expected] : texts)
        EXPECT_EQ(text, expected);
    AtomicFile::createFolder(native("folder/b/c"));
    AtomicFile::createFolder(native("folder/b/c"));
    EXPECT_TRUE(QDir(in("folder/b/c")).exists());
}

} // namespace
} // namespace kestro
