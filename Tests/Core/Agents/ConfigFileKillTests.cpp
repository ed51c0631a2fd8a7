// Killed at any system call, an update leaves the file and its backup each as before or as after; after the next start
// the folder holds nothing else. The update runs in a child that is traced, and killed at its n-th stop at a system
// call (there is one on the way in and one on the way out) for every n until it gets through.

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

struct Ending {
    bool reached = false; // there was such a stop, and the program was killed there
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
    const long options = PTRACE_O_EXITKILL | PTRACE_O_TRACESYSGOOD;
    ptrace(PTRACE_SETOPTIONS, child, nullptr, options);
    ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
    return child;
}

Ending killAtStop(int stop, const std::function<void()>& work)
{
    const pid_t program = startTraced(work);
    Ending ending;
    int status = 0;
    int seen = 0;
    while (waitpid(program, &status, 0) == program && WIFSTOPPED(status)) {
        const int signal = WSTOPSIG(status);
        const bool atCall = signal == (SIGTRAP | 0x80);
        if (atCall && ++seen == stop) {
            ending.reached = true;
            kill(program, SIGKILL);
        }
        const bool passOn = !atCall && signal != SIGTRAP && signal != SIGSTOP;
        ptrace(PTRACE_SYSCALL, program, nullptr, passOn ? signal : 0);
    }
    ending.succeeded = status == 0;
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
    for (const Scene& scene : scenes()) {
        std::set<bool> found; // whether the update was complete
        bool leftover = false;
        bool reached = true;
        int stop = 0;
        while (reached && !HasFailure()) {
            SCOPED_TRACE(testing::Message() << scene.name << ", stop " << ++stop);
            QTemporaryDir folder;
            for (const auto& [name, state] : scene.start)
                writeFile(folder.filePath(QFile::decodeName(name)), state.bytes, state.mode);
            const auto update = [&folder](const std::optional<QByteArray>& bytes) {
                umask(026);
                ConfigFile::update(
                    folder.filePath(QStringLiteral("f")), [&](const auto&, const auto&) { return bytes; });
            };
            const Ending ending = killAtStop(stop, [&] { update("{\"new\":1}"); });
            reached = ending.reached;
            FolderState state = snapshot(folder.path());
            if (!testing::Matches(testing::Contains(state))(scene.allowed)) {
                leftover = true;
                update(std::nullopt); // the next start, with nothing to write
                state = snapshot(folder.path());
            }
            EXPECT_THAT(scene.allowed, testing::Contains(state));
            if (!reached) {
                EXPECT_TRUE(ending.succeeded);
                EXPECT_EQ(state, scene.allowed.back());
            }
            found.insert(state == scene.allowed.back());
        }
        EXPECT_GT(stop - 1, 30);
        EXPECT_EQ(found.size(), 2) << "some too early and some too late";
        EXPECT_TRUE(leftover) << "killed between the two names";
    }
}

} // namespace
} // namespace kestro
