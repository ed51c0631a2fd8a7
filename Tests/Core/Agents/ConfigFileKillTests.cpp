// Whoever is killed, and wherever: the file, its backup and their folder are each as before or as after, and nothing
// else is there. The update runs in a child that is traced, and killed at its n-th stop at a system call (there is one
// on the way in and one on the way out) for every n until it gets through.

#include "KestroCore/Agents/ConfigFile.h"
#include "Tests/Core/Support/FolderSnapshot.h"

#include <QTemporaryDir>
#include <csignal>
#include <gmock/gmock.h>
#include <set>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestro {
namespace {

using namespace tests;

enum class Counted { program, helper }; // whose stops: the updating process, or the one that it starts
enum class Killed { program, helper, both };

struct Ending {
    bool reached = false; // there was such a stop
    bool succeeded = false; // the program came to its end by itself
};

/// A child that runs `work`, stopped at its first call.
pid_t startTraced(const std::function<void()>& work)
{
    const pid_t child = fork();
    if (child == 0) {
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        raise(SIGSTOP);
        try {
            work();
            _exit(0);
        } catch (const std::exception&) {
            _exit(1);
        }
    }
    int status = 0;
    waitpid(child, &status, 0);
    const long options = PTRACE_O_EXITKILL | PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACEVFORK | PTRACE_O_TRACEFORK;
    ptrace(PTRACE_SETOPTIONS, child, nullptr, options);
    ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
    return child;
}

Ending killAtStop(int stop, Counted counted, Killed killed, const std::function<void()>& work)
{
    const pid_t program = startTraced(work);
    Ending ending;
    int status = 0;
    int seen = 0;
    // Until none is left, the helper of a killed program included: what it still does belongs to the outcome.
    for (pid_t pid; (pid = waitpid(-1, &status, __WALL)) > 0;) {
        if (!WIFSTOPPED(status)) {
            ending.succeeded = ending.succeeded || (pid == program && status == 0);
            continue;
        }
        const int signal = WSTOPSIG(status);
        const bool atCall = signal == (SIGTRAP | 0x80);
        if (atCall && (pid == program) == (counted == Counted::program) && ++seen == stop) {
            ending.reached = true;
            if (killed != Killed::helper)
                kill(program, SIGKILL);
            if (killed != Killed::program)
                kill(pid, SIGKILL);
        }
        const bool passOn = !atCall && signal != SIGTRAP && signal != SIGSTOP;
        ptrace(PTRACE_SYSCALL, pid, nullptr, passOn ? signal : 0);
    }
    return ending;
}

/// Files to begin with, and the states that may be found then, the complete one last.
struct Scene {
    const char* name;
    FolderState start;
    std::vector<FolderState> allowed;
};

std::vector<Scene> scenes()
{
    const FileState older{ "{\"older\":1}", 0640 };
    const FileState before{ "{\"old\":1}", 0640 };
    const FileState after{ "{\"new\":1}", 0640 };
    const FolderState alone{ { "f", before } };
    const FolderState beside{ { "f", before }, { "f.kestro.bak", older } };
    const FolderState saved{ { "f", before }, { "f.kestro.bak", before } };
    const FolderState complete{ { "f", after }, { "f.kestro.bak", before } };
    return { { "with a backup", beside, { beside, saved, complete } },
        { "without one", alone, { alone, saved, complete } }, { "without a file", {}, { {}, { { "f", after } } } } };
}

TEST(ConfigFileKill, AtEveryCall)
{
    const std::tuple<const char*, Counted, Killed, int> deaths[] = {
        { "the program", Counted::program, Killed::program, 30 },
        { "the program while its helper works", Counted::helper, Killed::program, 4 },
        { "the helper", Counted::helper, Killed::helper, 4 },
        { "both in the same moment", Counted::helper, Killed::both, 4 },
    };
    for (const auto& [death, counted, killed, leastStops] : deaths) {
        for (const Scene& scene : scenes()) {
            std::set<bool> found; // whether the update was complete
            bool reached = true;
            int stop = 0;
            while (reached && !HasFailure()) {
                SCOPED_TRACE(testing::Message() << death << ", " << scene.name << ", stop " << ++stop);
                QTemporaryDir folder;
                for (const auto& [name, state] : scene.start)
                    writeFile(folder.filePath(QFile::decodeName(name)), state.bytes, state.mode);
                const auto update = [&folder](const std::optional<QByteArray>& bytes) {
                    umask(026);
                    ConfigFile::update(
                        folder.filePath(QStringLiteral("f")), [&](const auto&, const auto&) { return bytes; });
                };
                const Ending ending = killAtStop(stop, counted, killed, [&] { update("{\"new\":1}"); });
                reached = ending.reached;
                // Nobody was left to clear away; the next start does, even if it has nothing to write.
                if (killed == Killed::both && reached)
                    update(std::nullopt);
                const FolderState state = snapshot(folder.path());
                EXPECT_THAT(scene.allowed, testing::Contains(state));
                if (killed == Killed::helper || !reached) {
                    EXPECT_TRUE(ending.succeeded);
                    EXPECT_EQ(state, scene.allowed.back());
                }
                found.insert(state == scene.allowed.back());
            }
            EXPECT_GT(stop - 1, leastStops);
            EXPECT_TRUE(counted == Counted::helper || found.size() == 2) << "some too early and some too late";
        }
    }
}

} // namespace
} // namespace kestro
