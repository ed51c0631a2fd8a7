#include "KestroCore/Agents/AgentSocket.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <condition_variable>
#include <ctime>
#include <filesystem>
#include <gtest/gtest.h>
#include <list>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace kestro {
namespace {

using namespace std::chrono_literals;
constexpr auto patience = 20s; // only ever used up by a failing test

/// A connection as a hook's netcat makes it. It never reads and keeps its side open until told otherwise.
class SocketClient {
public:
    SocketClient() = default;
    explicit SocketClient(const QString& path) { connect(path); }

    bool connect(const QString& path)
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::ranges::copy(path.toStdString(), address.sun_path);
        return ::connect(m_socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    }

    /// Sends everything, or what the other side takes before it closes.
    void send(QByteArrayView bytes)
    {
        while (!bytes.isEmpty()) {
            const auto sent = ::send(m_socket.get(), bytes.data(), static_cast<size_t>(bytes.size()), MSG_NOSIGNAL);
            if (sent < 0)
                return;
            bytes = bytes.sliced(sent);
        }
    }

    void endStream() { ::shutdown(m_socket.get(), SHUT_WR); }

    /// True when the other side closes within the time.
    bool isClosedWithin(std::chrono::milliseconds limit)
    {
        pollfd watched{ m_socket.get(), 0, 0 }; // a closed connection shows as hung up, asked for or not
        return ::poll(&watched, 1, static_cast<int>(limit.count())) == 1;
    }
    bool isClosed() { return isClosedWithin(patience); }

private:
    FileDescriptor m_socket{ ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0) };
};

/// What a socket delivered, in order, as the events' session ids.
class Inbox {
public:
    auto receiver()
    {
        return [this](const SocketMessage& message, int) {
            const std::lock_guard lock(m_mutex);
            m_ids.push_back(message.event() ? message.event()->sessionID.toStdString() : "limits");
            m_arrived.notify_all();
        };
    }

    /// Everything there is once `count` messages have come.
    std::vector<std::string> waitFor(size_t count)
    {
        std::unique_lock lock(m_mutex);
        m_arrived.wait_for(lock, patience, [&] { return m_ids.size() >= count; });
        return m_ids;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_arrived;
    std::vector<std::string> m_ids;
};

/// A valid message of the session `id`, `padding` bytes longer than need be.
QByteArray message(const char* id, qsizetype padding = 0)
{
    return QByteArray("agent=claude\n{\"hook_event_name\":\"Stop\",\"x\":\"")
        .append(padding, 'x')
        .append("\",\"session_id\":\"")
        .append(id)
        .append("\"}");
}

using Ids = std::vector<std::string>;

size_t openDescriptors()
{
    return static_cast<size_t>(std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
}

double processorSeconds()
{
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

mode_t modeOf(const QString& path)
{
    struct stat status { };
    EXPECT_EQ(::stat(path.toUtf8().constData(), &status), 0);
    return status.st_mode & 07777;
}

class Socket : public testing::Test {
protected:
    /// Time limits that no test reaches by chance.
    static AgentSocketLimits patient()
    {
        AgentSocketLimits limits;
        limits.silence = limits.connection = limits.grace = 60s;
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
    const std::tuple<const char*, QByteArray, bool> table[]{
        { "no newline", QByteArray(1000, 'a'), false },
        { "unknown header", "agent=other\n{}", false },
        { "number for a text", "agent=claude\n{\"session_id\":1,\"hook_event_name\":\"Stop\"}", false },
        { "9 MiB", body + '"' + QByteArray(9 << 20, 'x') + "\"}", false },
        { "invalid UTF-8", body + "\"\xff\"}", false },
        { "deep nesting", body + QByteArray(100'000, '['), false },
        { "something behind the object", body + "1}{", false },
        { "nothing, and then the end", "", true },
        { "a header and then the end", "agent=claude", true },
        { "half an object and then the end", body, true },
    };
    for (const auto& [name, bytes, ends] : table) {
        SCOPED_TRACE(name);
        SocketClient client(path);
        client.send(bytes);
        if (ends)
            client.endStream();
        EXPECT_TRUE(client.isClosed());
    }
    SocketClient(path).send(body); // gone in the middle
    SocketClient(path).send(message("good"));
    EXPECT_EQ(inbox.waitFor(1), Ids{ "good" });
}

/// The kernel answers a read of no bytes as it answers the end of a stream.
TEST_F(Socket, ReadsUpToItsSizeWhereTheSenderCloses)
{
    constexpr qsizetype chunk = 65'536; // read at once
    const auto ofSize = [](qsizetype bytes) { return message("a", bytes - message("a").size()); };
    for (const qsizetype limit : { chunk, 2 * chunk, 2 * chunk + 1, qsizetype(100'000) }) {
        AgentSocketLimits limits = patient();
        limits.messageBytes = limit;
        struct Case {
            const char* name;
            QByteArray bytes;
            size_t messages;
        };
        const Case table[] = {
            { "limit - 1", ofSize(limit - 1), 1 },
            { "limit", ofSize(limit), 1 },
            { "limit + 1", ofSize(limit + 1), 0 },
            { "blanks to limit - 1", ofSize(limit - 10).append(9, ' '), 1 },
            { "blanks to the limit", ofSize(limit - 10).append(10, ' '), 1 },
            { "blanks past the limit", ofSize(limit - 10).append(11, ' '), 1 },
            { "blanks far past the limit", ofSize(limit - 10).append(3 * chunk, ' '), 1 },
            { "cut behind the object", ofSize(limit).append("{}"), 1 },
            { "a chunk less one", ofSize(chunk - 1), 1 },
            { "a chunk of blanks behind a chunk", ofSize(chunk - 1).append(chunk + 1, '\n'), 1 },
        };
        for (const auto& [name, bytes, messages] : table) {
            for (const int how : { 0, 1, 2, 3 }) {
                const bool staysOpen = how % 2 != 0;
                const qsizetype piece = how < 2 ? bytes.size() : 10'000;
                SCOPED_TRACE(testing::Message() << name << " of " << limit << ", " << how);
                Inbox received;
                const QString at = folder.filePath(QStringLiteral("limited.sock"));
                AgentSocket socket(at, received.receiver(), limits);
                socket.start();
                std::optional<SocketClient> client(std::in_place, at);
                for (QByteArrayView rest = bytes; !rest.isEmpty(); rest = rest.sliced(std::min(piece, rest.size())))
                    client->send(rest.first(std::min(piece, rest.size())));
                if (!staysOpen)
                    client.reset();
                SocketClient next(at);
                next.send(message("next"));
                ASSERT_TRUE(next.isClosed());
                Ids expected(messages, "a");
                expected.emplace_back("next");
                Ids came = received.waitFor(expected.size());
                std::ranges::sort(came); // a short message may overtake a long one
                EXPECT_EQ(came, expected);
            }
        }
    }
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

TEST_F(Socket, GivesThePlaceOfTheSlowestToWhoWaits)
{
    AgentSocketLimits full = patient();
    full.grace = 50ms;
    AgentSocketLimits fewPlaces = full;
    fewPlaces.clients = 2;
    for (const AgentSocketLimits& limits : { full, fewPlaces }) {
        SCOPED_TRACE(limits.clients);
        Inbox received;
        AgentSocket socket(path, received.receiver(), limits);
        socket.start();
        std::list<SocketClient> slow;
        for (size_t i = 1; i < limits.clients; ++i)
            slow.emplace_back(path).send(message("slow").first(20));
        SocketClient busy(path);
        busy.send(message("busy").chopped(1));
        SocketClient waits(path);
        waits.send(message("waits"));
        EXPECT_TRUE(waits.isClosed());
        EXPECT_TRUE(slow.front().isClosed());
        EXPECT_FALSE(busy.isClosedWithin(0ms));
        busy.send(message("busy").last(1));
        EXPECT_EQ(received.waitFor(2), (Ids{ "waits", "busy" }));
    }
}

TEST_F(Socket, GivesThePlaceOfTheLargestWhereMemoryIsShort)
{
    AgentSocketLimits limits = patient();
    limits.grace = 50ms;
    limits.messageBytes = 512 << 10;
    limits.heldBytes = limits.messageBytes + (128 << 10);
    const auto socket = started(limits);
    SocketClient small(path);
    small.send(message("small").chopped(1));
    SocketClient large(path);
    large.send(message("large", 100 << 10).chopped(1)); // all that there is room for
    SocketClient waits(path);
    waits.send(message("waits"));
    EXPECT_TRUE(waits.isClosed());
    EXPECT_TRUE(large.isClosed());
    small.send(message("small").last(1));
    EXPECT_EQ(inbox.waitFor(2), (Ids{ "waits", "small" }));
}

TEST_F(Socket, ReadsEveryoneThoughTheyHaveMoreThanItHolds)
{
    AgentSocketLimits limits = patient();
    limits.messageBytes = 256 << 10;
    limits.heldBytes = limits.messageBytes + (256 << 10);
    const auto socket = started(limits);
    const auto send = [this] {
        SocketClient client(path);
        client.send(message("a", 250'000));
        EXPECT_TRUE(client.isClosed());
    };
    std::vector<std::jthread> clients;
    clients.reserve(8);
    for (int i = 0; i < 8; ++i)
        clients.emplace_back(send);
    clients.clear();
    EXPECT_EQ(inbox.waitFor(8), Ids(8, "a"));
}

TEST_F(Socket, DropsTwoHundredSilentAtOnce)
{
    AgentSocketLimits limits = patient();
    limits.silence = 50ms;
    const auto socket = started(limits);
    const size_t before = openDescriptors();
    std::list<SocketClient> silent;
    for (int i = 0; i < 200; ++i)
        silent.emplace_back(path).send(message("half").first(i % 30));
    for (SocketClient& client : silent)
        EXPECT_TRUE(client.isClosed());
    silent.clear();
    EXPECT_EQ(openDescriptors(), before);
    std::list<SocketClient> good;
    for (int i = 0; i < 200; ++i)
        good.emplace_back(path).send(message("whole"));
    EXPECT_EQ(inbox.waitFor(200), Ids(200, "whole"));
}

TEST_F(Socket, WaitsForDescriptorsWithoutSpinning)
{
    const auto socket = started();
    for (const bool canPoll : { true, false }) {
        SCOPED_TRACE(canPoll);
        SocketClient client;
        // What the next file would get; with a limit of one even poll refuses its two entries.
        const int lowestFree = FileDescriptor(::dup(STDIN_FILENO)).get();
        rlimit limit{};
        ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &limit), 0);
        rlimit low = limit;
        low.rlim_cur = canPoll ? static_cast<rlim_t>(lowestFree) : 1;
        ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &low), 0);
        const double used = processorSeconds();
        EXPECT_TRUE(client.connect(path));
        client.send(message("late"));
        EXPECT_FALSE(client.isClosedWithin(canPoll ? 250ms : 0ms));
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
        AgentSocket socket(path, [&](const SocketMessage&, int) { EXPECT_FALSE(stopped); });
        socket.start();
        std::list<SocketClient> clients;
        for (int i = 0; i < 8; ++i)
            clients.emplace_back(path).send(message("a"));
        socket.stop();
        stopped = true;
    }
}

TEST_F(Socket, TellsWhyItCannotStart)
{
    const auto ofLength = [this](qsizetype bytes) {
        const QString beginning = folder.path() + QStringLiteral("/é");
        return beginning + QString(bytes - beginning.toUtf8().size(), u'x');
    };
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("folder")));
    QFile file(folder.filePath(QStringLiteral("file")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const QString deep = folder.filePath(QStringLiteral("Library/Application Support/agents.sock"));
    const std::pair<QString, int> table[]{ { deep, 0 }, { ofLength(103), 0 }, { ofLength(104), ENAMETOOLONG },
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
    EXPECT_EQ(modeOf(QFileInfo(deep).path()), 0700U);
}

TEST_F(Socket, ClosesItsFolderToOthers)
{
    const QString outer = folder.filePath(QStringLiteral("outer"));
    const QString inner = outer + QStringLiteral("/inner");
    ASSERT_TRUE(QDir().mkpath(inner));
    ASSERT_EQ(::chmod(outer.toUtf8().constData(), 0755), 0);
    const std::pair<mode_t, mode_t> table[]{ { 0777, 0700 }, { 0755, 0700 }, { 0710, 0700 }, { 01701, 0700 },
        { 0700, 0700 } };
    for (const auto& [before, after] : table) {
        SCOPED_TRACE(before);
        ASSERT_EQ(::chmod(inner.toUtf8().constData(), before), 0);
        AgentSocket socket(inner + QStringLiteral("/agents.sock"), inbox.receiver());
        socket.start();
        EXPECT_EQ(modeOf(inner), after);
        EXPECT_EQ(modeOf(outer), 0755U) << "not ours";
    }
}

} // namespace
} // namespace kestro
