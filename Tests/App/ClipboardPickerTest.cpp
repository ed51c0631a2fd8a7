#include "Kestro/Clipboard/ClipboardPicker.h"
#include "ClipboardFixture.h"

#include <QCoreApplication>
#include <QKeyEvent>

using namespace kestro;
using namespace kestro::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class ClipboardPickerTest : public ClipboardFixture {
protected:
    ClipboardPickerTest()
    {
        ports.screens.setOne({ 1000, 800 });
        ports.windows.windows =
            std::vector<DesktopWindow>{ { 7, 99, u"target"_qs }, { 8, QCoreApplication::applicationPid(), u"own"_qs } };
        ports.windows.activeId = 7;
        ports.preferences.values[u"clipboardPasteAfterPicking"_qs] = true;
        turnOn();
        for (const char* text : { "alpha", "beta", "https://gamma.org" })
            pasteboard.copyText(text);
    }
    bool press(int key, Qt::KeyboardModifiers modifiers = {}, bool repeats = false)
    {
        return picker.handle(QKeyEvent(QEvent::KeyPress, key, modifiers, {}, repeats));
    }
    QStringList shown()
    {
        QStringList lines;
        for (int i = 0; i < picker.rows()->count(); ++i)
            lines.append(picker.rows()->data(picker.rows()->index(i), ClipRows::Line).toString());
        return lines;
    }
    QString selected() { return shown().value(picker.selectedRow()); }
    QString at(int row, ClipRows::Role role) { return picker.rows()->data(picker.rows()->index(row), role).toString(); }

    ClipboardPicker picker{ *model, { ports.loop, ports.screens, ports.pointer, ports.panels, ports.windows },
        [](QQuickWindow&, const QVariantMap&) { return nullptr; } };
};

TEST_F(ClipboardPickerTest, opensInTheMiddleOfTheDisplayWithThePointer)
{
    ports.screens.screens.append(ports.screens.screens.first());
    ports.screens.screens.last().info.frame.moveLeft(1000);
    ports.screens.screens.last().visibleFrame.moveLeft(1000);
    ports.pointer.at = { 1200, 300 };
    picker.show();
    ASSERT_TRUE(picker.isOpen());
    const QRect place = picker.panel()->geometry();
    EXPECT_EQ(place.size(), QSize(680 + 48, 440 + 48));
    EXPECT_EQ(place.center().x(), 1499);
    EXPECT_EQ(ports.panels.focused, picker.panel());
    EXPECT_EQ(selected(), u"https://gamma.org"_qs);
    picker.setQuery(u"x"_qs);
    picker.close();
    EXPECT_EQ(ports.panels.focused, nullptr);
    picker.show();
    EXPECT_EQ(picker.query(), QString()) << "anew each time";
}

TEST_F(ClipboardPickerTest, searchesAndFiltersAndSelectsTheFirst)
{
    picker.show();
    press(Qt::Key_Down);
    EXPECT_EQ(selected(), u"beta"_qs);
    picker.setQuery(u"A"_qs);
    EXPECT_THAT(shown(), ElementsAre(u"https://gamma.org"_qs, u"beta"_qs, u"alpha"_qs));
    EXPECT_EQ(picker.selectedRow(), 0);
    picker.setQuery(u"Al"_qs);
    EXPECT_THAT(shown(), ElementsAre(u"alpha"_qs));
    picker.setQuery(u"a"_qs);
    picker.setFilter(u"Text"_qs);
    EXPECT_THAT(shown(), ElementsAre(u"beta"_qs, u"alpha"_qs));
    picker.setQuery(u"zzz"_qs);
    EXPECT_EQ(picker.selectedRow(), -1);
    EXPECT_EQ(picker.emptyText(), u"No matches"_qs);
    EXPECT_EQ(picker.preview()->kind(), QString());
    EXPECT_FALSE(press(Qt::Key_Return));
    EXPECT_FALSE(press(Qt::Key_Backspace)) << "edits the query";
    EXPECT_TRUE(picker.isOpen());
}

TEST_F(ClipboardPickerTest, picksIntoTheWindowThatTheUserCameFrom)
{
    struct Case {
        const char* what;
        int key;
        Qt::KeyboardModifiers modifiers;
        quint32 from;
        const char* copied;
        bool pasted, plain;
    };
    const Case table[] = { { "return", Qt::Key_Return, {}, 7, "https://gamma.org", true, false },
        { "plain", Qt::Key_Return, Qt::ShiftModifier, 7, "https://gamma.org", true, true },
        { "enter", Qt::Key_Enter, Qt::KeypadModifier, 7, "https://gamma.org", true, false },
        { "copy only", Qt::Key_Return, Qt::AltModifier, 7, "https://gamma.org", false, false },
        { "a digit", Qt::Key_3, Qt::ControlModifier, 7, "alpha", true, false },
        { "from our own window", Qt::Key_Return, {}, 8, "https://gamma.org", false, false } };
    for (const Case& each : table) {
        keys.posted.clear();
        ports.windows.activeId = each.from;
        picker.show();
        EXPECT_TRUE(press(each.key, each.modifiers)) << each.what;
        EXPECT_FALSE(picker.isOpen()) << each.what;
        ports.loop.advance(1);
        EXPECT_EQ(pasteboard.written[0].value(plain), each.copied) << each.what;
        EXPECT_EQ(pasteboard.written[0].contains(u"public.url"_qs),
            QByteArray(each.copied).startsWith("http") && !each.plain);
        EXPECT_EQ(keys.posted.size(), each.pasted ? 1 : 0) << each.what;
    }
}

TEST_F(ClipboardPickerTest, deletesOneAPressAndBringsItBack)
{
    picker.show();
    press(Qt::Key_Down);
    EXPECT_TRUE(press(Qt::Key_Backspace));
    EXPECT_EQ(selected(), u"alpha"_qs);
    EXPECT_TRUE(press(Qt::Key_Backspace, {}, true)) << "held: taken, and for nothing";
    EXPECT_EQ(picker.rows()->count(), 2);
    EXPECT_TRUE(press(Qt::Key_Z, Qt::ControlModifier));
    EXPECT_THAT(shown(), ElementsAre(u"https://gamma.org"_qs, u"beta"_qs, u"alpha"_qs));
    EXPECT_FALSE(press(Qt::Key_Z, Qt::ControlModifier)) << "nothing to undo: the field's own";
    for (int i = 0; i < 3; ++i)
        press(Qt::Key_Backspace);
    EXPECT_EQ(picker.emptyText(), u"Nothing copied yet"_qs);
    EXPECT_EQ(picker.selectedRow(), -1);
}

TEST_F(ClipboardPickerTest, rowsTellWhatIsSeen)
{
    pasteboard.copyText("4111 1111 1111 1111");
    pasteboard.copyText("evil\u202Etxt");
    model->togglePin(ClipEntry(model->history().entries()[3]));
    ports.loop.advance(300);
    picker.show();
    EXPECT_THAT(shown(),
        ElementsAre(u"beta"_qs, u"eviltxt"_qs, u"4111 1111 1111 1111"_qs, u"https://gamma.org"_qs, u"alpha"_qs));
    EXPECT_EQ(at(0, ClipRows::Header), u"Pinned"_qs);
    EXPECT_EQ(at(1, ClipRows::Header), u"Recent"_qs);
    EXPECT_TRUE(at(2, ClipRows::Mask).endsWith(u"1111"_qs));
    EXPECT_EQ(at(2, ClipRows::Name), u"hidden, 5m ago"_qs);
    EXPECT_EQ(at(3, ClipRows::KindSymbol), u"link"_qs);
    EXPECT_EQ(at(4, ClipRows::Number), u"5"_qs);
    const std::pair<double, const char*> ages[] = { { -5, "now" }, { 59, "now" }, { 60, "1m ago" }, { 3600, "1h ago" },
        { 200000, "2d ago" } };
    for (const auto& [seconds, text] : ages)
        EXPECT_EQ(clipAge(seconds).toStdString(), text);
}

TEST_F(ClipboardPickerTest, thePreviewHoldsAllOfIt)
{
    picker.show();
    EXPECT_EQ(picker.preview()->kind(), u"link"_qs);
    EXPECT_EQ(picker.preview()->appName(), u"Unknown app"_qs);
    press(Qt::Key_Down);
    EXPECT_EQ(picker.preview()->caption(), u"4 characters · 1 line"_qs);
    pasteboard.copy({ { png, picture(2000, 10) } });
    turnUntil([&] { return picker.rows()->count() == 4; });
    press(Qt::Key_Up);
    press(Qt::Key_Up);
    turnUntil([&] { return !picker.preview()->image().isNull(); });
    EXPECT_EQ(picker.preview()->image().width(), 800);
    EXPECT_EQ(picker.preview()->caption(), u"2000 × 10 pixels"_qs);

    EXPECT_THAT(clipBlocks({}), IsEmpty());
    EXPECT_THAT(clipBlocks(u"ab\ncd\nef"_qs, 5), ElementsAre(u"ab"_qs, u"cd\nef"_qs));
    EXPECT_THAT(clipBlocks(u"abcdef"_qs, 4), ElementsAre(u"abcd"_qs, u"ef"_qs));
    EXPECT_THAT(clipBlocks(u"abc😀d"_qs, 4), ElementsAre(u"abc😀"_qs, u"d"_qs));
    EXPECT_THAT(clipBlocks(u"\n\n\n"_qs, 2), ElementsAre(u"\n"_qs, u"\n"_qs));
}

TEST_F(ClipboardPickerTest, closesWhenThereIsNothingToStayFor)
{
    picker.show();
    EXPECT_TRUE(press(Qt::Key_Escape, Qt::ControlModifier));
    EXPECT_FALSE(picker.isOpen());
    picker.show();
    ports.loop.advance(0.5);
    EXPECT_FALSE(picker.isOpen()) << "without the focus";
    picker.show();
    model->setEnabled(false);
    EXPECT_FALSE(picker.isOpen());
    ports.loop.turn();
}

} // namespace
