// SPDX-License-Identifier: LicenseRef-Halyard
// Runs work in a child process that the system ends at its first system call.
#pragma once

#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <vector>

namespace brt {

// From now on any call but these ends the process. UndefinedBehaviorSanitizer asks by way of a pipe whether it may look
// at an object.
inline bool forbidSystemCalls() {
    constexpr unsigned kAllowed[] = {
        SYS_exit,
#if defined(__SANITIZE_ADDRESS__)
        SYS_pipe2,
        SYS_write,
        SYS_close,
#endif
    };
    std::vector<sock_filter> rules = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    for (const unsigned call : kAllowed) {
        rules.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1));
        rules.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    }
    rules.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS));
    const sock_fprog program = {static_cast<unsigned short>(rules.size()), rules.data()};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

template <class Work>
void expectNoSystemCalls(Work work) {
    constexpr int kNotForbidden = 77;
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        if (!forbidSystemCalls()) syscall(SYS_exit, kNotForbidden);
        work();
        syscall(SYS_exit, 0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
    if (WEXITSTATUS(status) == kNotForbidden) GTEST_SKIP() << "this system has no way to forbid system calls";
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

}  // namespace brt
