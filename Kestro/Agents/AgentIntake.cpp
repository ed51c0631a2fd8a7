#include "Kestro/Agents/AgentIntake.h"

#include "Kestro/Platform/MainLoop.h"
#include "Kestro/Platform/PeerInspector.h"

#include <QPointer>
#include <algorithm>
#include <deque>
#include <exception>
#include <iterator>
#include <mutex>
#include <utility>
#include <vector>

namespace kestro {

namespace {

/// Messages that wait for the main thread. With one more the oldest goes: the newer ones tell more, hooks must not
/// wait, and a session whose last event is lost ends with its agent's process.
constexpr std::size_t mostWaiting = 1000;
/// Messages that are handled before other work of the main thread has its turn.
constexpr std::size_t mostAtOnce = 100;

} // namespace

struct AgentIntake::Mailbox {
    struct Letter {
        SocketMessage message;
        HookOrigin origin;
    };

    std::mutex mutex;
    std::deque<Letter> waiting;
    bool announced = false; ///< the main thread has been told
};

AgentIntake::AgentIntake(MainLoop& loop, PeerInspector& peers, QString path)
    : m_loop(loop)
    , m_peers(peers)
    , m_path(std::move(path))
    , m_mailbox(std::make_shared<Mailbox>())
{
}

AgentIntake::~AgentIntake() = default;

QString AgentIntake::open()
{
    if (m_socket)
        return {};
    auto socket = std::make_unique<AgentSocket>(m_path,
        [&loop = m_loop, &peers = m_peers, box = m_mailbox, intake = QPointer(this)](
            SocketMessage message, int connection) {
            // While its connection is open the hook lives, and with it the way up to its agent.
            HookOrigin origin = message.event() ? peers.peer(connection) : HookOrigin();
            const std::lock_guard lock(box->mutex);
            if (box->waiting.size() >= mostWaiting)
                box->waiting.pop_front();
            box->waiting.push_back({ std::move(message), std::move(origin) });
            if (std::exchange(box->announced, true))
                return;
            loop.post([intake] {
                if (intake)
                    intake->deliver();
            });
        });
    try {
        socket->start();
    } catch (const std::exception&) {
        return QStringLiteral("Agent status unavailable");
    }
    m_socket = std::move(socket);
    return {};
}

void AgentIntake::close() { m_socket.reset(); }

void AgentIntake::deliver()
{
    std::vector<Mailbox::Letter> letters;
    {
        const std::lock_guard lock(m_mailbox->mutex);
        auto& waiting = m_mailbox->waiting;
        const auto end = waiting.begin() + std::ptrdiff_t(std::min(waiting.size(), mostAtOnce));
        letters.assign(std::move_iterator(waiting.begin()), std::move_iterator(end));
        waiting.erase(waiting.begin(), end);
        m_mailbox->announced = !waiting.empty();
        if (m_mailbox->announced) {
            m_loop.post([intake = QPointer(this)] {
                if (intake)
                    intake->deliver();
            });
        }
    }
    for (const auto& [message, origin] : letters)
        received(message, origin);
}

} // namespace kestro
