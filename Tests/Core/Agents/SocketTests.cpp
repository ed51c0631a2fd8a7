#include "Tests/Core/Agents/SocketClient.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <atomic>
#include <ctime>
#include <filesystem>
#include <gtest/gtest.h>
#include <list>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace kestro::test {
namespace {

using Ids = std::vector<std::string>;

size_t openDescriptors()
{
    return static_cast<size_t>(std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
}

/// What the next file that is opened will get; a limit of as many allows no more.
rlim_t lowestFreeDescriptor() { return static_cast<rlim_t>(AgentSocketDescriptor(::dup(STDIN_FILENO)).get()); }

double processorSeconds()
{
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

class Socket : public testing::Test {
protected:
    /// Time limits that no test reaches by chance.
    static AgentSocketLimits patient()
    {
        AgentSocketLimits limits;
        limits.silence = limits.connection = 60s;
        return limits;
    }

    std::unique_ptr<AgentSocket> started(AgentSocketLimits limits = patient())
    {
        auto socket = std::make_unique<AgentSocket>(path, inbox.receiver(), limits);
        socket->start();
        return socket;
    }

    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("agents.sock"));
    Inbox inbox; // outlives the sockets, which the tests own
};

TEST_F(Socket, HandlesAMessageAndClosesWhileTheClientKeepsItsSideOpen)
{
    const auto socket = started();
    SocketClient client(path);
    client.send(message("a"));
    EXPECT_TRUE(client.isClosed());
    EXPECT_EQ(inbox.waitFor(1), Ids{ "a" }); // handled before it was closed
}

TEST_F(Socket, ReadsClientsSideBySide)
{
    const auto socket = started();
    std::list<SocketClient> slow;
    const QByteArray text = message("slow");
    for (int i = 0; i < 3; ++i)
        slow.emplace_back(path).send(text.first(20 + i));
    SocketClient fast(path);
    fast.send(message("fast"));
    EXPECT_TRUE(fast.isClosed());
    int i = 0;
    for (SocketClient& client : slow) {
        client.send(text.sliced(20 + i++));
        EXPECT_TRUE(client.isClosed());
    }
    EXPECT_EQ(inbox.waitFor(4), (Ids{ "fast", "slow", "slow", "slow" }));
}

TEST_F(Socket, DropsWhatIsNoMessage)
{
    const auto socket = started();
    const QByteArray body("agent=claude\n{\"session_id\":\"a\",\"hook_event_name\":\"Stop\",\"x\":");
    const std::pair<const char*, QByteArray> table[]{
        { "no newline", QByteArray(1000, 'a') },
        { "unknown header", "agent=other\n{}" },
        { "array", "agent=claude\n[]" },
        { "number for a text", "agent=claude\n{\"session_id\":1,\"hook_event_name\":\"Stop\"}" },
        { "9 MiB", body + '"' + QByteArray(9 << 20, 'x') + "\"}" },
        { "invalid UTF-8", body + "\"\xff\"}" },
        { "lone surrogate", body + "\"\\udc00\"}" },
        { "deep nesting", body + QByteArray(100'000, '[') },
        { "something behind the object", body + "1}{" },
    };
    for (const auto& [name, bytes] : table) {
        SCOPED_TRACE(name);
        SocketClient client(path);
        client.send(bytes);
        EXPECT_TRUE(client.isClosed());
    }
    for (const QByteArray& part : { QByteArray(), QByteArray("agent=claude"), body }) {
        SCOPED_TRACE(part.constData());
        SocketClient client(path);
        client.send(part);
        client.endStream();
        EXPECT_TRUE(client.isClosed());
    }
    SocketClient(path).send(body); // gone in the middle
    SocketClient(path).send(message("good"));
    EXPECT_EQ(inbox.waitFor(1), Ids{ "good" });
}

TEST_F(Socket, DropsTheSilent)
{
    AgentSocketLimits limits = patient();
    limits.silence = 30ms;
    const auto socket = started(limits);
    const QByteArray text = message("a");
    for (const qsizetype length : { 0, 5, 40 }) {
        SCOPED_TRACE(length);
        SocketClient client(path);
        client.send(text.first(length));
        EXPECT_TRUE(client.isClosed());
    }
    EXPECT_EQ(inbox.waitFor(0), Ids{});
}

TEST_F(Socket, DropsTheSlow)
{
    AgentSocketLimits limits = patient();
    limits.connection = 100ms;
    const auto socket = started(limits);
    SocketClient client(path);
    client.send(message("a").first(20));
    const auto begin = std::chrono::steady_clock::now();
    while (!client.isClosedWithin(5ms) && std::chrono::steady_clock::now() < begin + patience)
        client.send("x");
    EXPECT_TRUE(client.isClosedWithin(0ms));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 90ms);
}

TEST_F(Socket, LetsTheOthersWaitWhenFull)
{
    AgentSocketLimits oneClient = patient();
    oneClient.clients = 1;
    AgentSocketLimits fewBytes = patient();
    fewBytes.messageBytes = 512 << 10;
    fewBytes.heldBytes = fewBytes.messageBytes + (128 << 10);
    for (const AgentSocketLimits& limits : { oneClient, fewBytes }) {
        SCOPED_TRACE(limits.clients);
        Inbox received;
        AgentSocket socket(path, received.receiver(), limits);
        socket.start();
        SocketClient first(path);
        // Far more than the kernel holds for a connection: when it is sent, most of it has been read.
        const QByteArray text = message("first", 400 << 10);
        first.send(text.chopped(1));
        SocketClient second(path);
        second.send(message("second"));
        first.send(text.last(1));
        EXPECT_EQ(received.waitFor(2), (Ids{ "first", "second" }));
    }
}

TEST_F(Socket, ReadsEveryoneThoughTheyHaveMoreThanItHolds)
{
    AgentSocketLimits limits = patient();
    limits.messageBytes = 256 << 10;
    limits.heldBytes = limits.messageBytes + (256 << 10);
    const auto socket = started(limits);
    std::vector<std::jthread> clients;
    for (int i = 0; i < 8; ++i)
        clients.emplace_back([this] {
            SocketClient client(path);
            client.send(message("a", 250'000));
            EXPECT_TRUE(client.isClosed());
        });
    clients.clear();
    EXPECT_EQ(inbox.waitFor(8), Ids(8, "a"));
}

TEST_F(Socket, OutlivesTwoHundredAtOnce)
{
    AgentSocketLimits limits = patient();
    limits.silence = 50ms;
    const auto socket = started(limits);
    const size_t before = openDescriptors();
    {
        std::list<SocketClient> silent;
        for (int i = 0; i < 200; ++i)
            silent.emplace_back(path).send(message("half").first(30));
        for (SocketClient& client : silent)
            EXPECT_TRUE(client.isClosed());
    }
    EXPECT_EQ(openDescriptors(), before);
    std::list<SocketClient> good;
    for (int i = 0; i < 200; ++i)
        good.emplace_back(path).send(message("whole"));
    EXPECT_EQ(inbox.waitFor(200), Ids(200, "whole"));
}

TEST_F(Socket, WaitsForDescriptorsWithoutSpinning)
{
    const auto socket = started();
    // With a limit of one file even poll refuses its two entries.
    for (const rlim_t allowed : { rlim_t(0), rlim_t(1) }) {
        SCOPED_TRACE(allowed);
        SocketClient client;
        rlimit limit{};
        ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
        rlimit low = limit;
        low.rlim_cur = allowed != 0 ? allowed : lowestFreeDescriptor();
        ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &low), 0);
        const double used = processorSeconds();
        EXPECT_TRUE(client.connect(path));
        client.send(message("late"));
        EXPECT_FALSE(client.isClosedWithin(allowed == 0 ? 250ms : 0ms));
        EXPECT_LT(processorSeconds() - used, 0.1);
        ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &limit), 0);
        EXPECT_TRUE(client.isClosed());
    }
    EXPECT_EQ(inbox.waitFor(2), (Ids{ "late", "late" }));
}

TEST_F(Socket, StartsAndStops)
{
    QFile stale(path);
    ASSERT_TRUE(stale.open(QIODevice::WriteOnly));
    AgentSocket socket(path, inbox.receiver());
    socket.stop();
    EXPECT_TRUE(stale.exists());
    for (const char* id : { "1", "2" }) {
        socket.start();
        socket.start();
        SocketClient whole(path);
        whole.send(message(id));
        EXPECT_TRUE(whole.isClosed());
        SocketClient half(path);
        half.send(message("half").chopped(1));
        socket.stop();
        EXPECT_TRUE(half.isClosed());
        EXPECT_FALSE(QFileInfo::exists(path));
        EXPECT_FALSE(SocketClient().connect(path));
        socket.stop();
    }
    EXPECT_EQ(inbox.waitFor(2), (Ids{ "1", "2" }));
}

TEST_F(Socket, BringsNothingAfterStop)
{
    std::atomic<bool> stopped = false;
    for (int round = 0; round < 20; ++round) {
        stopped = false;
        AgentSocket socket(path, [&](const SocketMessage&) { EXPECT_FALSE(stopped); });
        socket.start();
        std::list<SocketClient> clients;
        for (int i = 0; i < 8; ++i)
            clients.emplace_back(path).send(message("a"));
        socket.stop();
        stopped = true;
    }
}

TEST_F(Socket, MakesItsFolderForItsUserAlone)
{
    path = folder.filePath(QStringLiteral("Library/Application Support/Kestro/agents.sock"));
    const auto socket = started();
    SocketClient(path).send(message("a"));
    EXPECT_EQ(inbox.waitFor(1), Ids{ "a" });
    struct stat status { };
    ASSERT_EQ(::stat(QFileInfo(path).path().toUtf8().constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700u);
}

TEST_F(Socket, TellsWhyItCannotStart)
{
    const auto ofLength = [this](qsizetype bytes) {
        const QString start = folder.path() + QStringLiteral("/é");
        return start + QString(bytes - start.toUtf8().size(), u'x');
    };
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("folder")));
    QFile file(folder.filePath(QStringLiteral("file")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const std::pair<QString, int> table[]{ { ofLength(103), 0 }, { ofLength(104), ENAMETOOLONG },
        { folder.filePath(QStringLiteral("folder")), EADDRINUSE },
        { file.fileName() + QStringLiteral("/in/sock"), ENOTDIR } };
    for (const auto& [at, error] : table) {
        SCOPED_TRACE(at.toStdString());
        const size_t before = openDescriptors();
        AgentSocket socket(at, inbox.receiver());
        int thrown = 0;
        try {
            socket.start();
        } catch (const std::system_error& failure) {
            thrown = failure.code().value();
        }
        EXPECT_EQ(thrown, error);
        EXPECT_EQ(socket.isStarted(), error == 0);
        socket.stop();
        EXPECT_EQ(openDescriptors(), before);
    }
}

} // namespace
} // namespace kestro::test
