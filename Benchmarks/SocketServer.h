#pragma once

#include "KestroCore/Agents/AgentSocketReader.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <string>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace kestro::benchmark {

inline constexpr auto socketInHome = "Library/Application Support/Kestro/agents.sock";

/// Ends the program when a step that everything else needs fails.
inline void require(bool done, const char* step)
{
    if (!done) {
        std::perror(step);
        std::exit(1);
    }
}

/// A home folder with nothing in it but the socket's folder, gone at the end.
class Home {
public:
    Home()
    {
        std::string name = (std::filesystem::temp_directory_path() / "kestro-XXXXXX").string();
        require(::mkdtemp(name.data()) != nullptr, "mkdtemp");
        path = name;
        socket = path / socketInHome;
        std::filesystem::create_directories(socket.parent_path());
    }
    ~Home()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    Home(const Home&) = delete;
    Home& operator=(const Home&) = delete;

    std::filesystem::path path;
    std::filesystem::path socket;
};

/// A child process that serves until its owner ends; `serve` reports readiness by the descriptor that it is given.
class Server {
public:
    explicit Server(const std::function<void(int ready)>& serve)
    {
        int ends[2];
        require(::pipe2(ends, O_CLOEXEC) == 0, "pipe");
        m_process = ::fork();
        require(m_process >= 0, "fork");
        if (m_process == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            serve(ends[1]);
            std::_Exit(0);
        }
        ::close(ends[1]);
        m_reports = FileDescriptor(ends[0]);
        read();
    }
    ~Server()
    {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    /// The next number that the child reports.
    long read()
    {
        long value = 0;
        require(::read(m_reports.get(), &value, sizeof value) == sizeof value, "server");
        return value;
    }
    pid_t process() const { return m_process; }

private:
    pid_t m_process = -1;
    FileDescriptor m_reports;
};

inline void report(int descriptor, long value)
{
    require(::write(descriptor, &value, sizeof value) == sizeof value, "report");
}

inline sockaddr_un addressOf(const std::filesystem::path& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    require(path.native().size() < sizeof address.sun_path, "path");
    std::ranges::copy(path.native(), address.sun_path);
    return address;
}

} // namespace kestro::benchmark
