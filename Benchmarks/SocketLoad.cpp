/// Eight clients, each sending its next message when the one before was closed: what arrives, in which order, and what
/// the receiving process keeps of it ten seconds later.
///
///     SocketLoad [CLIENTS [MESSAGES]]

#include "Benchmarks/SocketServer.h"
#include "KestroCore/Agents/AgentSocket.h"

#include <fcntl.h>
#include <fstream>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

using namespace kestro;
using namespace kestro::benchmark;

namespace {

/// Serves, and at each SIGUSR1 reports how many messages came and how many of them out of their client's order.
void serve(const std::filesystem::path& path, int reports)
{
    sigset_t signals;
    ::sigemptyset(&signals);
    ::sigaddset(&signals, SIGUSR1);
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr); // before the socket's thread starts, which inherits it

    std::mutex mutex;
    std::map<QString, long> next;
    long received = 0, misplaced = 0;
    AgentSocket socket(QString::fromStdString(path.string()), [&](const SocketMessage& message, int) {
        const std::lock_guard lock(mutex);
        ++received;
        if (message.event()->name.toLong() != next[message.event()->sessionID]++)
            ++misplaced;
    });
    socket.start();
    report(reports, 0);
    for (int signal = 0; ::sigwait(&signals, &signal) == 0;) {
        const std::lock_guard lock(mutex);
        report(reports, received);
        report(reports, misplaced);
    }
}

void sendAll(const sockaddr_un& address, int client, int messages)
{
    for (int i = 0; i < messages; ++i) {
        const FileDescriptor connection(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        require(
            ::connect(connection.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0, "connect");
        const std::string text = "agent=claude\n{\"session_id\":\"" + std::to_string(client)
            + "\",\"hook_event_name\":\"" + std::to_string(i) + "\",\"tool_input\":\"" + std::string(1500, '.')
            + "\"}\n";
        require(::send(connection.get(), text.data(), text.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(text.size()),
            "send");
        char end;
        [[maybe_unused]] const auto none = ::recv(connection.get(), &end, 1, 0);
    }
}

/// One of the sums of a process' memory, in KiB.
long memory(pid_t process, const std::string& name)
{
    std::ifstream file("/proc/" + std::to_string(process) + "/smaps_rollup");
    std::string word;
    while (file >> word) {
        if (word == name) {
            long value = 0;
            file >> value;
            return value;
        }
    }
    return -1;
}

/// How often the process' threads went to sleep of themselves.
long switches(pid_t process)
{
    long sum = 0;
    for (const auto& task : std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
        std::ifstream file(task.path() / "status");
        std::string word;
        long value = 0;
        while (file >> word) {
            if (word == "voluntary_ctxt_switches:" && file >> value)
                sum += value;
        }
    }
    return sum;
}

} // namespace

int main(int argc, char** argv)
{
    const int clients = argc > 1 ? std::atoi(argv[1]) : 8;
    const int messages = argc > 2 ? std::atoi(argv[2]) : 1250;
    const Home home;
    Server server([&](int reports) { serve(home.socket, reports); });
    const sockaddr_un address = addressOf(home.socket);

    const long pssBefore = memory(server.process(), "Pss:");
    const long rssBefore = memory(server.process(), "Rss:");
    const auto begin = std::chrono::steady_clock::now();
    {
        std::vector<std::jthread> threads;
        for (int client = 0; client < clients; ++client)
            threads.emplace_back(sendAll, address, client, messages);
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    ::kill(server.process(), SIGUSR1);
    const long received = server.read();
    const long misplaced = server.read();
    const long switchesBefore = switches(server.process());
    std::this_thread::sleep_for(std::chrono::seconds(10));

    const long sent = static_cast<long>(clients) * messages;
    std::printf(
        "%ld messages sent in %.2f s, %ld lost, %ld out of order\n", sent, taken.count(), sent - received, misplaced);
    std::printf("PSS %ld KiB before, %+ld KiB 10 s after; RSS %ld KiB before, %+ld KiB\n", pssBefore,
        memory(server.process(), "Pss:") - pssBefore, rssBefore, memory(server.process(), "Rss:") - rssBefore);
    std::printf("%ld wake-ups in the 10 s\n", switches(server.process()) - switchesBefore);
    return received == sent && misplaced == 0 ? 0 : 1;
}
