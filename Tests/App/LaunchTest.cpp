#include "Kestro/Launch/AppDelegate.h"
#include "Kestro/Launch/Rename.h"
#include "Tests/Support/Fakes.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <filesystem>
#include <gmock/gmock.h>

namespace kestro {

namespace {

class RenameTest : public testing::Test {
protected:
    QString path(const char* name) const { return dir.filePath(QString::fromLatin1(name)); }
    void makeFolder(const char* name) const
    {
        QDir(dir.path()).mkdir(QString::fromLatin1(name));
        QFile file(path(name) + QStringLiteral("/mark"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(name);
    }
    QByteArray mark(const char* name) const
    {
        QFile file(path(name) + QStringLiteral("/mark"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir dir;
};

TEST_F(RenameTest, movesAndLeavesALinkOnce)
{
    makeFolder("old");
    for (int start = 0; start < 2; ++start) {
        Rename::moveFolder(path("old"), path("new"));
        EXPECT_EQ("old", mark("new"));
        EXPECT_FALSE(QFileInfo(path("new")).isSymLink());
        EXPECT_EQ("old", mark("old")) << "scripts that point at the old path still work";
        EXPECT_EQ("new", std::filesystem::read_symlink(path("old").toStdString()))
            << "the link is relative, so that the home folder may move";
    }
}

TEST_F(RenameTest, movesNothingOverSomething)
{
    makeFolder("old");
    makeFolder("new");
    Rename::moveFolder(path("old"), path("new"));
    EXPECT_EQ("new", mark("new"));
    EXPECT_FALSE(QFileInfo(path("old")).isSymLink());

    QFile::link(QStringLiteral("nowhere"), path("dangling"));
    Rename::moveFolder(path("old"), path("dangling"));
    EXPECT_EQ("old", mark("old"));
    QFile::link(path("old"), path("link"));
    Rename::moveFolder(path("link"), path("target"));
    EXPECT_FALSE(QFileInfo::exists(path("target"))) << "a link is no folder to move";
}

TEST_F(RenameTest, aStaleCopyIsTheSameApplicationUnderTheOldName)
{
    test::FakeWorkspace workspace;
    workspace.bundles = { { QStringLiteral("/apps/Ombrel.app"), QStringLiteral("com.lumbra.ombrel") },
        { QStringLiteral("/other/Ombrel.app"), QStringLiteral("com.example.ombrel") } };
    const auto stale = [&](const char* own) {
        return Rename::staleCopy(QString::fromLatin1(own), QStringLiteral("com.lumbra.ombrel"), workspace);
    };
    EXPECT_EQ(QStringLiteral("/apps/Ombrel.app"), stale("/apps/Kestro.app"));
    EXPECT_EQ(std::nullopt, stale("/apps/Ombrel.app"));
    EXPECT_EQ(std::nullopt, stale("/other/Kestro.app"));
    EXPECT_EQ(std::nullopt, stale("/usr/bin/kestro"));
}

TEST(AppDelegateTest, movesTheOldFoldersBeforeAnythingReadsThemAndFlushesAtTheEnd)
{
    QTemporaryDir home;
    QDir(home.path()).mkpath(QStringLiteral("Library/Application Support/Ombrel"));
    test::FakePlatform platform;
    platform.screens.setOne({ 800, 600 });
    platform.preferences.values = { { QStringLiteral("agentsEnabled"), true },
        { QStringLiteral("displayMode"), QStringLiteral("notch") } };
    AppDelegate delegate(platform.ports(), Folders::under(home.path()));
    delegate.applicationDidFinishLaunching();
    platform.loop.turn();
    const QString data = home.path() + QStringLiteral("/Library/Application Support/");
    EXPECT_TRUE(QFileInfo(data + QStringLiteral("Ombrel")).isSymLink());
    EXPECT_TRUE(QFileInfo::exists(data + QStringLiteral("Kestro/agents.sock")));

    Q_EMIT platform.session.screensDidSleep();
    EXPECT_TRUE(delegate.model().surface().displaysAsleep());
    Q_EMIT platform.session.didWake();
    EXPECT_FALSE(delegate.model().surface().displaysAsleep());

    // Either mode has a surface, and a change of it closes what is open.
    delegate.model().toggleNotch();
    EXPECT_TRUE(delegate.model().expanded());
    platform.preferences.setValue(QStringLiteral("displayMode"), QStringLiteral("sidebar"));
    platform.loop.turn();
    EXPECT_FALSE(delegate.model().expanded());
    delegate.model().host().showCard(WidgetKind::stats);
    EXPECT_TRUE(delegate.model().expanded());
    delegate.applicationWillTerminate();
    EXPECT_EQ(1, platform.preferences.flushes);
}

} // namespace

} // namespace kestro
