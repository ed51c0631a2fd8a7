#pragma once

#include "KestroCore/Agents/AgentSocket.h"
#include "KestroCore/Agents/HookOrigin.h"

#include <QObject>
#include <functional>
#include <memory>

namespace kestro {

class MainLoop;
class PeerInspector;

/// The agents' socket while somebody wants to hear of them. Main thread.
class AgentIntake final : public QObject {
    Q_OBJECT
public:
    /// `path` is the socket's. The ports must outlive it.
    AgentIntake(MainLoop& loop, PeerInspector& peers, QString path);
    ~AgentIntake() override;

    /// Opens the socket, or leaves it as it is where it is open. Why it cannot be, or nothing.
    QString open();
    void close();

    /// Each message in the order of its arrival, with the way from its hook up to the agent.
    std::function<void(const SocketMessage&, const HookOrigin&)> received = [](const auto&, const auto&) {};

private:
    struct Mailbox;

    void deliver();

    MainLoop& m_loop;
    PeerInspector& m_peers;
    QString m_path;
    std::shared_ptr<Mailbox> m_mailbox; ///< shared with the socket's thread
    std::unique_ptr<AgentSocket> m_socket;
};

} // namespace kestro
