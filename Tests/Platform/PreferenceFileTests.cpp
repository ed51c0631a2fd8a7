#include "Helpers.h"
#include "Platforms/Linux/System/PreferenceFile.h"

#include <QDir>
#include <QFileInfo>
#include <cstdio>
#include <sys/stat.h>

namespace kestro {
namespace {

using namespace test;

const QString a = u"a"_s;
const QString b = u"b"_s;

class PreferenceFileTest : public testing::Test {
protected:
    const QTemporaryDir m_home;
    const QString m_folder = m_home.filePath(u"Library/Preferences"_s);
    const QString m_path = m_folder + u"/com.lumbra.ombrel.json"_s;
    const QString m_corrupt = m_folder + u"/com.lumbra.ombrel.corrupt.json"_s;
    RecordingLog m_log;
    std::unique_ptr<PreferenceFile> m_file;
    QStringList m_posts; // one a notification, its keys joined by commas

    PreferenceFile& open()
    {
        m_file = std::make_unique<PreferenceFile>(m_path, m_log);
        QObject::connect(m_file.get(), &PreferenceStore::changed, m_file.get(),
            [this](const QStringList& keys) { m_posts.append(keys.join(u',')); });
        return *m_file;
    }
    PreferenceFile& openOn(const QByteArray& content)
    {
        QDir().mkpath(m_folder);
        writeFile(m_path, content);
        return open();
    }
    // Until the loop and the disk have nothing more to do.
    void rest() const
    {
        for (int i = 0; i < 3; ++i) {
            settle();
            m_file->saveNow();
        }
        settle();
    }
    void expectAloneInItsFolder(const QStringList& names) const
    {
        EXPECT_EQ(QDir(m_folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), names);
    }
    static uint mode(const QString& path)
    {
        struct stat info { };
        return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? info.st_mode & 07777U : 0;
    }
};

TEST_F(PreferenceFileTest, WritesOnceATurnForTheUserAlone)
{
    PreferenceFile& file = open();
    file.setValue(a, 1);
    file.setValue(b, QByteArray("x"));
    file.setValue(a, 2);
    EXPECT_EQ(file.value(a), QVariant(2.0));
    EXPECT_FALSE(QFile::exists(m_path));
    rest(); // our own write comes back from the watch
    EXPECT_EQ(contentOf(m_path), "{\n  \"a\": 2,\n  \"b\": {\"$data\":\"eA==\"}\n}\n");
    EXPECT_EQ(mode(m_path), 0600U);
    EXPECT_EQ(mode(m_folder), 0700U);
    EXPECT_EQ(mode(m_home.filePath(u"Library"_s)), 0700U);
    EXPECT_THAT(m_posts, testing::ElementsAre(u"a,b"_s));
    expectAloneInItsFolder({ u"com.lumbra.ombrel.json"_s });

    file.setValue(a, 3); // at the end there is no loop
    m_file.reset();
    EXPECT_EQ(contentOf(m_path), "{\n  \"a\": 3,\n  \"b\": {\"$data\":\"eA==\"}\n}\n");
}

TEST_F(PreferenceFileTest, PostsNothingForWhatDoesNotChange)
{
    PreferenceFile& file = openOn(R"({"a": 2, "b": true})");
    file.setValue(a, 2);
    file.setValue(u"missing"_s, {});
    file.setValue(b, false);
    file.setValue(b, true);
    rest();
    EXPECT_TRUE(m_posts.isEmpty());
    EXPECT_EQ(contentOf(m_path), R"({"a": 2, "b": true})");
}

TEST_F(PreferenceFileTest, MergesWithAnotherWriter)
{
    PreferenceFile& file = openOn(R"({"a": 1, "b": 1, "gone": 1})");
    file.setValue(a, 5);
    writeFile(m_path, R"({"a": 2, "b": 2, "their": 123456789012345678901234567890})");
    file.flush();
    EXPECT_EQ(contentOf(m_path), "{\n  \"a\": 5,\n  \"b\": 2,\n  \"their\": 123456789012345678901234567890\n}\n");
    rest();
    EXPECT_EQ(file.value(b), QVariant(2.0));
    EXPECT_FALSE(file.value(u"gone"_s).isValid());
    EXPECT_THAT(m_posts, testing::ElementsAre(u"a,b,gone,their"_s));
}

TEST_F(PreferenceFileTest, TakesOverAnOutsideChangeOnce)
{
    PreferenceFile& file = open(); // there is no file yet
    const QByteArray next = R"({"a": 1.0, "b": null, "c": 7, "t": 1, "new": "x"})";
    for (const bool inPlace : { false, true }) {
        SCOPED_TRACE(inPlace);
        writeFile(m_path, R"({"a": 1, "b": 1, "c": 1, "t": true})");
        ASSERT_TRUE(waitFor([&] { return file.value(b).isValid(); }));
        rest();
        m_posts.clear();
        writeFile(inPlace ? m_path : m_path + u'~', next);
        EXPECT_TRUE(inPlace || std::rename(qPrintable(m_path + u'~'), qPrintable(m_path)) == 0);
        ASSERT_TRUE(waitFor([&] { return !m_posts.isEmpty(); }));
        rest();
        EXPECT_THAT(m_posts, testing::ElementsAre(u"b,c,new,t"_s));
        EXPECT_FALSE(file.value(b).isValid());
        EXPECT_EQ(contentOf(m_path), next);
    }
}

TEST_F(PreferenceFileTest, KeepsItsValuesWhileTheFileIsBrokenOrBrieflyAway)
{
    PreferenceFile& file = openOn(R"({"a": 1})");
    writeFile(m_path, R"({"a": 2, )");
    rest();
    EXPECT_FALSE(QFile::exists(m_corrupt));
    QFile::remove(m_path);
    rest();
    EXPECT_EQ(file.value(a), QVariant(1.0));
    writeFile(m_path, R"({"a": 3})");
    ASSERT_TRUE(waitFor([&] { return file.value(a) == QVariant(3.0); }));
    rest();
    EXPECT_THAT(m_posts, testing::ElementsAre(a));
    EXPECT_TRUE(m_log.lines.isEmpty());

    QFile::remove(m_path); // for good
    EXPECT_TRUE(waitFor([&] { return !file.value(a).isValid(); }));
}

TEST_F(PreferenceFileTest, SetsABrokenFileAside)
{
    QDir().mkpath(m_folder);
    writeFile(m_corrupt, "older");
    PreferenceFile& file = openOn("{\"a\":");
    EXPECT_EQ(contentOf(m_corrupt), "{\"a\":");
    EXPECT_EQ(mode(m_corrupt), 0600U);
    expectAloneInItsFolder({ u"com.lumbra.ombrel.corrupt.json"_s });
    EXPECT_THAT(m_log.lines,
        testing::ElementsAre(u"Kestro: the preferences didn't parse; kept them as com.lumbra.ombrel.corrupt.json"_s));

    // And before it writes over one, with what the last good one held.
    writeFile(m_path, R"({"a": 1, "odd": 1e2})");
    ASSERT_TRUE(waitFor([&] { return file.value(a).isValid(); }));
    writeFile(m_path, "[");
    file.setValue(b, 2);
    file.flush();
    EXPECT_EQ(contentOf(m_corrupt), "[");
    EXPECT_EQ(contentOf(m_path), "{\n  \"a\": 1,\n  \"odd\": 1e2,\n  \"b\": 2\n}\n");
}

TEST_F(PreferenceFileTest, KeepsALinkALink)
{
    const QString target = m_home.filePath(u"dotfiles/kestro.json"_s);
    QDir().mkpath(m_home.filePath(u"dotfiles"_s));
    QDir().mkpath(m_folder);
    QFile::link(u"../../dotfiles/kestro.json"_s, m_path); // to nothing yet
    PreferenceFile& file = open();
    file.setValue(a, 1);
    file.flush();
    EXPECT_EQ(contentOf(target), "{\n  \"a\": 1\n}\n");

    writeFile(target, R"({"a": 2})"); // seen though the link's folder is silent
    ASSERT_TRUE(waitFor([&] { return file.value(a) == QVariant(2.0); }));

    writeFile(target, "broken");
    file.setValue(a, 3);
    file.flush();
    EXPECT_TRUE(QFileInfo(m_path).isSymLink());
    EXPECT_EQ(contentOf(m_corrupt), "broken");
    EXPECT_EQ(mode(m_corrupt), 0600U);
    EXPECT_EQ(contentOf(target), "{\n  \"a\": 3\n}\n");
}

TEST_F(PreferenceFileTest, TellsAFailedWriteOnceAndTriesAgainByItself)
{
    QDir().mkpath(m_folder);
    QFile::link(m_home.filePath(u"away/file.json"_s), m_path);
    PreferenceFile& file = open();
    m_log.lines.clear(); // that it cannot be watched
    QStringList errors;
    QObject::connect(&file, &PreferenceStore::saveErrorChanged, &file, [&] { errors.append(file.saveError()); });
    for (int i = 1; i <= 2; ++i) {
        file.setValue(a, i);
        rest();
        EXPECT_EQ(file.value(a), QVariant(double(i)));
        ASSERT_EQ(m_log.lines.size(), 1);
        EXPECT_TRUE(m_log.lines.first().endsWith(u" in “away” — the folder is missing."));
    }
    EXPECT_FALSE(file.saveNow());
    QDir().mkpath(m_home.filePath(u"away"_s));
    ASSERT_TRUE(waitFor([&] { return file.saveError().isEmpty(); }));
    EXPECT_EQ(contentOf(m_path), "{\n  \"a\": 2\n}\n");
    EXPECT_EQ(errors.size(), 2) << "told and taken back";
    EXPECT_TRUE(errors.first().endsWith(u" in “away” — the folder is missing."));
}

TEST_F(PreferenceFileTest, NeverOverwritesWhatItCannotRead)
{
    QDir().mkpath(m_path); // a folder in the file's place
    open().setValue(a, 1);
    rest();
    EXPECT_TRUE(QFileInfo(m_path).isDir());
    const QString line = u"Kestro: the preferences: Couldn't read “com.lumbra.ombrel.json” in “Preferences” — "
                         "it isn't an ordinary file."_s;
    EXPECT_THAT(m_log.lines, testing::ElementsAre(line, line)) << "at the start and for the value";
}

TEST_F(PreferenceFileTest, OutlivesItsFolder)
{
    PreferenceFile& file = openOn(R"({"a": 1})");
    QDir(m_home.filePath(u"Library"_s)).removeRecursively();
    rest();
    file.setValue(b, 2);
    rest();
    EXPECT_EQ(contentOf(m_path), "{\n  \"a\": 1,\n  \"b\": 2\n}\n");
    writeFile(m_path, R"({"a": 9})");
    EXPECT_TRUE(waitFor([&] { return file.value(a) == QVariant(9.0); }));
}

TEST_F(PreferenceFileTest, WritesMadeWhileTellingAreToldInTheNextTurn)
{
    PreferenceFile& file = open();
    QObject::connect(&file, &PreferenceStore::changed, &file, [&] { file.setValue(b, true); });
    file.setValue(a, true);
    rest();
    EXPECT_THAT(m_posts, testing::ElementsAre(a, b));
    EXPECT_EQ(contentOf(m_path), "{\n  \"a\": true,\n  \"b\": true\n}\n");
}

} // namespace
} // namespace kestro
