#include "Kestro/Notes/NotesWidget.h"
#include "Kestro/Widgets/Feature.h"
#include "Tests/App/StyleFixture.h"

#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>

namespace kestro {
namespace {

class NotesViews : public test::StyleViews {
protected:
    ~NotesViews() override { item.reset(); }

    void load(const QByteArray& bytes)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        file.close();
        read();
    }
    void read()
    {
        notes.load();
        ASSERT_TRUE(platform.loop.turnWhenPosted());
    }
    QQuickItem& show(const char* qml)
    {
        engine.rootContext()->setContextProperty(QStringLiteral("notesWidget"), &widget);
        QQuickItem& shown = StyleViews::show(("import Kestro.Notes\n" + QByteArray(qml)).constData());
        window.grabWindow(); // lays out
        return shown;
    }
    void showWindow() { show("NotesWindowView { widget: notesWidget; toolTips: null; width: 400; height: 300 }"); }
    QQuickItem& editor() const { return *named(*item, QStringLiteral("Note")); }
    QString shown() const { return names(*item).join(QLatin1Char('|')); }
    void type(const char* text)
    {
        for (; *text; ++text)
            QTest::keyClick(&window, *text);
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(&window, key, modifiers); }

    QTemporaryDir home;
    const QString path = home.filePath(QStringLiteral("notes.txt"));
    test::FakePlatform platform;
    FeatureHost host{ platform.preferences };
    NotesModel notes{ platform.loop, platform.log, NotesStorage{ path } };
    NotesWidget widget{ host, notes };
};

TEST_F(NotesViews, TheCardShowsTheBeginningOrWhyThereIsNone)
{
    QQuickItem& card = show("NotesCard { widget: notesWidget; toolTips: null; width: 408; height: 88 }");
    EXPECT_EQ(shown(), QStringLiteral("Edit")) << "nothing while it is read";
    ASSERT_TRUE(QDir().mkpath(path));
    read();
    EXPECT_EQ(shown(), notes.error() + QStringLiteral("|Edit"));
    ASSERT_TRUE(QDir().rmdir(path));
    load("");
    EXPECT_EQ(shown(), QStringLiteral("Empty note|Edit"));
    notes.edit(QStringLiteral("<b>milk</b>\neggs"));
    EXPECT_EQ(shown(), QStringLiteral("<b>milk</b>\neggs|Edit"));
    notes.edit(QString(5000, u'\n') + QString(5000, u'x'));
    window.grabWindow();
    EXPECT_LE(named(card, notes.preview())->height(), 88);
    QList<WidgetKind> opened;
    host.openWindow = [&](WidgetKind kind) { opened.append(kind); };
    act(named(card, QStringLiteral("Edit")), "pressAction");
    EXPECT_EQ(opened, QList{ WidgetKind::notes });
}

TEST_F(NotesViews, WhatIsTypedReachesTheNote)
{
    load("caf\xC3\xA9\xC2\xA0!\r\nend");
    showWindow();
    EXPECT_EQ(notes.text(), QStringLiteral("café\u00A0!\r\nend")) << "opening changes nothing";
    EXPECT_EQ(platform.loop.waiting(), 0);
    press(Qt::Key_End, Qt::ControlModifier);
    press(Qt::Key_Return);
    type("milk");
    press(Qt::Key_Tab);
    EXPECT_EQ(notes.text(), QStringLiteral("café\u00A0!\nend\nmilk\t"));
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_NE(notes.text(), QStringLiteral("café\u00A0!\nend\nmilk\t"));
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_Delete);
    EXPECT_EQ(notes.text(), QString());
    EXPECT_TRUE(platform.loop.waiting());
}

TEST_F(NotesViews, OpensWhereItWasLeft)
{
    load(QByteArray(2000, 'a') + "\n" + QByteArray("line\n").repeated(200));
    showWindow();
    EXPECT_EQ(editor().property("cursorPosition").toInt(), 0);
    press(Qt::Key_End, Qt::ControlModifier);
    press(Qt::Key_PageUp);
    const int left = editor().property("cursorPosition").toInt();
    EXPECT_LT(left, 3001 - 40);
    EXPECT_GT(left, 3001 - 200) << "a page is what fits";
    press(Qt::Key_PageUp, Qt::ShiftModifier);
    EXPECT_GT(editor().property("selectedText").toString().size(), 40);
    const int moved = editor().property("cursorPosition").toInt();
    item.reset();
    showWindow();
    EXPECT_EQ(editor().property("cursorPosition").toInt(), moved);
    const QRectF cursor = editor().property("cursorRectangle").toRectF();
    EXPECT_TRUE(item->contains(editor().mapToItem(item.get(), cursor.center())));
}

TEST_F(NotesViews, AFlawIsToldInTheWindow)
{
    ASSERT_TRUE(QDir().mkpath(path));
    read();
    showWindow();
    EXPECT_EQ(shown(), notes.error()) << "no editor";
    ASSERT_TRUE(QDir().rmdir(path));
    read();
    EXPECT_EQ(shown(), QStringLiteral("Note"));
    ASSERT_TRUE(QDir().mkpath(path + QStringLiteral("/in the way")));
    type("x");
    notes.flush();
    platform.loop.turn();
    EXPECT_EQ(shown(),
        QStringLiteral("Note|%1 Your text stays here, and is saved as soon as that works.").arg(notes.saveError()));
    ASSERT_TRUE(QDir(path).removeRecursively());
    Q_EMIT widget.removed();
    EXPECT_FALSE(window.isVisible());
}

TEST_F(NotesViews, NoMoreIsPastedThanThereIsRoomFor)
{
    const QString full = QStringLiteral("Note|A note holds 100,000 characters. What goes beyond them is not kept.");
    load("<before after>\nend");
    showWindow();
    QGuiApplication::clipboard()->setText(QStringLiteral("A line of what was copied.\n").repeated(200000));
    editor().setProperty("cursorPosition", 8);
    press(Qt::Key_Right, Qt::ShiftModifier);
    press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(notes.text().size(), NotesStorage::maxLength);
    EXPECT_TRUE(notes.text().startsWith(QStringLiteral("<before A line of what was copied.\nA line")));
    EXPECT_TRUE(notes.text().endsWith(QStringLiteral("fter>\nend")));
    EXPECT_EQ(shown(), full);
    press(Qt::Key_Backspace);
    EXPECT_EQ(shown(), QStringLiteral("Note"));
    QGuiApplication::clipboard()->setText(QStringLiteral("👋👋"));
    press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(notes.text().count(QStringLiteral("👋")), 1);
    EXPECT_TRUE(notes.text().endsWith(QStringLiteral("👋fter>\nend")));
    EXPECT_EQ(shown(), full);
    type("x");
    EXPECT_TRUE(notes.text().endsWith(QStringLiteral("👋xfter>\nen"))) << "the note ends where it is full";
    EXPECT_EQ(shown(), full);
    for (int i = 0; i < 4; ++i)
        press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(notes.text(), QStringLiteral("<before after>\nend"));
    EXPECT_EQ(shown(), QStringLiteral("Note"));
}

} // namespace
} // namespace kestro
