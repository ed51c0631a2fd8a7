#pragma once

#include "KestroCore/Agents/AgentSocket.h"
#include "KestroCore/Agents/HookOrigin.h"

#include <QObject>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace kestro {

class MainLoop;
class PeerInspector;

/// The agents' socket while a feature needs it. Main thread.
class AgentIntake final : public QObject {
    Q_OBJECT
public:
    static constexpr std::size_t mostEvents = 1024; ///< that wait for the main loop

    /// `path` is the socket's. The ports must outlive it.
    AgentIntake(MainLoop& loop, PeerInspector& peers, QString path);
    ~AgentIntake() override;

    /// Opens the socket, or leaves it as it is where it is open. Why it cannot be, or nothing.
    QString open();
    void close();

    /// Each message in the order of its arrival, with the way from its hook up to the agent.
    std::function<void(const SocketMessage&, const HookOrigin&)> received = [](const auto&, const auto&) {};

private:
    struct Mail {
        SocketMessage message;
        HookOrigin origin;
    };
    /// Messages that the main loop has not taken yet. The loop may stand still for long, a hook must not wait for it,
    /// and what comes must not fill the memory meanwhile. So beyond `mostEvents` the oldest event is dropped: what a
    /// session does is told by its newest. Of limits only the newest are kept, since they replace the ones before.
    class Mailbox {
    public:
        /// True for the first message since `takeAll`: the main loop has to be told. From any thread.
        bool put(Mail mail);
        std::deque<Mail> takeAll();

    private:
        std::mutex m_mutex;
        std::deque<Mail> m_waiting;
        bool m_holdsLimits = false;
    };

    void deliver();

    MainLoop& m_loop;
    PeerInspector& m_peers;
    QString m_path;
    Mailbox m_mailbox;
    std::unique_ptr<AgentSocket> m_socket; // last: its thread ends before what it uses
};

} // namespace kestro
