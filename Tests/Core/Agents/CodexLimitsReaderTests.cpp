#include "KestroCore/Agents/CodexLimitsReader.h"

#include "KestroCore/Support/FileDescriptor.h"
#include "Tests/Core/Support/ChildProcess.h"
#include "Tests/Core/Support/FolderSnapshot.h"

#include <QTemporaryDir>
#include <atomic>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <thread>

namespace kestro {
namespace {

using namespace tests;
namespace Reader = CodexLimitsReader;
constexpr qsizetype tailBytes = Reader::tailBytes;

QByteArray line(int percent, const char* limitId = "codex")
{
    return R"({"payload":{"rate_limits":{"limit_id":")" + QByteArray(limitId)
        + R"(","primary":{"window_minutes":300,"resets_at":1,"used_percent":)" + QByteArray::number(percent) + "}}}}";
}

/// The percentage of the five hours, or -1.
double percentOf(const std::optional<AgentLimits>& limits) { return limits ? limits->fiveHour->usedPercent : -1; }

class CodexLogs : public testing::Test {
protected:
    QString folder() const { return m_folder.path(); }
    QByteArray path(const QByteArray& name) const { return QFile::encodeName(folder()) + '/' + name; }
    void setTime(const QByteArray& name, time_t modified) const
    {
        const timespec times[] = { { modified, 0 }, { modified, 0 } };
        ASSERT_EQ(utimensat(AT_FDCWD, path(name).constData(), times, AT_SYMLINK_NOFOLLOW), 0) << name.toStdString();
    }
    /// A log and the folders above it.
    void log(const QByteArray& name, const QByteArray& bytes, time_t modified) const
    {
        const QByteArray file = path(name);
        std::filesystem::create_directories(file.left(file.lastIndexOf('/')).toStdString());
        std::ofstream(file.toStdString(), std::ios::binary).write(bytes.constData(), bytes.size());
        setTime(name, modified);
    }
    double latest() const { return percentOf(Reader::latest(folder())); }

private:
    QTemporaryDir m_folder;
};

TEST_F(CodexLogs, TheLastLineThatTellsLimitsCounts)
{
    const QByteArray noise = QByteArray("\0\xFF\x1B{\"payload\"\r", 14);
    const std::tuple<const char*, QByteArray, double> cases[] = {
        { "nothing", "", -1 },
        { "line feeds alone", "\n\n\n", -1 },
        { "no line feed at all", line(1), 1 },
        { "two", line(1) + '\n' + line(2) + "\n\n", 2 },
        { "a last line that is cut", line(1) + '\n' + line(2).chopped(1), 1 },
        { "a last line of zeros, as after a cut of power", line(1) + '\n' + QByteArray(4096, '\0'), 1 },
        { "a key spelled by escapes", line(1).replace("rate_l", "rate\\u005fl"), 1 },
        { "another plan's behind it", line(1) + '\n' + line(2, "other") + '\n', 1 },
        { "noise around it", noise + '\n' + line(1) + "\r\n" + noise.repeated(9), 1 },
        { "noise alone", noise.repeated(50'000), -1 },
        { "one line longer than the tail", QByteArray(2 * tailBytes, '[') + line(1), -1 },
        { "a whole line at the tail's start", 'x' + line(1) + '\n' + QByteArray(tailBytes - line(1).size() - 1, 'x'),
            1 },
        { "a line cut by the tail's start", line(1) + '\n' + QByteArray(tailBytes - line(1).size(), 'x'), -1 },
    };
    for (const auto& [name, bytes, expected] : cases) {
        log("a.jsonl", bytes, 1);
        EXPECT_EQ(percentOf(Reader::latestInFile(path("a.jsonl"))), expected) << name;
    }
}

TEST_F(CodexLogs, TheThreeNewestAreRead)
{
    log("2026/01/02/oldest.jsonl", line(4), 10);
    EXPECT_EQ(latest(), 4);
    for (const char* useless : { "2026/01/a.jsonl", "2025/b.jsonl", "c.jsonl" }) {
        EXPECT_EQ(latest(), 4);
        log(useless, "{}\n", 20);
    }
    EXPECT_EQ(latest(), -1) << "a fourth is never read";
    setTime("2026/01/02/oldest.jsonl", 30);
    EXPECT_EQ(latest(), 4);

    const QByteArray odd = "n/\xFF not UTF-8.jsonl";
    log(odd, line(5), 40);
    EXPECT_EQ(latest(), 5);
    ASSERT_EQ(truncate(path(odd).constData(), 10'000'000'000), 0);
    EXPECT_EQ(latest(), 4) << "10 GB of nothing";
    ASSERT_EQ(unlink(path(odd).constData()), 0); // Qt's folder could not
    ASSERT_EQ(truncate(path("c.jsonl").constData(), 10'000'000'000), 0);
    std::ofstream(path("c.jsonl").toStdString(), std::ios::app) << ('\n' + line(6) + '\n').constData();
    EXPECT_EQ(latest(), 6);

    EXPECT_EQ(percentOf(Reader::latest(folder() + QStringLiteral("/missing"))), -1);
    ASSERT_EQ(symlink(path("2026").constData(), path("linked").constData()), 0);
    EXPECT_EQ(percentOf(Reader::latest(folder() + QStringLiteral("/linked"))), 4) << "the folder itself may be a link";
}

TEST_F(CodexLogs, WhatIsNoLogIsPassedOver)
{
    log("real.jsonl", line(1), 1);
    log("a.json", line(2), 9);
    log("a.JSONL", line(2), 9);
    log("jsonl", line(2), 9);
    log("a.jsonl.zst", line(2), 9);
    log(".hidden.jsonl", line(2), 9);
    log(".jsonl", line(2), 9);
    log(".hidden/a.jsonl", line(2), 9);
    log("folder.jsonl/a.txt", line(2), 9);
    ASSERT_EQ(mkfifo(path("pipe.jsonl").constData(), 0600), 0);
    const FileDescriptor bound(socket(AF_UNIX, SOCK_STREAM, 0));
    sockaddr_un address{ AF_UNIX, {} };
    std::ranges::copy(path("socket.jsonl"), address.sun_path);
    ASSERT_EQ(bind(bound.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    for (const auto& [target, name] : { std::pair("loop.jsonl", "loop.jsonl"), std::pair(".", "circle"),
             std::pair(".", "circle.jsonl"), std::pair("pipe.jsonl", "piped.jsonl"),
             std::pair("missing", "broken.jsonl"), std::pair("/dev/zero", "device.jsonl") })
        ASSERT_EQ(symlink(target, path(name).constData()), 0);
    EXPECT_EQ(Reader::newestLogs(folder(), 100), QByteArrayList{ path("real.jsonl") });
    for (const char* name : { "pipe.jsonl", "socket.jsonl", "loop.jsonl", "folder.jsonl", "device.jsonl" })
        EXPECT_EQ(percentOf(Reader::latestInFile(path(name))), -1) << name << ": it may have come in a log's place";

    log(".elsewhere", line(3), 9);
    ASSERT_EQ(symlink(".elsewhere", path("link.jsonl").constData()), 0);
    EXPECT_EQ(latest(), 3) << "a log that lies elsewhere has the date of its content";
}

TEST_F(CodexLogs, WhatCannotBeReadIsPassedOver)
{
    log("old.jsonl", line(1), 1);
    log("closed.jsonl", line(2), 9);
    log("closed/a.jsonl", line(2), 9);
    chmod(path("").constData(), 0755);
    chmod(path("closed.jsonl").constData(), 0);
    chmod(path("closed").constData(), 0);
    chmod(path("old.jsonl").constData(), 0644);
    EXPECT_TRUE(inChild([this] {
        dropPrivileges();
        EXPECT_FALSE(QFile(QFile::decodeName(path("closed.jsonl"))).open(QIODevice::ReadOnly));
        EXPECT_EQ(latest(), 1);
    }));
    chmod(path("closed").constData(), 0700);
}

TEST_F(CodexLogs, FoldersMayComeAndGoMeanwhile)
{
    log("z/real.jsonl", line(1), 2'000'000'000);
    std::atomic<bool> done = false;
    std::thread other([&] {
        while (!done) {
            log("a/b/c/d.jsonl", "{}", 1);
            std::filesystem::remove_all(path("a").toStdString());
        }
    });
    for (int i = 0; i < 300; ++i)
        EXPECT_EQ(latest(), 1);
    done = true;
    other.join();
}

TEST_F(CodexLogs, ManyCostNoMoreThanTheWalk)
{
    constexpr int count = 2000;
    QByteArrayList newest;
    for (int i = 0; i < count; ++i) {
        const QByteArray name = path(QByteArray::number(i % 20) + '-' + QByteArray::number(i) + ".jsonl");
        const FileDescriptor file(open(name.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
        const timespec times[] = { { i, 0 }, { i * 7919 % count, 0 } }; // each date once, in no order
        ASSERT_EQ(futimens(file.get(), times), 0);
        if (times[1].tv_sec >= count - 3)
            newest.append(QByteArray::number(times[1].tv_sec) + name);
    }
    std::ranges::sort(newest, std::greater());
    for (QByteArray& name : newest)
        name = name.mid(name.indexOf('/'));
    EXPECT_EQ(Reader::newestLogs(folder(), 3), newest);
}

} // namespace
} // namespace kestro
