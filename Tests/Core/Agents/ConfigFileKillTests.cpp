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

/// A child that runs `work` and waits to be traced first.
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
        const bool atCall = WSTOPSIG(status) == (SIGTRAP | 0x80);
        if (atCall && (pid == program) == (counted == Counted::program) && ++seen == stop) {
            ending.reached = true;
            if (killed != Killed::helper)
                kill(program, SIGKILL);
            if (killed != Killed::program)
                kill(pid, SIGKILL);
        }
        const int signal = WSTOPSIG(status);
        const bool passOn = !atCall && signal != SIGTRAP && signal != SIGSTOP;
        ptrace(PTRACE_SYSCALL, pid, nullptr, passOn ? signal : 0);
    }
    return ending;
}

class ConfigFileKill : public testing::Test {
protected:
    static constexpr mode_t mode = 0640;
    const QByteArray oldBytes = "{\"old\":1}";
    const QByteArray newBytes = "{\"new\":1}";
    const FileState before{ oldBytes, mode };
    const FileState after{ newBytes, mode };

    /// The states that may be found, for a start with the files of `start`.
    struct Scene {
        const char* name;
        FolderState start;
        std::vector<FolderState> allowed;
    };
    std::vector<Scene> scenes() const
    {
        const FileState older{ "{\"older\":1}", mode };
        return {
            { "with a backup", { { "f", before }, { "f.kestro.bak", older } },
                { { { "f", before }, { "f.kestro.bak", older } }, { { "f", before }, { "f.kestro.bak", before } },
                    { { "f", after }, { "f.kestro.bak", before } } } },
            { "without one", { { "f", before } },
                { { { "f", before } }, { { "f", before }, { "f.kestro.bak", before } },
                    { { "f", after }, { "f.kestro.bak", before } } } },
            { "without a file", {}, { {}, { { "f", after } } } },
        };
    }

    /// Kills an update of `scene` at every stop; returns how many there were.
    int killEverywhere(const Scene& scene, Counted counted, Killed killed)
    {
        for (int stop = 1;; ++stop) {
            QTemporaryDir folder;
            for (const auto& [name, state] : scene.start)
                writeFile(folder.filePath(QFile::decodeName(name)), state.bytes, state.mode);
            const auto update = [&] {
                umask(0666 & ~mode);
                ConfigFile::update(
                    folder.filePath(QStringLiteral("f")), [this](const auto&, const auto&) { return newBytes; });
            };
            const Ending ending = killAtStop(stop, counted, killed, update);
            FolderState found = snapshot(folder.path());
            if (killed == Killed::both && ending.reached) {
                // Nobody was left to clear away; the next start does, even if it has nothing to write.
                ConfigFile::update(
                    folder.filePath(QStringLiteral("f")), [](const auto&, const auto&) { return std::nullopt; });
                found = snapshot(folder.path());
            }
            EXPECT_THAT(scene.allowed, testing::Contains(found)) << "killed at stop " << stop;
            if (killed == Killed::helper || !ending.reached) {
                EXPECT_TRUE(ending.succeeded) << "at stop " << stop;
                EXPECT_EQ(found, scene.allowed.back()) << "at stop " << stop;
            }
            m_found.insert(found == scene.allowed.back());
            if (!ending.reached || HasFailure())
                return stop - 1;
        }
    }

    std::set<bool> m_found; // whether the update was complete
};

TEST_F(ConfigFileKill, TheProgramAtEveryCall)
{
    for (const Scene& scene : scenes()) {
        SCOPED_TRACE(scene.name);
        m_found.clear();
        EXPECT_GT(killEverywhere(scene, Counted::program, Killed::program), 30);
        EXPECT_EQ(m_found.size(), 2U) << "some too early and some too late";
    }
}

TEST_F(ConfigFileKill, TheProgramWhileItsHelperWorks)
{
    for (const Scene& scene : scenes()) {
        SCOPED_TRACE(scene.name);
        EXPECT_GE(killEverywhere(scene, Counted::helper, Killed::program), 5);
    }
}

TEST_F(ConfigFileKill, TheHelperAtEveryCall)
{
    for (const Scene& scene : scenes()) {
        SCOPED_TRACE(scene.name);
        EXPECT_GE(killEverywhere(scene, Counted::helper, Killed::helper), 5);
    }
}

TEST_F(ConfigFileKill, BothInTheSameMoment)
{
    for (const Scene& scene : scenes()) {
        SCOPED_TRACE(scene.name);
        EXPECT_GE(killEverywhere(scene, Counted::helper, Killed::both), 5);
    }
}

} // namespace
} // namespace kestro
