#include "Helpers.h"
#include "Platforms/Linux/System/PreferenceFile.h"

#include <QDir>
#include <QFileInfo>
#include <QSignalSpy>
#include <gmock/gmock.h>
#include <sys/stat.h>

namespace kestro {
namespace {

using namespace test;

class PreferenceFileTest : public testing::Test {
protected:
    const QTemporaryDir m_home;
    const QString m_folder = m_home.filePath(QStringLiteral("Library/Preferences"));
    const QString m_path = m_folder + QStringLiteral("/com.lumbra.ombrel.json");
    const QString m_corrupt = m_folder + QStringLiteral("/com.lumbra.ombrel.corrupt.json");
    RecordingLog m_log;
    std::unique_ptr<PreferenceFile> m_file;
    QStringList m_posts;

    // One entry a notification, its keys joined by commas.
    PreferenceFile& open()
    {
        m_file = std::make_unique<PreferenceFile>(m_path, m_log);
        QObject::connect(m_file.get(), &PreferenceStore::changed, m_file.get(),
            [this](const QStringList& keys) { m_posts.append(keys.join(QLatin1Char(','))); });
        return *m_file;
    }
    PreferenceFile& openOn(const QByteArray& content)
    {
        QDir().mkpath(m_folder);
        writeFile(m_path, content);
        return open();
    }
    void replaceFile(const QByteArray& content) const
    {
        writeFile(m_path + QStringLiteral("~"), content);
        ASSERT_EQ(::rename(QFile::encodeName(m_path + QStringLiteral("~")).constData(),
                      QFile::encodeName(m_path).constData()),
            0);
    }
    static uint mode(const QString& path)
    {
        struct stat info { };
        return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? info.st_mode & 07777U : 0;
    }
};

const QString a = QStringLiteral("a");
const QString b = QStringLiteral("b");

TEST_F(PreferenceFileTest, WritesOnceATurnForTheUserAlone)
{
    PreferenceFile& file = open();
    file.setValue(a, 1);
    file.setValue(b, QByteArray("x"));
    file.setValue(a, 2);
    EXPECT_EQ(file.value(a), QVariant(2.0));
    EXPECT_FALSE(QFile::exists(m_path));
    ASSERT_TRUE(waitFor([&] { return QFile::exists(m_path); }));
    EXPECT_EQ(contentOf(m_path), "{\n  \"a\": 2,\n  \"b\": {\"$data\":\"eA==\"}\n}\n");
    EXPECT_EQ(mode(m_path), 0600U);
    EXPECT_EQ(mode(m_folder), 0700U);
    EXPECT_EQ(mode(m_home.filePath(QStringLiteral("Library"))), 0700U);
    settle(); // our own write comes back from the watch
    EXPECT_THAT(m_posts, testing::ElementsAre(QStringLiteral("a,b")));
    EXPECT_EQ(QDir(m_folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).size(), 1);
}

TEST_F(PreferenceFileTest, PostsNothingForWhatDoesNotChange)
{
    PreferenceFile& file = openOn(R"({"a": 2, "b": true})");
    const auto before = QFileInfo(m_path).lastModified();
    file.setValue(a, 2);
    file.setValue(QStringLiteral("missing"), {});
    file.setValue(b, false);
    file.setValue(b, true);
    settle();
    EXPECT_TRUE(m_posts.isEmpty());
    EXPECT_EQ(contentOf(m_path), R"({"a": 2, "b": true})");
    EXPECT_EQ(QFileInfo(m_path).lastModified(), before);
}

TEST_F(PreferenceFileTest, FlushesAtTheEndWithoutTheLoop)
{
    open().setValue(a, true);
    m_file.reset();
    EXPECT_EQ(contentOf(m_path), "{\n  \"a\": true\n}\n");
}

TEST_F(PreferenceFileTest, MergesWithAnotherWriter)
{
    PreferenceFile& file = openOn(R"({"a": 1, "b": 1, "gone": 1})");
    file.setValue(a, 5);
    replaceFile(R"({"a": 2, "b": 2, "their": 123456789012345678901234567890})");
    file.flush();
    EXPECT_EQ(contentOf(m_path), "{\n  \"a\": 5,\n  \"b\": 2,\n  \"their\": 123456789012345678901234567890\n}\n");
    settle();
    EXPECT_EQ(file.value(b), QVariant(2.0));
    EXPECT_FALSE(file.value(QStringLiteral("gone")).isValid());
    EXPECT_THAT(m_posts, testing::ElementsAre(QStringLiteral("a,b,gone,their")));
}

TEST_F(PreferenceFileTest, TakesOverAnOutsideChangeOnce)
{
    PreferenceFile& file = openOn(R"({"a": 1, "b": 1, "c": 1, "t": true})");
    const QByteArray next = R"({"a": 1.0, "b": null, "c": 7, "t": 1, "new": "x"})";
    for (const bool inPlace : { false, true }) {
        writeFile(m_path, R"({"a": 1, "b": 1, "c": 1, "t": true})");
        settle();
        m_posts.clear();
        inPlace ? writeFile(m_path, next) : replaceFile(next);
        ASSERT_TRUE(waitFor([&] { return !m_posts.isEmpty(); }));
        settle();
        EXPECT_THAT(m_posts, testing::ElementsAre(QStringLiteral("b,c,new,t")));
        EXPECT_FALSE(file.value(b).isValid());
        EXPECT_EQ(contentOf(m_path), next);
    }
}

TEST_F(PreferenceFileTest, NoticesTheFirstFile)
{
    PreferenceFile& file = open();
    writeFile(m_path, R"({"a": "notch"})");
    ASSERT_TRUE(waitFor([&] { return file.value(a).isValid(); }));
    EXPECT_EQ(file.value(a), QVariant(QStringLiteral("notch")));
}

TEST_F(PreferenceFileTest, KeepsItsValuesWhileTheFileIsBrokenOrBrieflyAway)
{
    PreferenceFile& file = openOn(R"({"a": 1})");
    writeFile(m_path, R"({"a": 2, )");
    settle();
    EXPECT_EQ(file.value(a), QVariant(1.0));
    EXPECT_FALSE(QFile::exists(m_corrupt));
    QFile::remove(m_path);
    settle();
    EXPECT_EQ(file.value(a), QVariant(1.0));
    writeFile(m_path, R"({"a": 3})");
    ASSERT_TRUE(waitFor([&] { return file.value(a) == QVariant(3.0); }));
    settle();
    EXPECT_THAT(m_posts, testing::ElementsAre(a));
    EXPECT_TRUE(m_log.lines.isEmpty());
}

TEST_F(PreferenceFileTest, BelievesThatAFileIsGoneAfterAWhile)
{
    PreferenceFile& file = openOn(R"({"a": 1})");
    QFile::remove(m_path);
    EXPECT_TRUE(waitFor([&] { return !file.value(a).isValid(); }));
}

TEST_F(PreferenceFileTest, SetsABrokenFileAsideAtTheStart)
{
    QDir().mkpath(m_folder);
    writeFile(m_corrupt, "older");
    openOn("{\"a\":");
    EXPECT_EQ(contentOf(m_corrupt), "{\"a\":");
    EXPECT_EQ(mode(m_corrupt), 0600U);
    EXPECT_FALSE(QFile::exists(m_path));
    EXPECT_THAT(m_log.lines,
        testing::ElementsAre(
            QStringLiteral("Kestro: the preferences didn't parse; kept them as com.lumbra.ombrel.corrupt.json")));
}

TEST_F(PreferenceFileTest, SetsABrokenFileAsideBeforeItWrites)
{
    PreferenceFile& file = openOn(R"({"a": 1, "odd": 1e2})");
    writeFile(m_path, "[");
    file.setValue(b, 2);
    file.flush();
    EXPECT_EQ(contentOf(m_corrupt), "[");
    EXPECT_EQ(contentOf(m_path), "{\n  \"a\": 1,\n  \"odd\": 1e2,\n  \"b\": 2\n}\n");
    EXPECT_EQ(file.value(a), QVariant(1.0));
}

TEST_F(PreferenceFileTest, KeepsALinkALink)
{
    const QString elsewhere = m_home.filePath(QStringLiteral("dotfiles"));
    const QString target = elsewhere + QStringLiteral("/kestro.json");
    QDir().mkpath(elsewhere);
    QDir().mkpath(m_folder);
    QFile::link(QStringLiteral("../../dotfiles/kestro.json"), m_path); // to nothing yet
    PreferenceFile& file = open();
    file.setValue(a, 1);
    file.flush();
    EXPECT_TRUE(QFileInfo(m_path).isSymLink());
    EXPECT_EQ(contentOf(target), "{\n  \"a\": 1\n}\n");

    writeFile(target, R"({"a": 2})"); // seen though the link's folder is silent
    ASSERT_TRUE(waitFor([&] { return file.value(a) == QVariant(2.0); }));

    writeFile(target, "broken");
    file.setValue(a, 3);
    file.flush();
    EXPECT_TRUE(QFileInfo(m_path).isSymLink());
    EXPECT_EQ(contentOf(m_corrupt), "broken");
    EXPECT_EQ(contentOf(target), "{\n  \"a\": 3\n}\n");
}

TEST_F(PreferenceFileTest, TellsAFailedWriteOnceAndTriesAgainAtTheNextChange)
{
    QDir().mkpath(m_folder);
    const QString target = m_home.filePath(QStringLiteral("away"));
    QFile::link(target + QStringLiteral("/file.json"), m_path);
    PreferenceFile& file = open();
    m_log.lines.clear(); // that it cannot be watched
    for (int i = 1; i <= 2; ++i) {
        file.setValue(a, i);
        settle();
        EXPECT_EQ(file.value(a), QVariant(double(i)));
        EXPECT_THAT(m_log.lines,
            testing::ElementsAre(QStringLiteral("Kestro: couldn't save the preferences: No such file or directory")));
    }
    QDir().mkpath(target);
    file.setValue(b, true);
    settle();
    EXPECT_EQ(contentOf(m_path), "{\n  \"a\": 2,\n  \"b\": true\n}\n");
}

TEST_F(PreferenceFileTest, NeverOverwritesWhatItCannotRead)
{
    QDir().mkpath(m_path); // a folder in the file's place
    PreferenceFile& file = open();
    file.setValue(a, 1);
    settle();
    EXPECT_TRUE(QFileInfo(m_path).isDir());
    EXPECT_THAT(m_log.lines,
        testing::ElementsAre(QStringLiteral("Kestro: couldn't read the preferences: Not a file"),
            QStringLiteral("Kestro: couldn't save the preferences: Not a file")));
}

TEST_F(PreferenceFileTest, OutlivesItsFolder)
{
    PreferenceFile& file = openOn(R"({"a": 1})");
    QDir(m_home.filePath(QStringLiteral("Library"))).removeRecursively();
    settle();
    file.setValue(b, 2);
    settle();
    EXPECT_EQ(contentOf(m_path), "{\n  \"a\": 1,\n  \"b\": 2\n}\n");
    writeFile(m_path, R"({"a": 9})");
    EXPECT_TRUE(waitFor([&] { return file.value(a) == QVariant(9.0); }));
}

TEST_F(PreferenceFileTest, WritesMadeWhileTellingAreToldInTheNextTurn)
{
    PreferenceFile& file = open();
    QObject::connect(&file, &PreferenceStore::changed, &file, [&] { file.setValue(b, true); });
    file.setValue(a, true);
    settle();
    EXPECT_THAT(m_posts, testing::ElementsAre(a, b));
    EXPECT_EQ(contentOf(m_path), "{\n  \"a\": true,\n  \"b\": true\n}\n");
}

} // namespace
} // namespace kestro
