#include "KestroCore/Clipboard/ClipHistory.h"

#include <gmock/gmock.h>

using namespace kestro;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

QUuid clipId(int n) { return { quint32(n), 0, 0, 0, 0, 0, 0, 0, 0, 0, 0 }; }
ClipEntry::Kind textClip(int n) { return ClipEntry::Text{ QString::number(n) }; }
ClipEntry::Kind imageClip(int n) { return ClipEntry::Image{ QString::number(n), 1, 1 }; }

QStringList addClip(ClipHistory& history, int n, ClipEntry::Kind kind)
{
    return history.add(std::move(kind), { double(n) }, clipId(n), u"app"_qs, u"App"_qs);
}
std::vector<int> clipNumbers(const QList<ClipEntry>& entries)
{
    std::vector<int> result;
    for (const ClipEntry& each : entries)
        result.push_back(int(each.id.data1));
    return result;
}
std::vector<int> clipNumbers(const ClipHistory& history) { return clipNumbers(history.entries()); }

ClipHistory withTexts(int count)
{
    ClipHistory history;
    for (int n = 1; n <= count; ++n)
        addClip(history, n, textClip(n));
    return history;
}

TEST(ClipHistory, aRepeatMovesUpAndKeepsItsIdentity)
{
    ClipHistory history = withTexts(3);
    EXPECT_THAT(history.add(textClip(1), { 9 }, clipId(9), std::nullopt, u"Other"_qs), IsEmpty());
    EXPECT_THAT(clipNumbers(history), ElementsAre(1, 3, 2));
    const ClipEntry first = history.entries().first();
    EXPECT_EQ(first.date, Date{ 9 });
    EXPECT_EQ(first.sourceBundleID, std::nullopt);
    EXPECT_EQ(first.sourceName, u"Other"_qs);

    history.pin(clipId(2));
    history.pin(clipId(3));
    history.add(textClip(2), { 10 }, clipId(10), {}, {});
    EXPECT_THAT(clipNumbers(history), ElementsAre(3, 2, 1)) << "a pin stays in its place";
    EXPECT_EQ(history.entries()[1].date, Date{ 10 });
}

TEST(ClipHistory, whatIsNotTheSameIsNew)
{
    ClipHistory history;
    const QString url = u"https://a.com"_qs;
    const ClipEntry::Kind kinds[] = { ClipEntry::Text{ u"a"_qs }, ClipEntry::Text{ u"A"_qs },
        ClipEntry::Text{ u"a\n"_qs }, ClipEntry::Text{ url }, ClipEntry::Link{ url },
        ClipEntry::Files{ { u"/a"_qs, u"/b"_qs } }, ClipEntry::Files{ { u"/b"_qs, u"/a"_qs } },
        ClipEntry::Image{ u"x"_qs, 1, 1 }, ClipEntry::Image{ u"x"_qs, 1, 1 } };
    int n = 0;
    for (const auto& kind : kinds)
        addClip(history, ++n, kind);
    EXPECT_EQ(history.entries().size(), n);
}

TEST(ClipHistory, longTextsAreCutAndThenCompared)
{
    ClipHistory history;
    const QString longest(100000, u'x');
    addClip(history, 1, ClipEntry::Text{ longest + u'y' });
    addClip(history, 2, ClipEntry::Text{ longest });
    addClip(history, 3, ClipEntry::Text{ longest + u'z' });
    EXPECT_THAT(clipNumbers(history), ElementsAre(1));
    EXPECT_EQ(std::get<ClipEntry::Text>(history.entries()[0].kind).text.size(), 100000);
}

TEST(ClipHistory, imagesAreTrimmedFromWhereverTheyStand)
{
    ClipHistory history;
    for (int n = 1; n <= 3; ++n) {
        addClip(history, n, imageClip(n));
        ASSERT_TRUE(history.pin(clipId(n)));
    }
    for (int n = 4; n <= 15; ++n)
        EXPECT_THAT(addClip(history, n, imageClip(n)), IsEmpty()) << n;
    addClip(history, 16, textClip(16));
    EXPECT_THAT(addClip(history, 17, imageClip(17)), ElementsAre(u"4"_qs));
    EXPECT_EQ(history.entries().size(), 3 + 12 + 1);
    EXPECT_THAT(history.unpin(clipId(1)), ElementsAre(u"1"_qs)) << "the oldest of thirteen is the one just unpinned";
}

TEST(ClipHistory, entriesAreTrimmedAtTheEnd)
{
    ClipHistory history;
    addClip(history, 1, imageClip(1));
    for (int n = 2; n <= 200; ++n)
        EXPECT_THAT(addClip(history, n, textClip(n)), IsEmpty());
    EXPECT_THAT(addClip(history, 201, textClip(201)), ElementsAre(u"1"_qs));
    EXPECT_EQ(history.entries().size(), 200);
    ASSERT_TRUE(history.pin(clipId(2)));
    EXPECT_THAT(addClip(history, 202, textClip(202)), IsEmpty());
    EXPECT_THAT(history.unpin(clipId(2)), IsEmpty());
    EXPECT_EQ(history.entry(clipId(2)), nullptr) << "the oldest of 201";
}

TEST(ClipHistory, pinning)
{
    ClipHistory history = withTexts(52);
    for (int n = 1; n <= 50; ++n)
        EXPECT_TRUE(history.pin(clipId(n)));
    EXPECT_FALSE(history.pin(clipId(51)));
    EXPECT_EQ(history.entries()[0].id, clipId(50));
    history.unpin(clipId(10));
    EXPECT_FALSE(history.pin(clipId(9))) << "is pinned";
    EXPECT_FALSE(history.pin(clipId(99))) << "is not there";
    EXPECT_THAT(history.unpin(clipId(10)), IsEmpty()) << "is not pinned";
    EXPECT_EQ(history.entries().last().id, clipId(10)) << "by its age";
    history.unpin(clipId(50));
    EXPECT_THAT(clipNumbers(history.entries().last(4)), ElementsAre(52, 51, 50, 10));
}

TEST(ClipHistory, removingClearingRestoring)
{
    ClipHistory history = withTexts(3);
    addClip(history, 4, imageClip(4));
    addClip(history, 5, imageClip(5));
    history.pin(clipId(1));
    history.pin(clipId(4));
    const auto before = history.entries(); // 4 1 | 5 3 2
    EXPECT_THAT(history.remove(clipId(4)), ElementsAre(u"4"_qs));
    EXPECT_THAT(history.remove(clipId(4)), IsEmpty());
    EXPECT_THAT(history.clear(false), ElementsAre(u"5"_qs));
    EXPECT_THAT(clipNumbers(history), ElementsAre(1));
    addClip(history, 9, textClip(9));
    EXPECT_THAT(history.restore(before, { clipId(4), clipId(5), clipId(3), clipId(2) }), IsEmpty());
    EXPECT_THAT(clipNumbers(history), ElementsAre(4, 1, 9, 5, 3, 2));
    EXPECT_EQ(history.clear(true).size(), 2);
    EXPECT_THAT(history.entries(), IsEmpty());
    history.restore(before, { clipId(3) });
    EXPECT_THAT(clipNumbers(history), ElementsAre(3));
}

TEST(ClipHistory, ordersAndTrimsWhatItIsGiven)
{
    QList<ClipEntry> entries;
    for (int n = 1; n <= 205; ++n)
        entries.append({ clipId(n), { double(n) }, textClip(n), {}, {}, n % 100 == 0 });
    const ClipHistory history(entries);
    EXPECT_EQ(history.pinnedCount(), 2);
    EXPECT_EQ(history.entries().size(), 202);
    EXPECT_THAT(clipNumbers(history.entries().first(3)), ElementsAre(100, 200, 1));
}

TEST(ClipHistory, search)
{
    ClipHistory history = withTexts(2);
    addClip(history, 3, imageClip(3));
    history.add(ClipEntry::Text{ u"Hello"_qs }, {}, clipId(4), {}, u"Editor"_qs);
    history.add(ClipEntry::Link{ u"https://hello.org"_qs }, {}, clipId(5), {}, {});
    history.add(ClipEntry::Files{ { u"/hello"_qs } }, {}, clipId(6), {}, {});
    history.pin(clipId(1));
    const auto found = [&](const char16_t* query, ClipFilter filter = ClipFilter::all) {
        return clipNumbers(history.search(QString::fromUtf16(query), filter));
    };
    EXPECT_THAT(found(u" \n"), ElementsAre(1, 6, 5, 4, 3, 2));
    EXPECT_THAT(found(u"HELLO"), ElementsAre(6, 5, 4));
    EXPECT_THAT(found(u"hello", ClipFilter::text), ElementsAre(4));
    EXPECT_THAT(found(u"app"), ElementsAre(1, 3, 2)) << "by the application, an image too";
    EXPECT_THAT(found(u"editor"), ElementsAre(4));
    EXPECT_THAT(found(u"", ClipFilter::links), ElementsAre(5));
    EXPECT_THAT(found(u"", ClipFilter::images), ElementsAre(3));
    EXPECT_THAT(found(u"", ClipFilter::files), ElementsAre(6));
    EXPECT_THAT(found(u"nothing"), IsEmpty());
}

TEST(ClipHistory, whatIsWorthReading)
{
    using Source = std::optional<ClipSource>;
    const QString plain = ClipHistory::textType, png = u"public.png"_qs, file = ClipHistory::fileURLType;
    const std::pair<QSet<QString>, Source> table[] = { { {}, std::nullopt }, { { u"public.html"_qs }, std::nullopt },
        { { plain }, ClipSource::text }, { { plain, png }, ClipSource::image },
        { { plain, png, file }, ClipSource::files }, { { u"public.heic"_qs }, ClipSource::image },
        { { plain, u"org.nspasteboard.ConcealedType"_qs }, std::nullopt },
        { { file, u"org.nspasteboard.TransientType"_qs }, std::nullopt },
        { { png, u"org.nspasteboard.AutoGeneratedType"_qs }, std::nullopt },
        { { plain, u"com.lumbra.ombrel.copyback"_qs }, std::nullopt } };
    for (const auto& [types, source] : table)
        EXPECT_EQ(ClipHistory::source(types), source) << types.values().join(u' ').toStdString();
    EXPECT_EQ(ClipHistory::source({ plain }, { u"a"_qs, u"b"_qs }, { u"b"_qs }), Source());
    EXPECT_EQ(ClipHistory::source({ plain }, { u"a"_qs }, { u"b"_qs }), ClipSource::text);
}

TEST(ClipHistory, linksAndTexts)
{
    const std::pair<const char*, const char*> table[] = { { " \n\t\u00a0", nullptr }, { "", nullptr },
        { "\nhttps://a.com/b \n", "https://a.com/b" }, { "HTTP://A.com", "HTTP://A.com" },
        { "https://bücher.de/[x]", "https://bücher.de/[x]" }, { "https://", "text" }, { "https:///path", "text" },
        { "ftp://a.com", "text" }, { "mailto:a@b.c", "text" }, { "a.com", "text" },
        { "http://a.com\nhttp://b.com", "text" }, { "http://a.com/ b", "text" }, { "http://[", "text" },
        { " padded ", "text" } };
    for (const auto& [copied, expected] : table) {
        const QString input = QString::fromUtf8(copied);
        const auto kind = ClipHistory::kind(input);
        ASSERT_EQ(kind.has_value(), expected != nullptr) << copied;
        if (!kind)
            continue;
        const auto* link = std::get_if<ClipEntry::Link>(&*kind);
        EXPECT_EQ(link ? link->url : u"text"_qs, QString::fromUtf8(expected)) << copied;
        if (!link) {
            EXPECT_EQ(std::get<ClipEntry::Text>(*kind).text, input) << "as it was copied";
        }
    }
}

} // namespace
