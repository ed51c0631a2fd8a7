#include "Kestro/Layout/LauncherModel.h"
#include "Kestro/Notes/NotesFeature.h"
#include "Tests/Support/Fakes.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace kestro {
namespace {

class NotesTest : public testing::Test {
protected:
    NotesModel& load()
    {
        model.load();
        EXPECT_TRUE(platform.loop.turnWhenPosted());
        return model;
    }
    void write(const QByteArray& bytes) const
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }
    QByteArray read() const
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
    }
    /// Lets the saves that are due reach the disk and their results the model.
    void settle()
    {
        model.flush();
        platform.loop.turn();
    }
    /// A folder in the place of the note: it can neither be read nor replaced, by root neither.
    void block() const
    {
        QFile::remove(path);
        ASSERT_TRUE(QDir().mkpath(path + QStringLiteral("/in the way")));
    }
    void unblock() const { ASSERT_TRUE(QDir(path).removeRecursively()); }

    QTemporaryDir home;
    const QString path = home.filePath(QStringLiteral("notes.txt"));
    test::FakePlatform platform;
    NotesModel model{ platform.loop, platform.log, NotesStorage{ path } };
};

TEST_F(NotesTest, IsReadOnceAndLazily)
{
    write("milk");
    model.edit(QStringLiteral("too early"));
    EXPECT_EQ(model.text(), QString());
    model.load();
    load();
    EXPECT_EQ(model.text(), QStringLiteral("milk"));
    write("from elsewhere");
    model.load();
    settle();
    EXPECT_EQ(model.text(), QStringLiteral("milk"));
    EXPECT_EQ(read(), "from elsewhere") << "nothing was changed here";
}

TEST_F(NotesTest, ABurstOfTypingIsOneWrite)
{
    load().edit(QString());
    EXPECT_EQ(read(), "(none)");
    EXPECT_EQ(platform.loop.waiting(), 0) << "the same text is no change";
    for (const char* text : { "e", "eg", "egg" }) {
        model.edit(QLatin1String(text));
        platform.loop.advance(0.9);
        EXPECT_EQ(platform.loop.waiting(), 1);
    }
    EXPECT_EQ(read(), "(none)");
    platform.loop.advance(0.2);
    EXPECT_EQ(platform.loop.waiting(), 0);
    settle();
    EXPECT_EQ(read(), "egg");
    EXPECT_TRUE(platform.log.lines.isEmpty());
    model.edit(QString(NotesStorage::maxLength + 1, u'x'));
    EXPECT_EQ(model.text(), QString(NotesStorage::maxLength, u'x'));
    EXPECT_EQ(model.preview(), QString(1000, u'x'));
}

TEST_F(NotesTest, ANoteThatCannotBeReadIsNotOverwritten)
{
    block();
    load();
    EXPECT_FALSE(model.isLoaded());
    EXPECT_TRUE(model.error().startsWith(u"Couldn't read notes.txt (Couldn't read “notes.txt” in “"));
    EXPECT_TRUE(model.error().endsWith(QStringLiteral("it isn't an ordinary file). It was left as it is.")));
    EXPECT_TRUE(platform.log.lines.value(0).startsWith(u"Kestro: couldn't read the notes: Couldn't read “notes.txt”"));
    model.edit(QStringLiteral("gone"));
    settle();
    EXPECT_EQ(model.text(), QString());
    unblock();
    write("back");
    load();
    EXPECT_EQ(model.text(), QStringLiteral("back"));
    EXPECT_EQ(model.error(), QString());
}

TEST_F(NotesTest, TextThatCannotBeSavedIsKeptAndTriedAgain)
{
    const std::pair<const char*, std::function<void()>> ways[] = {
        { "at the next edit",
            [this] {
                model.edit(QStringLiteral("kept and more"));
                platform.loop.advance(1);
            } },
        { "when it is shown", [this] { model.load(); } },
        { "at the end", [this] { model.flush(); } },
    };
    load();
    for (const auto& [when, again] : ways) {
        SCOPED_TRACE(when);
        block();
        model.edit(QStringLiteral("kept"));
        settle();
        EXPECT_EQ(model.text(), QStringLiteral("kept"));
        EXPECT_TRUE(model.saveError().startsWith(u"Couldn't save “notes.txt” in “"));
        EXPECT_TRUE(
            platform.log.lines.value(0).startsWith(u"Kestro: couldn't save the notes: Couldn't save “notes.txt”"));
        unblock();
        again();
        settle();
        EXPECT_EQ(read(), model.text().toUtf8());
        EXPECT_EQ(model.saveError(), QString());
        model.edit(QString());
        settle();
        platform.log.lines.clear();
    }
}

TEST_F(NotesTest, WhatWasJustTypedIsSavedBeforeTheNoteGoes)
{
    FeatureHost host(platform.preferences);
    LauncherModel launcher(platform.loop, platform.preferences, platform.workspace, platform.fetcher, platform.log, {});
    launcher.add({ QUuid::createUuid(), LaunchItem::Widget{ WidgetKind::notes } });
    auto feature = std::make_unique<NotesFeature>(host, launcher, platform.loop, platform.log, NotesStorage{ path });
    feature->start();
    auto* widget = static_cast<NotesWidget*>(feature->widgets().front());
    QSignalSpy removed(widget, &NotesWidget::removed);
    widget->shown(true);
    while (!widget->notes()->isLoaded())
        ASSERT_TRUE(platform.loop.turnWhenPosted());
    widget->notes()->edit(QStringLiteral("at the end of the program"));
    feature->finish();
    EXPECT_EQ(read(), "at the end of the program");
    widget->notes()->edit(QStringLiteral("when it leaves the layout"));
    EXPECT_EQ(removed.size(), 0);
    launcher.remove(launcher.store().items().first().id);
    EXPECT_EQ(read(), "when it leaves the layout");
    EXPECT_EQ(removed.size(), 1);
    widget->notes()->edit(QStringLiteral("when the model goes"));
    feature.reset();
    EXPECT_EQ(read(), "when the model goes");
    platform.loop.turn(); // late results find nobody
}

} // namespace
} // namespace kestro
