#pragma once

#include "KestroCore/Agents/AgentSocket.h"

#include <QByteArrayView>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <vector>

namespace kestro::test {

using namespace std::chrono_literals;
inline constexpr auto patience = 20s; // only ever used up by a failing test

/// A connection as a hook's netcat makes it. It never reads and keeps its side open until told otherwise.
class SocketClient {
public:
    SocketClient()
        : m_socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
    }
    explicit SocketClient(const QString& path)
        : SocketClient()
    {
        connect(path);
    }

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
    AgentSocketDescriptor m_socket;
};

/// What a socket delivered, in order, as the events' session ids.
class Inbox {
public:
    auto receiver()
    {
        return [this](const SocketMessage& message) {
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
inline QByteArray message(const char* id, qsizetype padding = 0)
{
    return QByteArray("agent=claude\n{\"hook_event_name\":\"Stop\",\"x\":\"")
        .append(padding, 'x')
        .append("\",\"session_id\":\"")
        .append(id)
        .append("\"}");
}

} // namespace kestro::test
