#include "SingleInstance.h"

#include "PrivateFolder.h"

#include "Kestro/Platform/Log.h"
#include "KestroCore/Support/PosixError.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QFile>
#include <QSocketNotifier>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace kestro {
namespace {

using namespace std::chrono_literals;

constexpr auto longestWait = 2s;
constexpr int pauseMilliseconds = 20;
constexpr const char* lockName = "/instance.lock";
constexpr const char* socketName = "/instance.sock";

// A home folder's path can be longer than an address holds, so the folder is named by a descriptor.
class InstanceAddress {
public:
    explicit InstanceAddress(const QByteArray& folder)
        : m_folder(::open(folder.constData(), O_PATH | O_DIRECTORY | O_CLOEXEC))
    {
        m_address.sun_family = AF_UNIX;
        const QByteArray path = "/proc/self/fd/" + QByteArray::number(m_folder.get()) + socketName;
        std::memcpy(m_address.sun_path, path.constData(), static_cast<size_t>(path.size()) + 1);
    }

    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&m_address); }
    socklen_t size() const { return sizeof m_address; }

private:
    FileDescriptor m_folder;
    sockaddr_un m_address{};
};

// A name in no folder, one for each user and home folder. It goes with the process.
class AbstractAddress {
public:
    explicit AbstractAddress(const QByteArray& folder)
    {
        m_address.sun_family = AF_UNIX;
        const QByteArray name = "kestro-" + QByteArray::number(::getuid()) + '-'
            + QCryptographicHash::hash(folder, QCryptographicHash::Sha1).toHex();
        std::memcpy(m_address.sun_path + 1, name.constData(), static_cast<size_t>(name.size()));
        m_size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + static_cast<size_t>(name.size()));
    }

    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&m_address); }
    socklen_t size() const { return m_size; }

private:
    sockaddr_un m_address{};
    socklen_t m_size = 0;
};

FileDescriptor connectionSocket()
{
    return FileDescriptor(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

bool isOurUser(const FileDescriptor& connection)
{
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(connection.get(), SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.uid == ::getuid();
}

// Datagrams: the sender never waits for the receiver, be that stopped or stuck.
FileDescriptor datagramSocket()
{
    return FileDescriptor(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
}

} // namespace

SingleInstance::SingleInstance(const QString& folder, Log& log, QObject* parent)
    : QObject(parent)
    , m_folder(QFile::encodeName(folder))
    , m_log(log)
{
    createPrivateFolder(m_folder); // a failure shows when the lock is taken
}

SingleInstance::~SingleInstance()
{
    if (m_socket)
        ::unlink((m_folder + socketName).constData()); // before the lock goes and the name is another's
}

bool SingleInstance::claim()
{
    const QDeadlineTimer limit(longestWait);
    do {
        switch (tryLock()) {
        case Lock::taken:
            listen();
            holdName();
            return true;
        case Lock::impossible:
            return holdName() || !tellByName();
        case Lock::held:
            if (tellFirst())
                return false;
        }
        ::poll(nullptr, 0, pauseMilliseconds);
    } while (!limit.hasExpired());
    m_log.write(QStringLiteral("Kestro: it is running already, and couldn't be told of this start"));
    return false;
}

SingleInstance::Lock SingleInstance::tryLock()
{
    const QByteArray path = m_folder + lockName;
    FileDescriptor file(::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (file && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0) {
        m_lock = std::move(file);
        return Lock::taken;
    }
    if (errno == EWOULDBLOCK)
        return Lock::held;
    m_log.write(QStringLiteral("Kestro: couldn't lock %1: %2").arg(QFile::decodeName(path), PosixError::reason(errno)));
    return Lock::impossible;
}

bool SingleInstance::tellFirst() const
{
    const FileDescriptor socket = datagramSocket();
    const InstanceAddress address(m_folder);
    // With a full queue it has been told often enough.
    return ::sendto(socket.get(), "s", 1, MSG_NOSIGNAL, address.get(), address.size()) == 1 || errno == EAGAIN;
}

bool SingleInstance::tellByName() const
{
    const FileDescriptor socket = connectionSocket();
    const AbstractAddress address(m_folder);
    // Being connected to is all that the first needs to know.
    return ::connect(socket.get(), address.get(), address.size()) == 0 ? isOurUser(socket) : errno == EAGAIN;
}

bool SingleInstance::holdName()
{
    constexpr int waiting = 8;
    FileDescriptor socket = connectionSocket();
    const AbstractAddress address(m_folder);
    if (::bind(socket.get(), address.get(), address.size()) != 0 || ::listen(socket.get(), waiting) != 0)
        return false;
    m_name = std::move(socket);
    m_nameNotifier = std::make_unique<QSocketNotifier>(m_name.get(), QSocketNotifier::Read);
    connect(m_nameNotifier.get(), &QSocketNotifier::activated, this, &SingleInstance::acceptSecond);
    return true;
}

void SingleInstance::acceptSecond()
{
    bool told = false;
    while (const FileDescriptor second{ ::accept4(m_name.get(), nullptr, nullptr, SOCK_CLOEXEC) })
        told = isOurUser(second) || told;
    if (told)
        Q_EMIT secondStart();
}

void SingleInstance::listen()
{
    FileDescriptor socket = datagramSocket();
    const InstanceAddress address(m_folder);
    ::unlink((m_folder + socketName).constData());
    ::fchmod(socket.get(), 0600); // is the mode of the name too
    if (::bind(socket.get(), address.get(), address.size()) != 0) {
        m_log.write(QStringLiteral("Kestro: couldn't listen for further starts: %1").arg(PosixError::reason(errno)));
        return;
    }
    m_socket = std::move(socket);
    m_notifier = std::make_unique<QSocketNotifier>(m_socket.get(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &SingleInstance::drain);
}

void SingleInstance::drain()
{
    char byte = 0;
    bool told = false;
    while (::recv(m_socket.get(), &byte, 1, 0) >= 0)
        told = true;
    if (told)
        Q_EMIT secondStart();
}

} // namespace kestro
