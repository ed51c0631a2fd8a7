#include "Kestro/Agents/AgentIntake.h"

#include "KestroCore/Support/FileDescriptor.h"
#include "Tests/Support/FakeLoop.h"
#include "Tests/Support/FakePeers.h"

#include <QTemporaryDir>
#include <algorithm>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace kestro {

namespace {

class AgentIntakeTest : public testing::Test {
protected:
    AgentIntakeTest()
    {
        intake->received = [this](const SocketMessage& message, const HookOrigin&) { note(message); };
        EXPECT_EQ(intake->open(), QString());
    }

    void note(const SocketMessage& message)
    {
        const AgentLimits* limits = message.claudeLimits();
        came.append(limits ? QString::number(limits->fiveHour->usedPercent) + u'%' : message.event()->sessionID);
    }

    /// Sends one message and waits until the hook that sent it may go.
    void send(const QByteArray& bytes) const
    {
        const FileDescriptor hook(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::ranges::copy(path.toStdString(), address.sun_path);
        ASSERT_EQ(::connect(hook.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        ASSERT_EQ(::send(hook.get(), bytes.data(), size_t(bytes.size()), MSG_NOSIGNAL), bytes.size());
        pollfd watched{ hook.get(), 0, 0 };
        ASSERT_EQ(::poll(&watched, 1, 20'000), 1) << "a hook waits for the main loop";
    }
    void sendEvent(int id) const
    {
        send("agent=claude\n{\"hook_event_name\":\"Stop\",\"session_id\":\"" + QByteArray::number(id) + "\"}");
    }
    void sendLimits(int percent) const
    {
        send("limits=claude\n{\"rate_limits\":{\"five_hour\":{\"resets_at\":1,\"used_percentage\":"
            + QByteArray::number(percent) + "}}}");
    }

    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("agents.sock"));
    test::FakeLoop loop;
    test::FakePeers peers;
    QStringList came;
    std::unique_ptr<AgentIntake> intake = std::make_unique<AgentIntake>(loop, peers, path);
};

TEST_F(AgentIntakeTest, keepsTheNewestWhileTheLoopStands)
{
    constexpr int extra = 100;
    constexpr int most = int(AgentIntake::mostEvents);
    sendLimits(1);
    for (int i = 0; i < most + extra; ++i) {
        if (i % 200 == 0)
            sendLimits(2 + i / 200);
        sendEvent(i);
    }
    EXPECT_EQ(came, QStringList());
    loop.turn();
    QStringList expected;
    for (int i = extra; i < most + extra; ++i) {
        if (i == (most + extra) / 200 * 200)
            expected.append(QString::number(2 + i / 200) + u'%');
        expected.append(QString::number(i));
    }
    EXPECT_EQ(came, expected);

    came.clear();
    sendEvent(7);
    sendLimits(8);
    loop.turn();
    EXPECT_EQ(came, QStringList({ QStringLiteral("7"), QStringLiteral("8%") })) << "a new turn, a new delivery";
}

TEST_F(AgentIntakeTest, deliversWhatWaitsInOneTurnUntilItGoes)
{
    for (int i = 0; i < 3; ++i)
        sendEvent(i);
    intake->received = [this](const SocketMessage& message, const HookOrigin&) {
        note(message);
        if (came.size() == 2)
            loop.post([this] { came.append(QStringLiteral("next turn")); });
    };
    loop.turn();
    EXPECT_EQ(came.join(u' '), QStringLiteral("0 1 2 next turn"));
    sendEvent(3);
    intake.reset();
    loop.turn();
    EXPECT_EQ(came.size(), 4) << "none after its end";
}

} // namespace

} // namespace kestro
