#include "BusProbe.h"

#include <QList>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <optional>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace kestro {
namespace {

/// The path of a socket's address, with a zero byte in front of an abstract one; nothing for other transports.
std::optional<QByteArray> socketPath(const QByteArray& address)
{
    constexpr QByteArrayView transport = "unix:";
    if (!address.startsWith(transport))
        return std::nullopt;
    for (const QByteArray& pair : address.mid(transport.size()).split(',')) {
        const QByteArray value = QByteArray::fromPercentEncoding(pair.mid(pair.indexOf('=') + 1));
        if (pair.startsWith("path="))
            return value;
        if (pair.startsWith("abstract="))
            return QByteArray(1, '\0') + value;
        if (pair == "runtime=yes")
            return qgetenv("XDG_RUNTIME_DIR") + "/bus";
    }
    return std::nullopt;
}

/// Null where no process listens.
FileDescriptor connectTo(const QByteArray& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.isEmpty() || static_cast<size_t>(path.size()) >= sizeof address.sun_path)
        return FileDescriptor();
    std::memcpy(address.sun_path, path.constData(), static_cast<size_t>(path.size()));
    // An abstract name ends where the address does.
    const auto size = offsetof(sockaddr_un, sun_path) + static_cast<size_t>(path.size()) + (path.front() ? 1 : 0);
    FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), static_cast<socklen_t>(size)) != 0)
        return FileDescriptor();
    return socket;
}

} // namespace

BusProbe::BusProbe(const QByteArray& addresses)
{
    for (const QByteArray& address : addresses.split(';')) {
        if (address.isEmpty() || address.startsWith("autolaunch:"))
            continue;
        const auto path = socketPath(address);
        if (!path) {
            m_state = State::answering;
            return;
        }
        m_socket = connectTo(*path);
        const QByteArray hello =
            QByteArray(1, '\0') + "AUTH EXTERNAL " + QByteArray::number(::getuid()).toHex() + "\r\n";
        const auto size = static_cast<size_t>(hello.size());
        if (m_socket && ::send(m_socket.get(), hello.constData(), size, MSG_NOSIGNAL) == hello.size()) {
            m_state = State::silent;
            return;
        }
        m_socket = FileDescriptor();
        // The socket's backlog is full: the process that listens there does not answer.
        m_state = errno == EAGAIN ? State::silent : State::absent;
    }
}

BusProbe::State BusProbe::wait(std::chrono::milliseconds limit)
{
    pollfd answer{ m_socket.get(), POLLIN, 0 };
    if (!m_socket || ::poll(&answer, 1, static_cast<int>(limit.count())) != 1)
        return m_state;
    char first = 0;
    m_state = ::recv(m_socket.get(), &first, 1, 0) == 1 ? State::answering : State::absent;
    m_socket = FileDescriptor();
    return m_state;
}

} // namespace kestro
