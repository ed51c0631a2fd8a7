#include "Kestro/Agents/AgentIntake.h"

#include "Kestro/Platform/MainLoop.h"
#include "Kestro/Platform/PeerInspector.h"

#include <QPointer>
#include <algorithm>
#include <exception>
#include <utility>

namespace kestro {

bool AgentIntake::Mailbox::put(Mail mail)
{
    const std::lock_guard lock(m_mutex);
    const bool isFirst = m_waiting.empty();
    const auto isLimits = [](const Mail& each) { return each.message.claudeLimits() != nullptr; };
    if (isLimits(mail)) {
        if (std::exchange(m_holdsLimits, true))
            m_waiting.erase(std::ranges::find_if(m_waiting, isLimits));
    } else if (m_waiting.size() - (m_holdsLimits ? 1 : 0) >= mostEvents) {
        m_waiting.erase(std::ranges::find_if_not(m_waiting, isLimits));
    }
    m_waiting.push_back(std::move(mail));
    return isFirst;
}

std::deque<AgentIntake::Mail> AgentIntake::Mailbox::takeAll()
{
    const std::lock_guard lock(m_mutex);
    m_holdsLimits = false;
    return std::exchange(m_waiting, {});
}

AgentIntake::AgentIntake(MainLoop& loop, PeerInspector& peers, QString path)
    : m_loop(loop)
    , m_peers(peers)
    , m_path(std::move(path))
{
}

AgentIntake::~AgentIntake() = default;

QString AgentIntake::open()
{
    if (m_socket)
        return {};
    auto socket =
        std::make_unique<AgentSocket>(m_path, [this, intake = QPointer(this)](SocketMessage message, int connection) {
            // While its connection is open the hook lives, and with it the way up to its agent.
            HookOrigin origin = message.event() ? m_peers.peer(connection) : HookOrigin();
            if (!m_mailbox.put({ std::move(message), std::move(origin) }))
                return;
            m_loop.post([intake] {
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
    const QPointer self(this);
    for (const Mail& mail : m_mailbox.takeAll()) {
        if (!self)
            return;
        received(mail.message, mail.origin);
    }
}

} // namespace kestro
