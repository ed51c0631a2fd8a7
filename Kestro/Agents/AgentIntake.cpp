#include "Kestro/Agents/AgentIntake.h"

#include "Kestro/Platform/MainLoop.h"
#include "Kestro/Platform/PeerInspector.h"

#include <QPointer>
#include <exception>
#include <utility>

namespace kestro {

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
    auto socket = std::make_unique<AgentSocket>(m_path,
        [&loop = m_loop, &peers = m_peers, intake = QPointer(this)](const SocketMessage& message, int connection) {
            // While its connection is open the hook lives, and with it the way up to its agent.
            HookOrigin origin = message.event() ? peers.peer(connection) : HookOrigin();
            loop.post([intake, message = message, origin = std::move(origin)] {
                if (intake)
                    intake->received(message, origin);
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

} // namespace kestro
