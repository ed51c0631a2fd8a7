#include "Platforms/Linux/X11/X11Pasteboard.h"
#include "Platforms/Linux/System/QtMainLoop.h"
#include "Platforms/Linux/X11/X11SelectionTypes.h"
#include "X11Desktop.h"
#include "X11SelectionPeer.h"

#include <QProcess>
#include <future>
#include <gmock/gmock.h>

namespace kestro {
namespace {

using namespace test;
using testing::IsSupersetOf;

const QString plain = QStringLiteral("public.utf8-plain-text");
const QString png = QStringLiteral("public.png");

class X11PasteboardTest : public testing::Test {
protected:
    X11PasteboardTest()
    {
        QObject::connect(&pasteboard, &Pasteboard::changed, &pasteboard,
            [this](const PasteboardOffer& offer) { offers.append(offer); });
        pasteboard.watch(true);
        settle();
    }
    /// Returns when the pasteboard's own thread has done all that was asked of it before.
    void settle() { read(-1, plain); }

    std::optional<QByteArray> read(qint64 changeCount, const QString& type, qint64 limit = 64 << 20)
    {
        std::optional<std::optional<QByteArray>> result;
        pasteboard.read(changeCount, type, limit, [&](const auto& data) { result = data; });
        EXPECT_TRUE(QTest::qWaitFor([&] { return result.has_value(); }, 20000));
        return result.value_or(std::nullopt);
    }
    std::optional<QByteArray> readLatest(const QString& type, qint64 limit = 64 << 20)
    {
        return read(offers.isEmpty() ? 0 : offers.last().changeCount, type, limit);
    }
    bool offered(qsizetype count)
    {
        return waitFor([&] { return offers.size() >= count; });
    }

    /// xclip copies and leaves a child behind that serves; its end is the peer's taking over.
    void xclip(const QByteArray& data, const QStringList& more = {})
    {
        QProcess process;
        process.start(QStringLiteral("xclip"), QStringList{ u"-selection"_qs, u"clipboard"_qs } + more);
        process.write(data);
        process.closeWriteChannel();
        process.setStandardOutputFile(QProcess::nullDevice());
        ASSERT_TRUE(process.waitForFinished(10000));
    }
    /// What xclip gets of `target`, while our loop turns.
    QByteArray xclipGets(const QString& target)
    {
        QProcess process;
        process.start(u"xclip"_qs, { u"-selection"_qs, u"clipboard"_qs, u"-o"_qs, u"-t"_qs, target });
        EXPECT_TRUE(waitFor([&] { return process.state() == QProcess::NotRunning; }));
        return process.readAllStandardOutput();
    }

    QtMainLoop loop;
    X11SelectionPeer peer;
    X11Pasteboard pasteboard{ loop, std::chrono::milliseconds(300) };
    QList<PasteboardOffer> offers;
};

TEST_F(X11PasteboardTest, tellsAndReadsWhatXclipCopies)
{
    for (const qsizetype size : { 5, 10 << 20 }) { // the second comes in pieces
        const QByteArray data(size, 'x');
        xclip(data);
        ASSERT_TRUE(offered(1));
        EXPECT_TRUE(offers.last().types.contains(plain));
        EXPECT_EQ(offers.last().owner, std::nullopt) << "its process has gone, and only a child is left";
        EXPECT_EQ(readLatest(plain), data);
        EXPECT_EQ(readLatest(png), std::nullopt) << "it would answer, but does not offer it";
        offers.clear();
    }
    xclip("bytes", { u"-t"_qs, u"image/png"_qs });
    ASSERT_TRUE(offered(1));
    EXPECT_EQ(readLatest(png), "bytes");
}

TEST_F(X11PasteboardTest, givesXclipEveryFormatAlsoInPieces)
{
    const QByteArray image(3 << 20, 'p');
    const QString tag = u"com.lumbra.ombrel.copyback"_qs;
    pasteboard.write({ { { plain, "gr\xC3\xBC\xC3\x9F" }, { png, image }, { tag, {} } } });
    settle();
    const QList<QByteArray> targets = xclipGets(u"TARGETS"_qs).split('\n');
    EXPECT_THAT(targets,
        IsSupersetOf<QByteArray>({ "TARGETS", "MULTIPLE", "TIMESTAMP", "SAVE_TARGETS", "UTF8_STRING", "STRING",
            "text/plain;charset=utf-8", "image/png", "com.lumbra.ombrel.copyback" }));
    EXPECT_EQ(xclipGets(u"UTF8_STRING"_qs), "gr\xC3\xBC\xC3\x9F");
    EXPECT_EQ(xclipGets(u"STRING"_qs), "gr\xFC\xDF");
    EXPECT_EQ(xclipGets(u"image/png"_qs), image);
    EXPECT_TRUE(offers.isEmpty()) << "our own";

    pasteboard.write({ { { u"public.file-url"_qs, "file:///a%20b" } }, { { u"public.file-url"_qs, "file:///c" } } });
    settle();
    EXPECT_EQ(xclipGets(u"text/uri-list"_qs), "file:///a%20b\r\nfile:///c\r\n");
    EXPECT_EQ(xclipGets(u"x-special/gnome-copied-files"_qs), "copy\nfile:///a%20b\nfile:///c");
    EXPECT_EQ(xclipGets(u"UTF8_STRING"_qs), "/a b\n/c");
}

TEST_F(X11PasteboardTest, manyTargetsAtOnce)
{
    const QByteArray large(1 << 20, 'l');
    pasteboard.write({ { { plain, "text" }, { png, large } } });
    settle();
    const auto answers = peer.askMany({ "UTF8_STRING", "image/png", "no such thing", "TIMESTAMP" });
    ASSERT_EQ(answers.size(), 4);
    EXPECT_EQ(answers[0], "text");
    EXPECT_EQ(answers[1], large);
    EXPECT_EQ(answers[2], std::nullopt);
    EXPECT_EQ(answers[3]->size(), 4);
}

TEST_F(X11PasteboardTest, transfersOutliveALostSelection)
{
    const QByteArray large(1 << 20, 'l');
    pasteboard.write({ { { png, large } } });
    settle();
    peer.ask("image/png");
    ASSERT_TRUE(waitFor([&] { return peer.isGettingPieces(); }));
    peer.own({ { "UTF8_STRING", "next" } });
    ASSERT_TRUE(offered(1));
    EXPECT_EQ(peer.takePieces(), large);
}

TEST_F(X11PasteboardTest, secretsAreToldByTheirTypesAlone)
{
    peer.own({ { "UTF8_STRING", "hunter2" }, { "x-kde-passwordManagerHint", "secret" } });
    ASSERT_TRUE(offered(1));
    EXPECT_TRUE(offers.last().types.contains(u"org.nspasteboard.ConcealedType"_qs));
    EXPECT_EQ(peer.asked(), QByteArrayList{ "TARGETS" });
}

TEST_F(X11PasteboardTest, hostileOwners)
{
    using Manner = X11SelectionPeer::Manner;
    const std::pair<const char*, Manner> table[] = {
        { "refuses", Manner::refuses },
        { "says yes and gives nothing", Manner::givesNothing },
        { "announces two gigabytes and sends without end", Manner::sendsWithoutEnd },
        { "sends more at once than is wanted", Manner::sendsTooMuch },
        { "changes the selection before it answers", Manner::isReplaced },
    };
    for (const auto& [what, manner] : table) {
        offers.clear();
        peer.own({ { "UTF8_STRING", "x" } }, manner);
        ASSERT_TRUE(offered(1)) << what;
        EXPECT_EQ(read(offers.first().changeCount, plain, 1 << 20), std::nullopt) << what;
    }
    peer.own({ { "UTF8_STRING", "good again" } });
    EXPECT_TRUE(waitFor([&] { return readLatest(plain) == "good again"; }));
}

TEST_F(X11PasteboardTest, ownersThatFallSilentAreGivenUp)
{
    using Manner = X11SelectionPeer::Manner;
    peer.own({ { "UTF8_STRING", "x" } }, Manner::isSilent);
    ASSERT_TRUE(offered(1));
    EXPECT_EQ(readLatest(plain), std::nullopt);
    peer.own({ { "UTF8_STRING", "x" } }, Manner::diesHalfway);
    ASSERT_TRUE(offered(2));
    EXPECT_EQ(readLatest(plain), std::nullopt);
}

TEST_F(X11PasteboardTest, targetsThatAreNoneAreNotTold)
{
    using Manner = X11SelectionPeer::Manner;
    peer.own({ { "UTF8_STRING", "x" } }, Manner::liesAboutTargets);
    peer.own({ { "UTF8_STRING", "y" } });
    ASSERT_TRUE(offered(1));
    EXPECT_EQ(readLatest(plain), "y");
}

TEST_F(X11PasteboardTest, theOwnerIsTheProgramWithAWindow)
{
    X11Peer desktop;
    const xcb_window_t window = desktop.open({ 100, 100, 200, 100 });
    const char name[] = "one\0Editor";
    xcb_change_property(
        desktop.raw, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8, sizeof name, name);
    desktop.settle(window);
    peer.own({ { "UTF8_STRING", "x" } }); // both are this process
    ASSERT_TRUE(offered(1));
    ASSERT_TRUE(offers.last().owner);
    EXPECT_EQ(offers.last().owner->windowClass, u"Editor"_qs);
    EXPECT_EQ(offers.last().owner->pid, QCoreApplication::applicationPid());
}

TEST_F(X11PasteboardTest, whatComesFastComesInOrder)
{
    constexpr int copies = 40;
    QByteArrayList got;
    QObject::connect(&pasteboard, &Pasteboard::changed, &pasteboard, [&](const PasteboardOffer& offer) {
        pasteboard.read(offer.changeCount, plain, 100, [&](const auto& data) { got.append(data.value_or("lost")); });
    });
    for (int i = 0; i < copies; ++i) {
        peer.own({ { "UTF8_STRING", QByteArray::number(i) } });
        ASSERT_TRUE(waitFor([&] { return got.size() == i + 1; })) << i;
        EXPECT_EQ(got.last().toInt(), i);
    }
}

TEST_F(X11PasteboardTest, handsOverToAClipboardManagerAtTheEnd)
{
    peer.manageClipboard();
    auto leaving = std::make_unique<X11Pasteboard>(loop);
    leaving->write({ { { plain, "kept" }, { png, QByteArray(1 << 20, 'k') } } });
    bool isTaken = false;
    leaving->read(-1, plain, 1, [&](const auto&) { isTaken = true; });
    ASSERT_TRUE(waitFor([&] { return isTaken; }));
    // Its end is waited for elsewhere, since the manager is served by this thread.
    const auto end = std::async(std::launch::async, [&] { leaving.reset(); });
    EXPECT_TRUE(waitFor([&] { return end.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }));
    EXPECT_EQ(peer.saved("UTF8_STRING"), "kept");
    EXPECT_EQ(peer.saved("image/png"), QByteArray(1 << 20, 'k'));
}

TEST(X11SelectionTypes, names)
{
    using namespace x11::selectionTypes;
    EXPECT_EQ(typesOf({ "TARGETS", "STRING", "image/png", "x-special/gnome-copied-files" }),
        (QSet<QString>{ u"TARGETS"_qs, plain, png, u"public.file-url"_qs }));
    EXPECT_EQ(targetFor(plain, { "STRING", "text/plain", "UTF8_STRING" }), "UTF8_STRING");
    EXPECT_EQ(targetFor(u"application/x-own"_qs, { "application/x-own" }), "application/x-own");
    EXPECT_EQ(targetFor(png, { "image/bmp" }), "");
    EXPECT_EQ(fromWire("STRING", "\xE4"), "\xC3\xA4");
    EXPECT_EQ(fromWire("UTF8_STRING", QByteArray("a\0\0", 3)), "a");
    EXPECT_EQ(fromWire("image/png", QByteArray("a\0", 2)), QByteArray("a\0", 2));
    EXPECT_EQ(fromWire("x-special/gnome-copied-files", "cut\nfile:///a\nfile:///b"), "file:///a\nfile:///b");
}

} // namespace
} // namespace kestro
