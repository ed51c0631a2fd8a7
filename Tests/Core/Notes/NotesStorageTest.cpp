#include "KestroCore/Notes/NotesStorage.h"
#include "KestroCore/Support/StorageError.h"
#include "Tests/Core/Support/ChildProcess.h"
#include "Tests/Core/Support/FolderSnapshot.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace kestro {
namespace {

using namespace tests;

class NotesStorageTest : public testing::Test {
protected:
    QString in(const char* name) const { return m_home.filePath(QLatin1String(name)); }
    FolderState files() const { return snapshot(m_home.path()); }
    QString failure(const std::function<void()>& work) const
    {
        try {
            work();
            return {};
        } catch (const StorageError& error) {
            return error.description();
        }
    }

    QTemporaryDir m_home;
    const NotesStorage storage{ in("notes.txt") };
};

TEST_F(NotesStorageTest, LoadsWhatIsThere)
{
    EXPECT_EQ(storage.load(), QString());
    EXPECT_TRUE(files().empty()) << "reading creates nothing";
    const std::pair<QByteArray, QString> table[] = {
        { "", {} },
        { "milk\n\teggs\n", QStringLiteral("milk\n\teggs\n") },
        { "caf\xC3\xA9 \xF0\x9F\x91\x8B", QStringLiteral("café 👋") },
        { "\xEF\xBB\xBFmarked", QStringLiteral("marked") },
        { QByteArray("a\0b", 3), QStringLiteral("a") + QChar(0) + u'b' },
    };
    for (const auto& [bytes, text] : table) {
        writeFile(in("notes.txt"), bytes);
        EXPECT_EQ(storage.load(), text) << bytes.toStdString();
        EXPECT_EQ(files(), (FolderState{ { "notes.txt", { bytes, 0640 } } }));
    }
}

TEST_F(NotesStorageTest, SetsAsideWhatIsNotText)
{
    for (const QByteArray& bytes : { QByteArray("\xFF\xFE"), QByteArray("cut off \xC3"), QByteArray("\xED\xA0\x80") }) {
        writeFile(in("notes.txt"), bytes);
        EXPECT_EQ(storage.load(), QString());
        EXPECT_EQ(files(), (FolderState{ { "notes.corrupt.txt", { bytes, 0640 } } }));
    }
    ASSERT_TRUE(QDir(m_home.path()).mkdir(QStringLiteral("taken")));
    QFile::remove(in("notes.corrupt.txt"));
    ASSERT_TRUE(QFile::rename(in("taken"), in("notes.corrupt.txt")));
    writeFile(in("notes.txt"), "\xFF");
    EXPECT_TRUE(failure([&] { storage.load(); }).contains(u"“notes.corrupt.txt”"));
    EXPECT_EQ(readFile(in("notes.txt")), "\xFF");
}

TEST_F(NotesStorageTest, LeavesAloneWhatItCannotRead)
{
    const auto expectRefused = [&](const char* reason) {
        const QString text = failure([&] { storage.load(); });
        EXPECT_TRUE(text.contains(QLatin1String(reason))) << text.toStdString() << " for " << reason;
    };
    chmod(QFile::encodeName(m_home.path()).constData(), 0755);
    writeFile(in("notes.txt"), "secret", 0);
    EXPECT_TRUE(inChild([&] {
        dropPrivileges();
        expectRefused("you don't have permission");
    }));
    EXPECT_EQ(files(), (FolderState{ { "notes.txt", { "secret", 0 } } }));
    QFile::resize(in("notes.txt"), (64 << 20) + 1);
    expectRefused("the file is too large");
    QFile::remove(in("notes.txt"));
    ASSERT_TRUE(QDir(m_home.path()).mkdir(QStringLiteral("notes.txt")));
    expectRefused("it isn't an ordinary file");
    ASSERT_TRUE(QDir(m_home.path()).rmdir(QStringLiteral("notes.txt")));
    ASSERT_TRUE(QFile::link(in("unmounted/notes.txt"), in("notes.txt")));
    expectRefused("the folder is missing");
}

TEST_F(NotesStorageTest, SavesForTheUserAloneAndBehindALink)
{
    const NotesStorage deep = NotesStorage::under(m_home.path());
    deep.save(QStringLiteral("first"));
    deep.save(QStringLiteral("zwei ✓"));
    const QString folder = in("Library/Application Support");
    EXPECT_EQ(snapshot(folder), (FolderState{ { "Kestro", { {}, 0700 } } }));
    EXPECT_EQ(snapshot(folder + QStringLiteral("/Kestro")), (FolderState{ { "notes.txt", { "zwei ✓", 0600 } } }));

    writeFile(in("synced.txt"), "before");
    ASSERT_TRUE(QFile::link(in("synced.txt"), in("notes.txt")));
    storage.save(QStringLiteral("after"));
    EXPECT_EQ(QFile::symLinkTarget(in("notes.txt")), in("synced.txt"));
    EXPECT_EQ(readFile(in("synced.txt")), "after");
}

TEST(NotesLength, CountsCharactersAsUsersDo)
{
    const QString family = QStringLiteral("👨‍👩‍👧‍👦");
    const QString accent = QStringLiteral("e\u0301");
    const std::tuple<const char*, QString, QString> table[] = {
        { "just fits", QStringLiteral("abc"), QStringLiteral("abc") },
        { "one more", QStringLiteral("abcd"), QStringLiteral("abc") },
        { "surrogates", QStringLiteral("👋👋👋👋"), QStringLiteral("👋👋👋") },
        { "joined emoji", family + family + family + u'x', family + family + family },
        { "combining", accent + accent + accent + u'x', accent + accent + accent },
        { "a line end of two", QStringLiteral("a\r\nbc"), QStringLiteral("a\r\nb") },
    };
    for (const auto& [what, text, kept] : table) {
        EXPECT_EQ(NotesStorage::capped(text, 3), kept) << what;
        EXPECT_EQ(NotesStorage::length(kept), std::min<qsizetype>(NotesStorage::length(text), 3)) << what;
    }
}

} // namespace
} // namespace kestro
