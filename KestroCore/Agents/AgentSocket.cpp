#include "KestroCore/Agents/AgentSocket.h"

#include "KestroCore/Support/SerialQueue.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <system_error>
#include <unistd.h>

namespace kestro {

namespace {

constexpr size_t maxPathBytes = 103;
constexpr int backlog = 16;

[[noreturn]] void throwPosix(int error, const char* what)
{
    throw std::system_error(error != 0 ? error : EIO, std::generic_category(), what);
}

/// The socket's own folder is for its user alone, so that no other user can connect; its parents keep their usual mode.
void makeFolder(const std::filesystem::path& folder)
{
    if (folder.empty())
        return;
    struct stat status { };
    if (::stat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) {
        std::filesystem::create_directories(folder.parent_path());
        if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST)
            throwPosix(errno, "mkdir");
    } else if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0 && ::chmod(folder.c_str(), 0700) != 0) {
        // Made by another program, or restored from a copy. A folder that stays open to others is refused.
        throwPosix(errno, "chmod");
    }
}

FileDescriptor listenAt(const std::string& path)
{
    FileDescriptor listener(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!listener)
        throwPosix(errno, "socket");
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() > maxPathBytes)
        throwPosix(ENAMETOOLONG, "bind");
    std::ranges::copy(path, address.sun_path);
    if (::bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        throwPosix(errno, "bind");
    if (::listen(listener.get(), backlog) != 0)
        throwPosix(errno, "listen");
    return listener;
}

} // namespace

AgentSocket::AgentSocket(QString path, OnSocketMessage onMessage, AgentSocketLimits limits)
    : m_path(std::move(path))
    , m_onMessage(std::move(onMessage))
    , m_limits(limits)
{
}

AgentSocket::~AgentSocket() { stop(); }

void AgentSocket::start()
{
    if (isStarted())
        return;
    const std::string path = m_path.toStdString();
    makeFolder(std::filesystem::path(path).parent_path());
    ::unlink(path.c_str());
    auto reader = std::make_unique<AgentSocketReader>(listenAt(path), m_onMessage, m_limits);
    auto queue = std::make_unique<SerialQueue>("kestro.agent-socket");
    queue->async([reader = reader.get()] { reader->run(); });
    m_reader = std::move(reader);
    m_queue = std::move(queue);
}

void AgentSocket::stop()
{
    if (!isStarted())
        return;
    ::unlink(m_path.toStdString().c_str());
    m_reader->stop();
    m_queue.reset();
    m_reader.reset();
}

} // namespace kestro
