#pragma once

#include <QByteArray>
#include <cstddef>
#include <cstdio>
#include <functional>
#include <grp.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

/// Tests of what a process may only do once, or must not do to the one that runs the tests. Expectations work inside.
namespace kestro::tests {

/// Runs `work` in a child process and returns whether all its expectations held and it lived to the end.
inline bool inChild(const std::function<void()>& work)
{
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        try {
            work();
        } catch (const std::exception& error) {
            ADD_FAILURE() << error.what();
        }
        std::fflush(nullptr);
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = -1;
    return waitpid(child, &status, 0) == child && status == 0;
}

inline constexpr uid_t nobody = 65534;

/// Becomes somebody whom permissions bind, which they do not for root. For a child.
inline void dropPrivileges()
{
    if (geteuid() != 0)
        return;
    ASSERT_EQ(setgroups(0, nullptr), 0);
    ASSERT_EQ(setgid(nobody), 0);
    ASSERT_EQ(setuid(nobody), 0);
    // A process that changed its user may not be looked into, not even by itself.
    ASSERT_EQ(prctl(PR_SET_DUMPABLE, 1), 0);
}

/// From here on every write behind the first `bytes` of a file fails. For a child.
inline void limitFileSize(rlim_t bytes)
{
    ASSERT_NE(signal(SIGXFSZ, SIG_IGN), SIG_ERR);
    const rlimit limit{ bytes, bytes };
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
}

struct RefusedCall {
    long number; // SYS_…
    int error;
    unsigned flags = 0; // only where the third argument has these bits
};

/// From here on the system refuses this call. For a child.
inline void refuse(const RefusedCall& call)
{
    constexpr auto word = [](std::size_t offset) { return static_cast<unsigned>(offset); };
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, word(offsetof(seccomp_data, nr))),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(call.number), 0, 4),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, word(offsetof(seccomp_data, args) + 2 * sizeof(__u64))),
        BPF_STMT(BPF_ALU | BPF_AND | BPF_K, call.flags),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call.flags, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<unsigned>(call.error)),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog filter{ static_cast<unsigned short>(std::size(program)), program };
    ASSERT_EQ(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
    ASSERT_EQ(prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter), 0);
}

} // namespace kestro::tests
