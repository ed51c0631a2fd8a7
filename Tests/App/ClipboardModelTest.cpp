#include "ClipboardFixture.h"

#include <QTest>

using namespace kestro;
using namespace kestro::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using ClipboardWatch = ClipboardFixture;
using ClipboardKeep = ClipboardFixture;
using ClipboardPick = ClipboardFixture;

TEST_F(ClipboardWatch, recordsWhatProgramsCopy)
{
    pasteboard.copyText("before");
    turnOn();
    EXPECT_TRUE(model->isLoaded() && pasteboard.watched);
    EXPECT_THAT(previews(), IsEmpty()) << "what stood there is not told";
    pasteboard.copyText("one", { u"Editor"_qs });
    pasteboard.copyText("https://a.com\n", { u"Unknown"_qs });
    pasteboard.copyText(" \n");
    pasteboard.copy({ { u"public.file-url"_qs, "file:///a%20b\r\nfile:///c\r\n" }, { plain, "x" } });
    pasteboard.copy({ { u"public.file-url"_qs, "https://no.file/" }, { plain, "an address" } });
    EXPECT_THAT(previews(), ElementsAre(u"an address"_qs, u"a b, c"_qs, u"https://a.com"_qs, u"one"_qs));
    const auto entries = model->history().entries();
    EXPECT_EQ(entries[3].sourceBundleID, u"org.x.Editor"_qs);
    EXPECT_EQ(entries[3].sourceName, u"The Editor"_qs);
    EXPECT_EQ(entries[2].sourceName, u"Unknown"_qs);
    EXPECT_EQ(entries[0].sourceName, std::nullopt);
}

TEST_F(ClipboardWatch, whatMayNotBeReadIsNotAskedFor)
{
    turnOn();
    ports.preferences.values[u"clipboardIgnoredApps"_qs] = QVariantList{ u"Keeper"_qs };
    for (const char16_t* type :
        { u"org.nspasteboard.ConcealedType", u"org.nspasteboard.TransientType", u"com.lumbra.ombrel.copyback" })
        pasteboard.copy({ { plain, "x" }, { QString::fromUtf16(type), {} } });
    pasteboard.copyText("x", { u"Keeper"_qs, u"Editor"_qs });
    pasteboard.copy({ { plain, "x" } }, { u"Editor"_qs }, u"Keeper"_qs);
    EXPECT_THAT(pasteboard.asked, IsEmpty());
    EXPECT_THAT(previews(), IsEmpty());
    ports.preferences.values.clear();
    pasteboard.copyText("x", { u"org.keepassxc.KeePassXC"_qs });
    EXPECT_THAT(previews(), IsEmpty()) << "ignored while nothing else is set";
}

TEST_F(ClipboardWatch, whoMadeTheCopy)
{
    turnOn();
    pasteboard.copyText("a", { u"Editor"_qs, u"Browser"_qs });
    EXPECT_EQ(first().sourceName, std::nullopt) << "one of two";
    pasteboard.copyText("b", { u"Editor"_qs, u"Editor"_qs });
    EXPECT_EQ(first().sourceName, u"The Editor"_qs);
    pasteboard.copy({ { plain, "c" } }, { u"Editor"_qs, u"Browser"_qs }, u"Browser"_qs);
    EXPECT_EQ(first().sourceName, u"Browser"_qs) << "the platform knows";
}

TEST_F(ClipboardWatch, imagesInTheBestTypeThatAnswers)
{
    turnOn();
    pasteboard.copy({ { png, {} }, { u"public.jpeg"_qs, picture(200, 100, "JPG") }, { plain, "x" } });
    settle();
    EXPECT_THAT(previews(), ElementsAre(u"Image 200 × 100"_qs));
    EXPECT_EQ(model->thumbnail(first()).size(), QSize(96, 48));
    EXPECT_EQ(QImage(model->imagePath(*first().imageFileName())).size(), QSize(200, 100));

    const QByteArray exact = picture(30, 20);
    pasteboard.copy({ { png, exact } });
    settle();
    QFile file(model->imagePath(*first().imageFileName()));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), exact);

    for (const QByteArray& broken :
        { QByteArray("nonsense"), exact.first(20), QByteArray("<svg xmlns='http://www.w3.org/2000/svg'/>") }) {
        pasteboard.copy({ { png, broken } });
        settle();
        ASSERT_THAT(ports.log.lines, ElementsAre(u"Kestro: couldn't read a copied image"_qs));
        ports.log.lines.clear();
    }
    EXPECT_EQ(model->history().entries().size(), 2);
}

TEST_F(ClipboardWatch, longTextsAreCutOffTheMainThread)
{
    turnOn();
    pasteboard.copyText(QByteArray("\xC3\xBC").repeated(15 << 20));
    EXPECT_THAT(previews(), IsEmpty());
    settle();
    ASSERT_EQ(previews().size(), 1);
    EXPECT_EQ(std::get<ClipEntry::Text>(first().kind).text, QString(100000, QChar(0xFC)));
    pasteboard.copyText("\xFF\xFE"
                        "bad\x80");
    EXPECT_EQ(previews().size(), 2) << "bytes that are no text are still shown as well as can be";
}

TEST_F(ClipboardWatch, aPickHasTheFormatsOfTheLatestCopy)
{
    const QString html = u"public.html"_qs;
    const auto picked = [&](bool plainly) {
        EXPECT_TRUE(model->copyBack(first(), plainly));
        return pasteboard.written.value(0).value(html);
    };
    turnOn();
    pasteboard.copy({ { plain, "bold" }, { html, "<b>bold</b>" }, { u"public.rtf"_qs, QByteArray(5 << 20, 'x') } });
    settle();
    EXPECT_EQ(picked(false), "<b>bold</b>");
    EXPECT_EQ(picked(true), QByteArray());
    model->setEnabled(false);
    turnOn();
    EXPECT_EQ(picked(false), "<b>bold</b>") << "after a restart";
    model->remove(first().id);
    ports.loop.advance(5); // saved without it
    model->undo();
    settle();
    EXPECT_EQ(picked(false), "<b>bold</b>") << "brought back";
    pasteboard.copyText("bold");
    settle();
    EXPECT_EQ(picked(false), QByteArray());
    pasteboard.copy({ { plain, "gone" }, { html, "<i>gone</i>" } });
    settle();
    model->clear(true);
    settle();
    EXPECT_THAT(QDir(dir + u"/formats"_qs).entryList(QDir::Files), IsEmpty());
}

TEST_F(ClipboardWatch, whatIsLateIsDropped)
{
    turnOn();
    pasteboard.holdsBack = true;
    pasteboard.copyText("late");
    model->setEnabled(false);
    model->setEnabled(true);
    pasteboard.answer("late");
    settle();
    EXPECT_THAT(previews(), IsEmpty());
    pasteboard.copyText("gone");
    pasteboard.answer(std::nullopt);
    pasteboard.holdsBack = false;

    pasteboard.copy({ { png, picture(9, 9) } });
    model->setEnabled(false);
    model->setEnabled(true);
    settle();
    EXPECT_THAT(previews(), IsEmpty());
    EXPECT_THAT(imageFiles(), IsEmpty()) << "the file goes with the entry that never was";
}

TEST_F(ClipboardKeep, aBurstIsWrittenOnce)
{
    turnOn();
    for (int i = 0; i < 10; ++i) {
        pasteboard.copyText(QByteArray::number(i));
        ports.loop.advance(0.05);
    }
    EXPECT_FALSE(QFile::exists(dir + u"/history.json"_qs));
    ports.loop.advance(1);
    EXPECT_EQ(ports.loop.waiting(), 0) << "nothing wakes while nothing is copied";
    model->flush();
    EXPECT_EQ(onDisk().entries().size(), 10);

    for (int i = 0; i < 30; ++i) {
        pasteboard.copyText("again and again");
        ports.loop.advance(0.5);
    }
    EXPECT_EQ(previews().size(), 11);
    EXPECT_TRUE(QTest::qWaitFor([&] { return onDisk().entries().size() == 11; })) << "even while it goes on";

    pasteboard.copyText("last");
    model.reset();
    EXPECT_EQ(onDisk().entries().size(), 12) << "without waiting for its second";
}

TEST_F(ClipboardKeep, survivesARestartWithItsThumbnails)
{
    turnOn();
    pasteboard.copyText("kept");
    pasteboard.copy({ { png, picture(300, 300) } });
    settle();
    model->togglePin(first());
    settle();
    model->setEnabled(false);
    EXPECT_THAT(previews(), IsEmpty());
    EXPECT_TRUE(model->hasStoredData());
    turnOn();
    EXPECT_THAT(previews(), ElementsAre(u"Image 300 × 300"_qs, u"kept"_qs));
    EXPECT_EQ(model->thumbnail(first()).width(), 96);
}

TEST_F(ClipboardKeep, failuresAreLoggedAndLeaveTheHistoryAlone)
{
    QDir().mkpath(dir + u"/history.json"_qs);
    turnOn();
    EXPECT_FALSE(model->isLoaded() || pasteboard.watched);
    ASSERT_EQ(ports.log.lines.size(), 1);
    EXPECT_TRUE(ports.log.lines.takeFirst().startsWith(u"Kestro: clipboard history load failed: "));
    QDir(dir).removeRecursively();
    model->setEnabled(false);
    turnOn();

    QFile inTheWay(dir);
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    pasteboard.copyText("x");
    pasteboard.copy({ { png, picture(9, 9) } });
    settle();
    ASSERT_EQ(ports.log.lines.size(), 2);
    EXPECT_TRUE(ports.log.lines.filter(u"Kestro: couldn't save a copied image: "_qs).size() == 1);
    EXPECT_TRUE(ports.log.lines.filter(u"Kestro: couldn't save the clipboard history: "_qs).size() == 1);
    ASSERT_TRUE(inTheWay.remove());
    pasteboard.copyText("y");
    settle();
    EXPECT_EQ(onDisk().entries().size(), 2) << "the next change writes it all";
}

TEST_F(ClipboardKeep, whatWasDeletedComesBackForTenSeconds)
{
    turnOn();
    pasteboard.copyText("a");
    pasteboard.copy({ { png, picture(9, 9) } });
    turnUntil([&] { return previews().size() == 2; });
    pasteboard.copyText("c");
    const auto all = previews();
    model->remove(model->history().entries()[1].id);
    EXPECT_EQ(model->undoText(), u"Entry deleted"_qs);
    ports.loop.advance(9.9);
    EXPECT_EQ(imageFiles().size(), 1);
    model->undo();
    EXPECT_EQ(previews(), all);
    EXPECT_FALSE(model->thumbnail(model->history().entries()[1]).isNull());

    model->forgetLast();
    EXPECT_EQ(previews(), all.sliced(1));
    model->clear(true);
    EXPECT_THAT(previews(), IsEmpty());
    model->undo();
    EXPECT_EQ(previews(), all.sliced(1)) << "one step back, no more";
    model->clear(false);
    ports.loop.advance(10);
    EXPECT_EQ(model->undoText(), QString());
    model->undo();
    settle();
    EXPECT_THAT(previews(), IsEmpty());
    EXPECT_THAT(imageFiles(), IsEmpty());
    EXPECT_THAT(onDisk().entries(), IsEmpty());
}

TEST_F(ClipboardKeep, clearingWhileItIsOff)
{
    turnOn();
    pasteboard.copyText("a");
    pasteboard.copyText("b");
    pasteboard.copy({ { png, picture(9, 9) } });
    settle();
    model->togglePin(model->history().entries()[1]);
    model->setEnabled(false);
    model->clear(false);
    settle();
    ASSERT_EQ(onDisk().entries().size(), 1);
    EXPECT_EQ(onDisk().entries()[0].preview(), u"b"_qs);
    EXPECT_THAT(imageFiles(), IsEmpty());
    model->clear(true);
    settle();
    EXPECT_FALSE(model->hasStoredData());
}

TEST_F(ClipboardPick, everyKindGoesBackAsItCame)
{
    turnOn();
    pasteboard.copyText("text");
    EXPECT_TRUE(model->copyBack(first()));
    const QString tag = ClipHistory::copyBackType;
    EXPECT_EQ(pasteboard.written, (QList<PasteboardItem>{ { { plain, "text" }, { tag, {} } } }));

    pasteboard.copyText("https://a.com");
    EXPECT_TRUE(model->copyBack(first()));
    EXPECT_EQ(pasteboard.written[0].keys(), (QStringList{ tag, u"public.url"_qs, plain }));
    EXPECT_TRUE(model->copyBack(first(), true));
    EXPECT_EQ(pasteboard.written[0].keys(), (QStringList{ tag, plain }));

    pasteboard.copy({ { u"public.file-url"_qs, "file:///a%0A\nfile:///b" } });
    EXPECT_TRUE(model->copyBack(first()));
    ASSERT_EQ(pasteboard.written.size(), 2);
    EXPECT_EQ(pasteboard.written[0].value(u"public.file-url"_qs), "file:///a%0A");
    EXPECT_TRUE(pasteboard.written[0].contains(tag) && !pasteboard.written[1].contains(tag));

    const QByteArray image = picture(9, 9);
    pasteboard.copy({ { png, image } });
    settle();
    EXPECT_TRUE(model->copyBack(first()));
    EXPECT_EQ(pasteboard.written[0].value(png), image);
    QFile::remove(model->imagePath(*first().imageFileName()));
    pasteboard.written.clear();
    EXPECT_FALSE(model->copyBack(first()));
    EXPECT_FALSE(model->copyBack({ {}, {}, ClipEntry::Files{} }));
    EXPECT_FALSE(model->copyBack({ {}, {}, ClipEntry::Image{ u"../../etc/passwd"_qs, 1, 1 } }));
    EXPECT_THAT(pasteboard.written, IsEmpty());
    EXPECT_EQ(ports.log.lines.size(), 2);
}

TEST_F(ClipboardPick, copiedIsShownForItsOwnTime)
{
    turnOn();
    pasteboard.copyText("a");
    pasteboard.copyText("b");
    const auto entries = model->history().entries();
    model->copyBack(entries[0]);
    ports.loop.advance(1);
    model->copyBack(entries[1]);
    ports.loop.advance(1);
    EXPECT_EQ(model->copiedId(), entries[1].id);
    ports.loop.advance(0.5);
    EXPECT_EQ(model->copiedId(), std::nullopt);
}

TEST_F(ClipboardPick, pastesIntoTheWindowThatHasTheFocus)
{
    struct Case {
        const char* what;
        bool on, trusted;
        double focusAfter; ///< seconds; negative: never
        bool leaves; ///< the user goes on before the key
        bool pasted;
    };
    const Case table[] = { { "at once", true, true, 0, false, true }, { "late", true, true, 0.3, false, true },
        { "too late", true, true, -1, false, false }, { "left", true, true, 0, true, false },
        { "off", false, true, 0, false, false }, { "not trusted", true, false, 0, false, false } };
    for (const Case& each : table) {
        keys.posted.clear();
        keys.trusted = each.trusted;
        ports.preferences.values[u"clipboardPasteAfterPicking"_qs] = each.on;
        ports.windows.activeId = each.focusAfter == 0 ? 7 : 1;
        model->paste(7);
        if (each.focusAfter > 0) {
            ports.loop.advance(each.focusAfter);
            ports.windows.activeId = 7;
        }
        ports.loop.advance(0.05);
        if (each.leaves)
            ports.windows.activeId = 3;
        ports.loop.advance(1);
        EXPECT_EQ(keys.posted, each.pasted ? QList<quint32>{ 7 } : QList<quint32>()) << each.what;
    }
}

TEST_F(ClipboardPick, secretsAreMaskedUnlessTheUserSaysNo)
{
    const ClipEntry card{ {}, {}, ClipEntry::Text{ u"4111 1111 1111 1111"_qs } };
    EXPECT_TRUE(model->isMasked(card));
    EXPECT_FALSE(model->isMasked({ {}, {}, ClipEntry::Link{ u"https://a.com"_qs } }));
    ports.preferences.values[u"clipboardMasksSecrets"_qs] = false;
    EXPECT_FALSE(model->isMasked(card));
}

TEST_F(ClipboardPick, theDemoTouchesNothing)
{
    model->showDemo();
    EXPECT_EQ(model->history().pinnedCount(), 1);
    model->setEnabled(true);
    EXPECT_FALSE(model->isOn());
    EXPECT_TRUE(model->copyBack(first()));
    EXPECT_TRUE(model->togglePin(first()));
    settle();
    EXPECT_THAT(pasteboard.written, IsEmpty());
    EXPECT_FALSE(QFile::exists(dir));
}

} // namespace
