#include "Kestro/Cleanup/CleanupModel.h"
#include "Tests/Support/Fakes.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace kestro {
namespace {

class CleanupModelTest : public testing::Test {
protected:
    CleanupModelTest()
    {
        platform.processes.now = ProcessList{ 1, { { 5, QStringLiteral("Running"), 0, 0 } } };
        write("running/file", 10);
        write("large/file", 50'000);
        write("small/file", 10);
    }
    void write(const char* name, int bytes) const
    {
        const QString path = home.filePath(QStringLiteral(".cache/") + QLatin1StringView(name));
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QFile::WriteOnly) && file.write(QByteArray(bytes, 'x')) == bytes);
    }
    /// Turns the loop until the work is done.
    void finish()
    {
        while (model.isBusy())
            ASSERT_TRUE(platform.loop.turnWhenPosted());
    }
    QString rows() const
    {
        QStringList all;
        for (int i = 0; i < model.rowCount(); ++i) {
            const auto tell = [&](int role) { return model.data(model.index(i), role); };
            all.append((tell(CleanupModel::Checked).toBool() ? u'+' : u'-') + tell(CleanupModel::Name).toString()
                + (tell(CleanupModel::Enabled).toBool() ? QString() : u' ' + tell(CleanupModel::Size).toString()));
        }
        return all.join(u'|');
    }
    bool exists(const char* path) const { return QFileInfo::exists(home.filePath(QString::fromLatin1(path))); }

    QTemporaryDir home;
    test::FakePlatform platform;
    QByteArray folder = QFile::encodeName(home.path());
    CleanupModel model{ { platform.loop, platform.preferences, platform.processes },
        CleanupRoots::below(folder, {}, {}), folder + "/.local/share" };
};

TEST_F(CleanupModelTest, DeletesWhatIsCheckedAndNothingElse)
{
    EXPECT_TRUE(model.isMeasuring());
    model.scan();
    model.clean(); // refused while it measures
    finish();
    EXPECT_EQ(rows(), QStringLiteral("-App caches|-large|-running in use|-small"));
    EXPECT_FALSE(model.canClean());
    model.check(0, true);
    EXPECT_EQ(rows(), QStringLiteral("+App caches|+large|-running in use|+small"));
    model.check(1, false);
    model.check(2, true); // in use
    EXPECT_EQ(rows(), QStringLiteral("-App caches|-large|-running in use|+small"));
    EXPECT_TRUE(model.confirmation().startsWith(QStringLiteral("Permanently delete ")));
    EXPECT_TRUE(model.confirmation().endsWith(QStringLiteral("(small)")));
    platform.processes.open = { folder + "/.cache/large/file" }; // opened since
    model.clean();
    finish();
    EXPECT_TRUE(model.result().startsWith(QStringLiteral("Freed "))) << model.result().toStdString();
    EXPECT_EQ(rows(), QStringLiteral("-App caches 0 bytes|-large in use|-running in use"));
    EXPECT_FALSE(exists(".cache/small"));
    EXPECT_TRUE(exists(".cache/large/file") && exists(".cache/running/file"));
}

TEST_F(CleanupModelTest, SkipsWhatIsTakenIntoUseMeanwhile)
{
    model.scan();
    finish();
    model.check(0, true);
    platform.processes.open = { folder + "/.cache/large/file" };
    model.clean();
    finish();
    EXPECT_TRUE(model.result().endsWith(QStringLiteral(" · 1 item skipped"))) << model.result().toStdString();
    EXPECT_TRUE(exists(".cache/large/file"));
    platform.processes.now.reset(); // nobody can be told to run or not
    model.scan();
    finish();
    EXPECT_EQ(rows(), QStringLiteral("-App caches 0 bytes|-large in use|-running in use"));
}

TEST_F(CleanupModelTest, MovesToTheTrashWhereTheUserPrefersIt)
{
    QDir().mkpath(home.filePath(QStringLiteral(".local/share")));
    model.setUsesTrash(true);
    model.scan();
    finish();
    model.check(3, true);
    EXPECT_TRUE(model.confirmation().contains(QStringLiteral("to the trash")));
    model.clean();
    finish();
    EXPECT_FALSE(exists(".cache/small"));
    EXPECT_TRUE(exists(".local/share/Trash/files/small/file"));
}

} // namespace
} // namespace kestro
