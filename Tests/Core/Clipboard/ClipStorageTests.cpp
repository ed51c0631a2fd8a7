#include "KestroCore/Clipboard/ClipStorage.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gmock/gmock.h>

using namespace kestro;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const QUuid someId = QUuid::fromString(u"E621E1F8-C36C-495A-93FC-0C247A3E6E5F"_qs);

QByteArray document(const char* kind, const char* more = "")
{
    return QByteArray(R"({"entries":[{"id":"e621e1f8-c36c-495a-93fc-0c247a3e6e5f","date":1.5,"kind":)") + kind + more
        + "}]}";
}

TEST(ClipCoding, roundTrip)
{
    const QList<ClipEntry> entries{
        { QUuid::createUuid(), { 700000000.123456 }, ClipEntry::Text{ u"ü\"\n"_qs + QChar(0) }, u"a.b"_qs, u"Ä"_qs,
            true },
        { QUuid::createUuid(), { -5 }, ClipEntry::Link{ u"https://a.com/%20?ü"_qs } },
        { QUuid::createUuid(), { 0 }, ClipEntry::Image{ u"x.png"_qs, 3, 4 } },
        { QUuid::createUuid(), { 0 }, ClipEntry::Files{ { u"/a\nb"_qs, u"/c%20d"_qs } } },
        { QUuid::createUuid(), { 0 }, ClipEntry::Files{} },
    };
    EXPECT_EQ(ClipCoding::decode(ClipCoding::encode(entries)), entries);
    EXPECT_EQ(ClipCoding::encode({}), R"({"entries":[]})");
    EXPECT_EQ(ClipCoding::encode({ { someId, { 1.5 }, ClipEntry::Files{ { u"/a"_qs } } } }),
        R"({"entries":[{"date":1.5,"id":"E621E1F8-C36C-495A-93FC-0C247A3E6E5F","kind":{"files":{"_0":["/a"]}},"pinned":false}]})");
    const QString half(QChar(0xD800));
    EXPECT_TRUE(ClipCoding::decode(ClipCoding::encode({ { someId, {}, ClipEntry::Text{ half } } })));
}

TEST(ClipCoding, whatIsRead)
{
    for (const char* more : { "", R"(,"pinned":null,"sourceName":null)", R"(,"later":[{}])" }) {
        const auto entries = ClipCoding::decode(document(R"({"text":{"_0":"a"}})", more));
        ASSERT_TRUE(entries) << more;
        EXPECT_EQ(entries->first(), (ClipEntry{ someId, { 1.5 }, ClipEntry::Text{ u"a"_qs } }));
    }
    EXPECT_TRUE(ClipCoding::decode(document(R"({"image":{"fileName":"a","width":2.0,"height":-1}})")));

    const QByteArray broken[] = { "", "{", "[]", "{}", R"({"entries":{}})", R"({"entries":[1]})", "\xFF",
        QByteArray(100000, '['), R"({"entries":[{}]})", document("{}"), document("null"), document(R"(["text"])"),
        document(R"({"text":{"_0":"a"},"link":{"_0":"http://a"}})"), document(R"({"text":{}})"),
        document(R"({"text":"a"})"), document(R"({"text":{"_0":1}})"), document(R"({"link":{"_0":""}})"),
        document(R"({"files":{"_0":["/a",1]}})"), document(R"({"files":{"_0":"/a"}})"),
        document(R"({"sound":{"_0":"a"}})"), document(R"({"image":{"fileName":"a","width":1}})"),
        document(R"({"image":{"fileName":"a","width":1.5,"height":1}})"),
        document(R"({"image":{"fileName":"a","width":3e9,"height":1}})"),
        document(R"({"text":{"_0":"a"}})", R"(,"pinned":1)"), document(R"({"text":{"_0":"a"}})", R"(,"sourceName":1)"),
        document(R"({"text":{"_0":"a"}})", R"(,"id":"x")"), document(R"({"text":{"_0":"a"}})", R"(,"date":"now")") };
    for (const QByteArray& bytes : broken)
        EXPECT_EQ(ClipCoding::decode(bytes), std::nullopt) << bytes.left(200).toStdString();
}

class ClipStorageFiles : public testing::Test {
protected:
    void put(const QString& path, const QByteArray& bytes) const
    {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }
    QByteArray at(const QString& path) const
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("none");
    }
    QStringList images() const { return QDir(storage.dir + u"/images"_qs).entryList(QDir::Files | QDir::Hidden); }

    QTemporaryDir home;
    ClipStorage storage{ ClipStorage::defaultDir(home.path()) };
};

TEST_F(ClipStorageFiles, savedLoadedAndForTheUserAlone)
{
    EXPECT_THAT(storage.load().entries(), IsEmpty());
    const ClipHistory history({ { someId, { 1 }, ClipEntry::Image{ u"a.png"_qs, 1, 1 } } });
    storage.writeImage("bytes", u"a.png"_qs);
    storage.save(history);
    EXPECT_EQ(storage.load(), history);
    EXPECT_EQ(at(storage.imagePath(u"a.png"_qs)), "bytes");
    constexpr auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther;
    for (const QString& path :
        { storage.dir, storage.dir + u"/images"_qs, storage.historyPath(), storage.imagePath(u"a.png"_qs) })
        EXPECT_EQ(QFileInfo(path).permissions() & others, QFile::Permissions()) << path.toStdString();
    storage.deleteImages({ u"b.png"_qs, u"a.png"_qs });
    EXPECT_THAT(storage.load().entries(), IsEmpty()) << "without its file";
}

TEST_F(ClipStorageFiles, whatCannotBeReadIsSetAsideWithItsImages)
{
    put(storage.imagePath(u"a.png"_qs), "x");
    for (const char* content : { "{", "second" }) {
        put(storage.historyPath(), content);
        EXPECT_THAT(storage.load().entries(), IsEmpty());
        EXPECT_EQ(at(storage.dir + u"/history.corrupt.json"_qs), content);
        EXPECT_FALSE(QFile::exists(storage.historyPath()));
        EXPECT_THAT(images(), ElementsAre(u"a.png"_qs));
    }
    storage.clear();
    EXPECT_EQ(at(storage.dir + u"/history.corrupt.json"_qs), "second");
    EXPECT_THAT(images(), IsEmpty());

    QFile huge(storage.historyPath());
    ASSERT_TRUE(huge.open(QIODevice::WriteOnly) && huge.resize(400LL << 20)); // a hole: no disk is filled
    EXPECT_THAT(storage.load().entries(), IsEmpty());
    EXPECT_FALSE(huge.exists());
    EXPECT_EQ(QFileInfo(storage.dir + u"/history.corrupt.json"_qs).size(), 400LL << 20);
}

TEST_F(ClipStorageFiles, orphansGoAndStrangersStay)
{
    for (const char16_t* name : { u"a.png", u"orphan.png", u".hidden" })
        put(storage.imagePath(QString::fromUtf16(name)), "x");
    put(home.filePath(u"mine.png"_qs), "mine");
    const QString outside = u"../../../../../mine.png"_qs;
    ASSERT_EQ(QFileInfo(storage.imagePath(outside)).canonicalFilePath(), home.filePath(u"mine.png"_qs));
    put(storage.historyPath(),
        ClipCoding::encode({ { QUuid::createUuid(), {}, ClipEntry::Image{ u"a.png"_qs, 1, 1 } },
            { QUuid::createUuid(), {}, ClipEntry::Image{ outside, 1, 1 } },
            { QUuid::createUuid(), {}, ClipEntry::Image{ u"gone.png"_qs, 1, 1 } } }));
    EXPECT_EQ(storage.load().entries().size(), 1);
    EXPECT_THAT(images(), ElementsAre(u"a.png"_qs));
    storage.deleteImages({ outside, u".."_qs, {} });
    EXPECT_EQ(at(home.filePath(u"mine.png"_qs)), "mine");
    QFile::remove(storage.historyPath());
    storage.load();
    EXPECT_THAT(images(), IsEmpty()) << "no history, no images";
}

TEST_F(ClipStorageFiles, failuresAreSentences)
{
    put(home.filePath(u"Library"_qs), "a file in the way");
    EXPECT_THROW(storage.save({}), StorageError);
    EXPECT_THROW(storage.writeImage("x", u"a"_qs), StorageError);
    QFile::remove(home.filePath(u"Library"_qs));
    QDir().mkpath(storage.historyPath());
    EXPECT_THROW(storage.load(), StorageError) << "a folder in its place";
}

} // namespace
