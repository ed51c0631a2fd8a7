#include "KestroCore/Cleanup/DiskCleanup.h"
#include "KestroCore/Cleanup/TrashFolder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <random>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace kestro;
using testing::ElementsAre;

namespace {

/// A home folder with caches, and beside it a folder that nothing may change.
class CleanupTest : public testing::Test {
protected:
    CleanupTest()
    {
        for (const char* each : { "home/.cache", "home/.local/state", "home/Library/Logs", "outside/deep" })
            QDir().mkpath(top.filePath(QString::fromLatin1(each)));
        write("outside/precious", 5000);
        write("outside/deep/precious", 5000);
    }
    QByteArray at(const QByteArray& path) const { return QFile::encodeName(top.path()) + '/' + path; }
    ~CleanupTest() override
    {
        // Qt's own cleaning knows no names but UTF-8.
        top.setAutoRemove(false);
        std::filesystem::remove_all(QFile::encodeName(top.path()).toStdString());
    }
    QByteArray content(const QByteArray& path) const
    {
        std::ifstream file(at(path).toStdString());
        return QByteArray::fromStdString({ std::istreambuf_iterator<char>(file), {} });
    }
    void folder(const QByteArray& path) const { ASSERT_EQ(0, ::mkdir(at(path).constData(), 0755)) << path.constData(); }
    void write(const QByteArray& path, int bytes, double daysOld = 0) const
    {
        const int file = ::open(at(path).constData(), O_CREAT | O_WRONLY | O_TRUNC, 0644);
        ASSERT_GE(file, 0) << path.constData();
        const QByteArray content(bytes, 'x');
        ASSERT_EQ(bytes, ::write(file, content.constData(), size_t(bytes)));
        const auto then = time_t(unixNow - daysOld * 86400);
        const timespec times[] = { { then, 0 }, { then, 0 } };
        ::futimens(file, times);
        ::close(file);
    }
    void link(const QByteArray& target, const QByteArray& path) const
    {
        ASSERT_EQ(0, ::symlink(target.constData(), at(path).constData()));
    }
    bool exists(const QByteArray& path) const
    {
        struct stat found { };
        return ::lstat(at(path).constData(), &found) == 0;
    }
    CleanupRoots roots() const { return CleanupRoots::below(at("home"), {}, {}); }
    std::vector<CleanupItem> items(CleanupCategory category = CleanupCategory::appCaches) const
    {
        const auto scan = DiskCleanup::scan(category, roots(), Date::fromUnix(unixNow), work);
        return scan ? scan->items : std::vector<CleanupItem>();
    }
    static QByteArrayList names(const std::vector<CleanupItem>& items)
    {
        QByteArrayList all;
        for (const CleanupItem& each : items)
            all.append(each.name() + (each.inUse ? " (in use)" : ""));
        return all;
    }
    /// All that lies in the folder, with what it is and holds.
    QByteArray state(const QByteArray& path) const
    {
        QByteArray all;
        const QStringList found =
            QDir(QFile::decodeName(at(path)))
                .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
        for (const QString& each : found) {
            const QByteArray name = path + '/' + QFile::encodeName(each);
            struct stat facts { };
            ::lstat(at(name).constData(), &facts);
            all += name + ' ' + QByteArray::number(facts.st_ino) + ' ' + QByteArray::number(facts.st_mode) + ' '
                + QByteArray::number(qint64(facts.st_size)) + '\n';
            if (S_ISDIR(facts.st_mode))
                all += state(name);
        }
        return all;
    }

    static constexpr double unixNow = 1'800'000'000;
    QTemporaryDir top;
    DiskCleanup::Work work;
};

TEST_F(CleanupTest, ListsByCategoryWhatIsThere)
{
    EXPECT_EQ(DiskCleanup::scan(CleanupCategory::packageCaches, roots(), Date::fromUnix(unixNow), work), std::nullopt);
    for (const char* each : { "small", "large", "busy", "com.lumbra.ombrel", "ccache", "open", "\xff\xfe" })
        folder(QByteArray("home/.cache/") + each);
    write("home/.cache/large/a", 40'000);
    write("home/.cache/.hidden", 9000);
    write("home/.cache/ccache/object", 100);
    ::link(at("home/.cache/large/a").constData(), at("home/.cache/large/same").constData());
    work.running = [](const QByteArray& name) { return name == "busy"; };
    work.inUse = [this](const QByteArray& path) { return path == at("home/.cache/open"); };
    work.threads = 2;
    EXPECT_THAT(names(items()),
        ElementsAre(
            "large", ".hidden", "busy (in use)", "com.lumbra.ombrel (in use)", "open (in use)", "small", "\xff\xfe"));
    EXPECT_THAT(names(items(CleanupCategory::developerCaches)), ElementsAre("ccache"));
    EXPECT_EQ(items().front().size, DiskCleanup::allocatedSize(at("home/.cache/large")));
    EXPECT_LT(items().front().size, 60'000) << "a file with two names is one file";
}

TEST_F(CleanupTest, TakesOldLogsOneByOne)
{
    folder("home/Library/Logs/app");
    folder("home/Library/Logs/.secret");
    write("home/Library/Logs/app/new", 10, 1);
    write("home/Library/Logs/app/exactly", 10, 7);
    write("home/Library/Logs/app/older", 10, 7.1);
    write("home/Library/Logs/.secret/older", 10, 30);
    write("home/.local/state/history", 10, 30);
    write("home/.local/state/x.log.1", 10, 30);
    link(at("outside/precious"), "home/Library/Logs/link");
    const timespec old[] = { { 1000, 0 }, { 1000, 0 } };
    ::utimensat(AT_FDCWD, at("home/Library/Logs/link").constData(), old, AT_SYMLINK_NOFOLLOW);
    auto found = items(CleanupCategory::logs);
    EXPECT_THAT(names(found), testing::UnorderedElementsAre("older", "link", "x.log.1"));
    EXPECT_EQ(DiskCleanup::remove(found, roots(), work).skipped, 0);
    EXPECT_FALSE(exists("home/Library/Logs/link"));
    EXPECT_TRUE(exists("outside/precious") && exists("home/Library/Logs/app/new"));
}

TEST_F(CleanupTest, RefusesWhatIsNotTheItemAnyMore)
{
    folder("home/.cache/a");
    write("home/.cache/a/file", 3000);
    const CleanupItem good = items().front();
    const QByteArray before = state("outside");
    const auto refused = [&](auto change) {
        CleanupItem item = good;
        change(item);
        return DiskCleanup::remove({ item }, roots(), work) == DiskCleanup::Outcome{ 0, 1 };
    };
    EXPECT_TRUE(refused([&](CleanupItem& item) { item.root = at("home"); }));
    EXPECT_TRUE(refused([&](CleanupItem& item) { item.root = at("outside"), item.path = at("outside/deep"); }));
    EXPECT_TRUE(refused([](CleanupItem& item) { item.inUse = true; }));
    EXPECT_TRUE(refused([&](CleanupItem& item) { item.path = item.root + "/../../outside"; }));
    EXPECT_TRUE(refused([&](CleanupItem& item) { item.path = item.root + "/."; }));
    EXPECT_TRUE(refused([&](CleanupItem& item) { item.path = item.root; }));
    EXPECT_TRUE(refused([&](CleanupItem& item) { item.path = item.root + "x/a"; }));
    EXPECT_TRUE(refused([](CleanupItem& item) { item.inode += 1; })) << "put there since";
    work.running = [](const QByteArray& name) { return name == "a"; };
    EXPECT_TRUE(refused([](CleanupItem&) {})) << "started since";
    work.running = [](const QByteArray&) { return false; };
    ::rename(at("home/.cache").constData(), at("home/real").constData());
    link(at("home/real"), "home/.cache");
    EXPECT_TRUE(refused([](CleanupItem&) {})) << "the root became a link";
    ::unlink(at("home/.cache").constData());
    ::rename(at("home/real").constData(), at("home/.cache").constData());
    EXPECT_EQ(DiskCleanup::remove({ good }, roots(), work), (DiskCleanup::Outcome{ good.size, 0 }));
    EXPECT_EQ(state("outside"), before);
    EXPECT_EQ(state("home/.cache"), QByteArray());
}

TEST_F(CleanupTest, MovesToTheTrashWithANote)
{
    folder("home/.local/share");
    for (const char* each : { "a b\xff", "c" }) {
        folder(QByteArray("home/.cache/") + each);
        write(QByteArray("home/.cache/") + each + "/file", 10);
    }
    const auto take = [&] {
        TrashFolder trash(at("home"), at("home/.local/share"), "2026-01-31T12:00:00");
        return DiskCleanup::remove(items(), roots(), work,
            [&](int folder, const QByteArray& name, const QByteArray& path) { return trash.take(folder, name, path); });
    };
    EXPECT_EQ(take().skipped, 0);
    EXPECT_TRUE(exists("home/.local/share/Trash/files/a b\xff/file"));
    EXPECT_TRUE(content("home/.local/share/Trash/info/a b\xff.trashinfo")
                    .contains("/home/.cache/a%20b%FF\nDeletionDate=2026-01-31"));
    folder("home/.cache/c");
    EXPECT_EQ(take().skipped, 0);
    EXPECT_TRUE(exists("home/.local/share/Trash/files/c.2"));
}

TEST_F(CleanupTest, GoesAsDeepAsFoldersDo)
{
    const int levels = 600; // more than descriptors that stand open
    ASSERT_EQ(0, ::mkdir(at("home/.cache/deep").constData(), 0755));
    int here = ::open(at("home/.cache/deep").constData(), O_DIRECTORY | O_RDONLY);
    const QByteArray name(255, 'n');
    for (int i = 0; i < levels; ++i) {
        ASSERT_EQ(0, ::mkdirat(here, name.constData(), 0755));
        const int below = ::openat(here, name.constData(), O_DIRECTORY | O_RDONLY);
        ::close(std::exchange(here, below));
    }
    ::close(here);
    EXPECT_GE(items().front().size, 0);
    EXPECT_EQ(DiskCleanup::remove(items(), roots(), work).skipped, 0);
    EXPECT_EQ(state("home/.cache"), QByteArray());
}

// Another process plants links and swaps folders for them all the while. Nothing outside may change; what is inside may
// stay where it could not be deleted.
TEST_F(CleanupTest, NothingOutsideChangesWhateverIsPlanted)
{
    constexpr int trees = 1000;
    std::mt19937 random(7);
    const auto pick = [&](int below) { return int(random() % unsigned(below)); };
    const QByteArray before = state("outside");
    const pid_t rival = ::fork();
    if (rival == 0) {
        const QByteArray away = at("outside");
        const QByteArray tree = at("home/.cache/t");
        // By descriptors, so that it never goes through a link itself.
        for (unsigned i = 0;; ++i) {
            const int here = ::open(tree.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
            const char name[] = { char('a' + i % 3), '\0' };
            ::renameat(here, name, here, "aside");
            ::symlinkat(away.constData(), here, name);
            ::unlinkat(here, name, 0);
            ::renameat(here, "aside", here, name);
            const int folder = ::openat(here, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
            ::symlinkat(away.constData(), folder, "planted");
            ::close(folder);
            ::close(here);
        }
    }
    int removed = 0;
    folder("home/next");
    folder("home/left");
    for (int i = 0; i < trees; ++i) {
        // Made out of the rival's reach: it is made by path, which goes through links.
        ::mkdir(at("home/next/t").constData(), 0755);
        for (const char* each : { "a", "b", "c" }) {
            const QByteArray folder = QByteArray("home/next/t/") + each;
            ::mkdir(at(folder).constData(), 0755);
            for (int file = pick(3); file >= 0; --file) {
                const QByteArray name = folder + '/' + QByteArray(1 + pick(254), char(128 + pick(120)));
                ::close(::open(at(name).constData(), O_CREAT | O_WRONLY, 0644));
            }
            const QByteArray target = pick(2) ? at("outside") : QByteArray("../../../../outside");
            ::symlink(target.constData(), at(folder + "/link").constData());
        }
        ::rename(at("home/.cache/t").constData(), at("home/left/" + QByteArray::number(i)).constData());
        ASSERT_EQ(0, ::rename(at("home/next/t").constData(), at("home/.cache/t").constData()));
        // As the scan saw it, or with the folder swapped for a link before the deletion.
        const auto found = items();
        if (pick(4) == 0) {
            ::rename(at("home/.cache/t").constData(), at("home/moved").constData());
            ::symlink(at("outside").constData(), at("home/.cache/t").constData());
        }
        removed += found.empty() || DiskCleanup::remove(found, roots(), work).skipped > 0 ? 0 : 1;
        if (exists("home/moved")) {
            ::unlink(at("home/.cache/t").constData());
            ::rename(at("home/moved").constData(), at("home/.cache/t").constData());
        }
    }
    ::kill(rival, SIGKILL);
    ::waitpid(rival, nullptr, 0);
    EXPECT_EQ(state("outside"), before);
    EXPECT_GT(removed, 0);
}

TEST(CleanupTexts, TellSizes)
{
    const std::pair<qint64, const char*> sizes[] = { { -5, "0 bytes" }, { 999, "999 bytes" }, { 1000, "1 KB" },
        { 999'999, "1000 KB" }, { 1'000'000, "1 MB" }, { 1'000'000'000, "1.0 GB" }, { 1'500'000'000'000, "1.5 TB" } };
    for (const auto& [bytes, text] : sizes)
        EXPECT_EQ(DiskCleanup::sizeText(bytes), QString::fromLatin1(text));
    EXPECT_EQ(DiskCleanup::summary(1000, 0), QStringLiteral("Freed 1 KB"));
    EXPECT_EQ(DiskCleanup::summary(0, 1), QStringLiteral("Freed 0 bytes · 1 item skipped"));
    EXPECT_EQ(DiskCleanup::summary(0, 2), QStringLiteral("Freed 0 bytes · 2 items skipped"));
    const CleanupRoots roots = CleanupRoots::below("/home/u", "/var/elsewhere", "/home/u/st");
    EXPECT_EQ(roots.caches, "/home/u/.cache") << "a folder outside of the home folder is not the user's alone";
    EXPECT_TRUE(roots.logs.contains("/home/u/st"));
}

} // namespace
