/// How long an agent waits for its hook: the hook's own command, run as the agent runs it, against this system's
/// socket, against the same with the walk from the hook up to its agent and, all interleaved, against a bare server
/// that closes as soon as it has the bytes.
///
///     HookBenchmark [SOCKET [RUNS]]      SOCKET: that of a running Kestro, or "-" for one of the benchmark's own

#include "Benchmarks/SocketServer.h"
#include "KestroCore/Agents/AgentSocket.h"
#include "Platforms/Linux/System/ProcPeerInspector.h"

#include <array>
#include <fcntl.h>
#include <spawn.h>
#include <vector>

using namespace kestro;
using namespace kestro::benchmark;

namespace {

constexpr const char* command = "{ echo \"agent=claude\"; cat; } | nc -U -w1 "
                                "\"$HOME/Library/Application Support/Kestro/agents.sock\" >/dev/null 2>&1; exit 0";

const std::string& hookInput()
{
    static const std::string text =
        R"({"session_id":"7f3c0a52-9d1e-4c3b-8a55-0f6f1f0b7c11","transcript_path":"/home/user/.claude/projects/-home-user-dock/7f3c0a52.jsonl","cwd":"/home/user/dock","permission_mode":"default","hook_event_name":"PostToolUse","tool_name":"Bash","tool_input":{"command":"ninja -C build && ctest --test-dir build","description":"Build and test"},"tool_response":{"stdout":")"
        + std::string(2000, '.') + R"(","stderr":"","interrupted":false,"isImage":false}})" + "\n";
    return text;
}

void serveBare(const std::filesystem::path& path, int ready)
{
    const FileDescriptor listener(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const sockaddr_un address = addressOf(path);
    require(::bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0, "bind");
    require(::listen(listener.get(), 16) == 0, "listen");
    report(ready, 0);
    const size_t whole = std::string("agent=claude\n").size() + hookInput().size();
    std::array<char, 65'536> buffer;
    for (;;) {
        const FileDescriptor client(::accept(listener.get(), nullptr, nullptr));
        ssize_t count = 1;
        for (size_t got = 0; got < whole && count > 0; got += static_cast<size_t>(count))
            count = ::recv(client.get(), buffer.data(), buffer.size(), 0);
    }
}

void serveOurs(const std::filesystem::path& path, int ready, bool walks)
{
    const ProcPeerInspector peers;
    AgentSocket socket(QString::fromStdString(path.string()), [&](const SocketMessage&, int connection) {
        if (walks)
            require(!peers.peer(connection).ancestors.empty(), "walk");
    });
    socket.start();
    report(ready, 0);
    for (;;)
        ::pause();
}

/// Seconds from the start of the shell to its end. The agent gives the JSON by a pipe and closes it.
double runHook(const std::filesystem::path& home)
{
    int input[2];
    require(::pipe2(input, O_CLOEXEC) == 0, "pipe");
    require(::write(input[1], hookInput().data(), hookInput().size()) == static_cast<ssize_t>(hookInput().size()),
        "hook input");
    ::close(input[1]);

    std::string homeVariable = "HOME=" + home.string();
    std::string pathVariable = "PATH=/usr/bin:/bin";
    std::array<char*, 3> environment{ homeVariable.data(), pathVariable.data(), nullptr };
    std::string shell = "sh", option = "-c", text = command;
    std::array<char*, 4> arguments{ shell.data(), option.data(), text.data(), nullptr };
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);

    const auto begin = std::chrono::steady_clock::now();
    pid_t process = -1;
    require(::posix_spawn(&process, "/bin/sh", &actions, nullptr, arguments.data(), environment.data()) == 0, "sh");
    int status = 0;
    require(::waitpid(process, &status, 0) == process && status == 0, "hook");
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;

    ::posix_spawn_file_actions_destroy(&actions);
    ::close(input[0]);
    return taken.count();
}

double quantile(std::vector<double> times, double share)
{
    std::ranges::sort(times);
    return times.at(std::min(times.size() - 1, static_cast<size_t>(share * static_cast<double>(times.size()))));
}

} // namespace

int main(int argc, char** argv)
{
    const std::string running = argc > 1 ? argv[1] : "-";
    const int runs = argc > 2 ? std::atoi(argv[2]) : 1000;
    const Home ourHome, walkHome, bareHome;
    const Server bare([&](int ready) { serveBare(bareHome.socket, ready); });
    const Server walk([&](int ready) { serveOurs(walkHome.socket, ready, true); });
    const Server ours([&](int ready) {
        if (running == "-")
            serveOurs(ourHome.socket, ready, false);
        std::filesystem::create_symlink(running, ourHome.socket);
        report(ready, 0);
    });

    struct Kind {
        const char* name;
        const Home& home;
        std::vector<double> times{};
    };
    std::array<Kind, 3> kinds{ { { running == "-" ? "socket" : "running", ourHome }, { "walk", walkHome },
        { "bare", bareHome } } };
    for (int i = 0; i < runs; ++i) {
        // The order goes round, so that none always runs on what another left in the caches.
        for (size_t turn = 0; turn < kinds.size(); ++turn) {
            Kind& kind = kinds[(static_cast<size_t>(i) + turn) % kinds.size()];
            kind.times.push_back(runHook(kind.home.path));
        }
    }
    std::printf("%d runs of the hook command each, milliseconds\n", runs);
    std::printf("%-8s %8s %8s %8s %14s\n", "", "median", "p99", "max", "median / bare");
    for (const Kind& kind : kinds)
        std::printf("%-8s %8.3f %8.3f %8.3f %14.2f\n", kind.name, quantile(kind.times, 0.5) * 1e3,
            quantile(kind.times, 0.99) * 1e3, quantile(kind.times, 1) * 1e3,
            quantile(kind.times, 0.5) / quantile(kinds.back().times, 0.5));
    std::printf(
        "with the walk %.2f times as long as without\n", quantile(kinds[1].times, 0.5) / quantile(kinds[0].times, 0.5));
    return 0;
}
