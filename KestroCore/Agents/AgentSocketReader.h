#pragma once

#include "KestroCore/Agents/MessageFramer.h"
#include "KestroCore/Agents/SocketMessage.h"
#include "KestroCore/Support/FileDescriptor.h"

#include <chrono>
#include <functional>
#include <utility>
#include <vector>

struct pollfd;

namespace kestro {

/// A message, and the connection that it came over. Its client waits for the connection's end, so for as long as this
/// runs it is alive.
using OnSocketMessage = std::function<void(SocketMessage message, int connection)>;

/// The limits of the socket's clients. Only tests change them, to smaller values.
struct AgentSocketLimits {
    std::chrono::milliseconds silence{ 1000 }; ///< without a byte, from the connection or the last one on
    std::chrono::milliseconds connection{ 5000 }; ///< in all
    std::chrono::milliseconds grace{ 250 }; ///< until a client gives its place to another that waits
    std::chrono::milliseconds acceptRetry{ 100 }; ///< between attempts while there are no descriptors
    size_t clients = 64; ///< read at once; the others wait in the backlog until one ends or gives its place
    qsizetype messageBytes = MessageFramer::defaultMaxBytes;
    qsizetype heldBytes = 67'108'864; ///< of all clients together; at least `messageBytes`
};

/// Reads the clients of a listening socket side by side on the one thread that calls `run`. It sleeps in the kernel
/// while no client is connected and never writes to one.
class AgentSocketReader {
public:
    /// Throws std::system_error when there is no descriptor for the wake-up.
    AgentSocketReader(FileDescriptor listener, OnSocketMessage onMessage, AgentSocketLimits limits);

    /// Blocks until `stop`; calls `onMessage` meanwhile.
    void run();
    /// Makes `run` return, now or when it is called. From any thread.
    void stop();

private:
    using Clock = std::chrono::steady_clock;
    struct Client {
        FileDescriptor descriptor; // none once the client is done with
        MessageFramer framer;
        Clock::time_point since;
        Clock::time_point lastByteAt;
    };

    void watch(Clock::time_point now);
    int timeout(Clock::time_point now);
    void serve(Clock::time_point now);
    bool hasPlace() const;
    std::vector<Client>::iterator slowest(Clock::time_point now);
    void acceptOne(Clock::time_point now);
    void readSome(Client& client, Clock::time_point now);
    bool mayRead(const Client& client) const;
    bool hasRoom() const;
    Clock::time_point deadline(const Client& client) const;

    FileDescriptor m_listener;
    FileDescriptor m_wake;
    OnSocketMessage m_onMessage;
    AgentSocketLimits m_limits;
    std::vector<char> m_buffer;
    std::vector<Client> m_clients; // oldest first
    std::vector<pollfd> m_watched; // the wake-up, the listener, then the clients in their order
    Clock::time_point m_acceptAgain; // not before
};

} // namespace kestro
