#include "Kestro/Layout/FaviconCache.h"

#include "Kestro/Layout/FaviconImage.h"
#include "Tests/Support/Fakes.h"

#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>
#include <gmock/gmock.h>

using namespace kestro;
using namespace kestro::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

QByteArray pngOf(int width, int height)
{
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(Qt::red);
    return faviconImage::png(image);
}

/// An icon file of PNG frames, whose directory claims that each is 16 pixels wide.
QByteArray icoOf(const QByteArrayList& frames)
{
    QByteArray header;
    QDataStream out(&header, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    out << quint16(0) << quint16(1) << quint16(frames.size());
    auto offset = quint32(6 + 16 * frames.size());
    for (const QByteArray& frame : frames) {
        out << quint8(16) << quint8(16) << quint16(0) << quint16(1) << quint16(32) << quint32(frame.size()) << offset;
        offset += quint32(frame.size());
    }
    return header + frames.join();
}

TEST(FaviconImage, widestFrameThatMayBeRead)
{
    QByteArray huge = pngOf(8, 8);
    qToBigEndian<quint32>(20000, huge.data() + 16);
    const QByteArray svg =
        R"(<svg xmlns="http://www.w3.org/2000/svg" width="9" height="9"><rect width="9" height="9"/></svg>)";
    const std::tuple<const char*, QByteArray, int> table[] = {
        { "the largest allowed", pngOf(1024, 10), 1024 },
        { "one too wide", pngOf(1025, 10), 0 },
        { "one too high", pngOf(10, 1025), 0 },
        { "one that claims to be huge", huge, 0 },
        { "icons, the widest not first", icoOf({ pngOf(16, 16), pngOf(48, 48), pngOf(32, 32) }), 48 },
        { "an icon too wide beside a good one", icoOf({ pngOf(2000, 2), pngOf(24, 24) }), 24 },
        { "a broken icon beside a good one", icoOf({ QByteArray(40, 'x'), pngOf(24, 24) }), 24 },
        { "a frame that points outside", icoOf({ pngOf(16, 16) }).first(40), 0 },
        { "a directory alone", icoOf({ pngOf(16, 16) }).first(22), 0 },
        { "more frames than bytes", icoOf({}).replace(4, 2, "\xFF\xFF"), 0 },
        { "drawings", svg, 0 },
        { "a page", "<!doctype html><title>404</title>", 0 },
        { "cut short", pngOf(40, 30).first(20), 0 },
        { "nothing", "", 0 },
    };
    for (const auto& [what, bytes, width] : table)
        EXPECT_EQ(faviconImage::largestFrame(bytes).width(), width) << what;

    EXPECT_EQ(faviconImage::thumbnail(faviconImage::largestFrame(pngOf(200, 100))).size(), QSize(64, 32));
    EXPECT_EQ(faviconImage::thumbnail(faviconImage::largestFrame(pngOf(16, 12))).size(), QSize(16, 12));
}

class Favicons : public testing::Test {
protected:
    QString fileOf(const char* host) const { return m_folder + QStringLiteral("/%1.png").arg(QString::fromUtf8(host)); }
    void ask(const char* host)
    {
        m_cache->image(QString::fromUtf8(host), [this](const QImage& image) { m_told.push_back(image.width()); });
    }

    QTemporaryDir m_home;
    QString m_folder = m_home.filePath(u"Library/Caches/favicons"_qs);
    FakeLoop m_loop;
    FakeFetcher m_fetcher;
    RecordingLog m_log;
    std::optional<FaviconCache> m_cache{ std::in_place, m_loop, m_fetcher, m_log, m_folder };
    std::vector<int> m_told; ///< the widths, 0 for nothing
};

TEST_F(Favicons, fetchesOnceAndKeepsTheLargestFrame)
{
    ask("example.com");
    EXPECT_THAT(m_fetcher.asked, ElementsAre(QUrl(u"https://example.com/favicon.ico"_qs)));
    EXPECT_EQ(m_fetcher.lastTimeout, 5);
    EXPECT_EQ(m_fetcher.lastMaxBytes, 1024 * 1024);
    EXPECT_THAT(m_told, IsEmpty());
    m_fetcher.answer({ {}, 200, icoOf({ pngOf(16, 16), pngOf(128, 128) }) });
    m_loop.turn();
    EXPECT_EQ(QImage(fileOf("example.com")).width(), 128);

    ask("example.com");
    EXPECT_THAT(m_told, ElementsAre(64, 64));
    EXPECT_EQ(m_fetcher.asked.size(), 1);
    EXPECT_THAT(QDir(m_folder).entryList(QDir::Files), ElementsAre(u"example.com.png"_qs));

    // One that was broken meanwhile is fetched again.
    QFile file(fileOf("example.com"));
    ASSERT_TRUE(file.resize(10));
    ask("example.com");
    m_fetcher.answer({ {}, 200, pngOf(20, 20) });
    EXPECT_EQ(m_told.back(), 20);
    EXPECT_EQ(QImage(fileOf("example.com")).width(), 20);
    EXPECT_THAT(m_log.lines, IsEmpty());
}

TEST_F(Favicons, hostsThatCannotNameAFile)
{
    for (const char* host : { "", "a/b", "..", "a..b", "a\\b", "/etc" })
        ask(host);
    EXPECT_THAT(m_told, ElementsAre(0, 0, 0, 0, 0, 0));
    EXPECT_THAT(m_fetcher.asked, IsEmpty());
    EXPECT_FALSE(QDir(m_folder).exists());
}

TEST_F(Favicons, failuresAreLoggedAndLeaveNothing)
{
    const std::pair<FetchResult, const char*> table[] = {
        { { u"timed out"_qs, 0, {} }, "Kestro: favicon fetch for a.com failed: timed out" },
        { { u"too large"_qs, 200, pngOf(9, 9) }, "Kestro: favicon fetch for a.com failed: too large" },
        { { {}, 404, pngOf(9, 9) }, "Kestro: no favicon at a.com" },
        { { {}, 200, "<html>" }, "Kestro: favicon for a.com didn't decode" },
    };
    for (const auto& [result, line] : table) {
        ask("a.com");
        m_fetcher.answer(result);
        ASSERT_EQ(m_log.lines.size(), 1);
        EXPECT_EQ(m_log.lines.takeFirst().toStdString(), line);
        EXPECT_EQ(m_told.back(), 0);
    }
    EXPECT_FALSE(QFile::exists(fileOf("a.com")));
}

TEST_F(Favicons, aFolderThatCannotBeMadeCostsOnlyTheFile)
{
    QFile inTheWay(m_home.filePath(u"Library"_qs));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    ask("a.com");
    m_fetcher.answer({ {}, 200, pngOf(20, 20) });
    EXPECT_THAT(m_told, ElementsAre(20));
    ASSERT_EQ(m_log.lines.size(), 1);
    EXPECT_THAT(m_log.lines[0].toStdString(), testing::StartsWith("Kestro: couldn't cache the favicon for a.com: "));
}

TEST_F(Favicons, aCacheThatIsGoneTellsNothing)
{
    ask("a.com");
    ask("b.com");
    m_fetcher.answer({ {}, 200, pngOf(20, 20) });
    m_cache.reset();
    m_fetcher.answer({ {}, 200, pngOf(20, 20) });
    m_loop.turn();
    EXPECT_THAT(m_told, ElementsAre(20));
}

} // namespace
