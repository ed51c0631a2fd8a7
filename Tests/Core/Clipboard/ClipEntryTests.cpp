#include "KestroCore/Clipboard/ClipEntry.h"
#include "KestroCore/Clipboard/ClipSearch.h"
#include "KestroCore/Clipboard/UriList.h"

#include <gmock/gmock.h>

using namespace kestro;

namespace {

QString utf(const char* text) { return QString::fromUtf8(text); }
ClipEntry entry(ClipEntry::Kind kind) { return { QUuid::createUuid(), {}, std::move(kind) }; }

TEST(ClipEntry, preview)
{
    const QString longLine(300, u'a');
    const std::pair<ClipEntry::Kind, QString> table[] = {
        { ClipEntry::Text{ u"\n\n  \tfirst\r\nsecond\n\n third \t"_qs }, u"first second  third"_qs },
        { ClipEntry::Text{ longLine + u'b' }, longLine.first(200) },
        { ClipEntry::Text{ QString(250, u'\n') + longLine }, longLine.first(200) },
        { ClipEntry::Text{ QString(199, u'x') + u"\nseen not"_qs }, QString(199, u'x') },
        { ClipEntry::Text{ utf("👩‍👩‍👧‍👦").repeated(201) },
            utf("👩‍👩‍👧‍👦").repeated(200) },
        { ClipEntry::Text{ utf("a\u2028b\u2029c\u0085d") }, u"a b c d"_qs },
        { ClipEntry::Text{ utf("\u00a0\u3000x\u00a0") }, u"x"_qs },
        { ClipEntry::Text{ u" \n"_qs }, {} },
        { ClipEntry::Link{ u"https://a.com/ü"_qs }, u"https://a.com/ü"_qs },
        { ClipEntry::Image{ u"a.png"_qs, 640, 480 }, u"Image 640 × 480"_qs },
        { ClipEntry::Files{ { u"/a/b.txt"_qs, u"/c d/"_qs, u"/"_qs } }, u"b.txt, c d, /"_qs },
    };
    for (const auto& [kind, expected] : table)
        EXPECT_EQ(entry(kind).preview().toStdString(), expected.toStdString());
    EXPECT_LE(entry(ClipEntry::Text{ u'e' + QString(1000000, QChar(0x301)) }).preview().size(), 3200);
}

TEST(ClipEntry, statsCountWhatAReaderCounts)
{
    const std::tuple<const char*, int, int> table[] = { { "", 0, 0 }, { "a", 1, 1 }, { "a\n", 2, 1 }, { "\n", 1, 1 },
        { "\n\n", 2, 2 }, { "a\nb", 3, 2 }, { "a\r\nb\r\n", 4, 2 },
        { "👩‍👩‍👧‍👦e\u0301🇩🇪", 3, 1 }, { "a\u2028b\u0085", 4, 2 } };
    for (const auto& [text, characters, lines] : table)
        EXPECT_EQ(ClipText::stats(utf(text)), (ClipText::Stats{ characters, lines })) << text;
    EXPECT_EQ(entry(ClipEntry::Link{ u"http://a"_qs }).textStats(), std::nullopt);
}

TEST(ClipEntry, textsAreEqualHoweverTheyAreEncoded)
{
    const std::tuple<const char*, const char*, bool> table[] = { { "café", "cafe\u0301", true }, { "a", "A", false },
        { "a", "a\n", false }, { "a\u0323\u0307", "a\u0307\u0323", true }, { "\u212B", "Å", true },
        { "\u212A", "K", true }, { "한", "\u1112\u1161\u11AB", true }, { "漢", "字", false }, { "😀", "😁", false },
        { "\u2460", "1", false }, { "", "\u0301", false }, { "", "", true }, { "x\u0301", "x", false },
        { "𝅗𝅥", "\U0001D157\U0001D165", true } };
    for (const auto& [a, b, equal] : table) {
        EXPECT_EQ(ClipText::areEquivalent(utf(a), utf(b)), equal) << a << " / " << b;
        EXPECT_EQ(ClipText::areEquivalent(utf(b), utf(a)), equal) << b << " / " << a;
    }
}

TEST(ClipEntry, firstCharactersKeepsThemWhole)
{
    const QString family = utf("👩‍👩‍👧‍👦");
    EXPECT_EQ(ClipText::firstCharacters(family.repeated(100001), 100000).size(), family.size() * 100000);
    EXPECT_EQ(ClipText::firstCharacters(u"e\u0301e\u0301e\u0301", 2), u"e\u0301e\u0301");
    EXPECT_EQ(ClipText::firstCharacters(u"ab", 2), u"ab");
    EXPECT_EQ(ClipText::firstCharacters(u"a\r\nb", 2), u"a\r\n");
    // The base letter stands at the edge of what is looked at first.
    const QString edge = QString(10 + 5 + 64 - 1, u'x') + u"e\u0301\u0301"_qs;
    EXPECT_EQ(ClipText::firstCharacters(edge, 10).size(), 10);
    EXPECT_EQ(ClipText::firstCharacters(u'e' + QString(9999, QChar(0x301)), 10).size(), 160);
}

TEST(ClipEntry, whatIsShownStaysInItsPlace)
{
    EXPECT_EQ(ClipText::shown(utf("a\u202Eb\u2066c\u200F\td\u0001"), 100), u"abc d"_qs);
    EXPECT_EQ(ClipText::shown(QString(2, QChar(0)) + utf("x😀"), 2), u"x"_qs);
}

TEST(ClipSearch, caseDoesNotCount)
{
    const std::tuple<const char*, const char*, bool> table[] = { { "Hello World", "WORLD", true },
        { "Hello World", " hello ", true }, { "Hello", "hellow", false }, { "aab", "ab", true }, { "", "a", false },
        { "a", "", true }, { "STRASSE", "strasse", true }, { "Größe", "GRÖSSE", false }, { "Größe", "gröSSe", false },
        { "ΣΊΣΥΦΟΣ", "σίσυφος", true }, { "Привет", "ПРИВЕТ", true }, { "xyz", "z", true }, { "zzzy", "zy", true },
        { "zebra", "Z", true }, { "a😀b", "😀", true } };
    for (const auto& [text, query, found] : table)
        EXPECT_EQ(ClipSearch(utf(query), false).isIn(utf(text)), found) << text << " / " << query;

    const std::tuple<const char*, const char*, bool> turkish[] = { { "İstanbul", "istanbul", true },
        { "Istanbul", "istanbul", false }, { "ILIK", "ılık", true } };
    for (const auto& [text, query, found] : turkish)
        EXPECT_EQ(ClipSearch(utf(query), true).isIn(utf(text)), found) << text << " / " << query;
}

TEST(ClipSearch, looksWhereTheEntryIsSearched)
{
    ClipEntry image = entry(ClipEntry::Image{ u"secret.png"_qs, 1, 1 });
    EXPECT_FALSE(ClipSearch(u"secret"_qs).isIn(image));
    image.sourceName = u"Files"_qs;
    EXPECT_TRUE(ClipSearch(u"files"_qs).isIn(image));
    EXPECT_EQ(image.searchText(), u"\nFiles"_qs);
    const ClipEntry files = entry(ClipEntry::Files{ { u"/home/u/a.txt"_qs, u"/home/u/b.txt"_qs } });
    EXPECT_EQ(files.searchText(), u"a.txt\nb.txt"_qs);
    EXPECT_TRUE(ClipSearch(u"B.TXT"_qs).isIn(files));
    EXPECT_FALSE(ClipSearch(u"home"_qs).isIn(files));
    ClipEntry text = entry(ClipEntry::Text{ u"one"_qs });
    text.sourceName = u"Two"_qs;
    EXPECT_TRUE(ClipSearch(u"e\nt"_qs).isIn(text));
}

TEST(UriList, localFilesInTheirOrder)
{
    const std::pair<QByteArray, QStringList> table[] = { { "", {} },
        { "file:///a%20b\r\nfile:///c\r\n", { u"/a b"_qs, u"/c"_qs } },
        { "# comment\nfile:///a%0Ab%25\n", { u"/a\nb%"_qs } }, { "https://a.com/x\nfile:///a", { u"/a"_qs } },
        { "file://localhost/a", { u"/a"_qs } }, { "file://elsewhere.example/a", {} }, { "file:/a", { u"/a"_qs } },
        { "file:a", {} }, { "/a", {} }, { "file:///\xC3\xBC", { u"/ü"_qs } }, { "file:///dir/", { u"/dir/"_qs } } };
    for (const auto& [list, expected] : table)
        EXPECT_EQ(UriList::paths(list), expected) << list.toStdString();
    for (const QString& path : { u"/a\nb"_qs, u"/100%25"_qs, u"/#?x"_qs, u"/ü &"_qs })
        EXPECT_EQ(UriList::paths(UriList::uri(path)), QStringList{ path });
    EXPECT_EQ(UriList::paths(QByteArray("file:///a\n").repeated(20000)).size(), 10000);
}

} // namespace
