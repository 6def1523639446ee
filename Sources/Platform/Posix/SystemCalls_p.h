// SPDX-License-Identifier: LicenseRef-Halyard
// What the files of this folder share around a system call.
#pragma once

#include <signal.h>

#include <cerrno>
#include <string>
#include <string_view>

#include "Platform/PathText.h"

namespace brt {

// A host's timers and profilers interrupt calls: they are taken up again.
template <class Call>
auto retried(Call call) {
    for (;;) {
        const auto result = call();
        if (result != -1 || errno != EINTR) return result;
    }
}

// A path as the system takes it. One with a NUL inside names no file; cut there, it would name another one.
class CSystemPath {
public:
    explicit CSystemPath(std::u16string_view path) : m_bytes(pathToSystem(path)) {}

    // 0, or the code for a path that no file can have.
    [[nodiscard]] int error() const noexcept { return m_bytes.find('\0') != std::string::npos ? EINVAL : 0; }
    [[nodiscard]] const std::string& bytes() const noexcept { return m_bytes; }
    operator const char*() const noexcept { return m_bytes.c_str(); }

private:
    std::string m_bytes;
};

// Keeps SIGPIPE, which would end the host, from this thread for the life of a scope; a write then gives EPIPE.
class CBlockedPipeSignal {
public:
    CBlockedPipeSignal() noexcept {
        sigemptyset(&m_pipe);
        sigaddset(&m_pipe, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        m_wasPending = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &m_pipe, &m_maskBefore);
    }
    ~CBlockedPipeSignal() {
        const int error = errno;
        constexpr timespec kNow{};
        // What was raised meanwhile is ours to take back; what was pending before is not.
        if (!m_wasPending) retried([&] { return sigtimedwait(&m_pipe, nullptr, &kNow); });
        pthread_sigmask(SIG_SETMASK, &m_maskBefore, nullptr);
        errno = error;
    }
    CBlockedPipeSignal(const CBlockedPipeSignal&) = delete;
    CBlockedPipeSignal& operator=(const CBlockedPipeSignal&) = delete;

private:
    sigset_t m_pipe{};
    sigset_t m_maskBefore{};
    bool m_wasPending = false;
};

}  // namespace brt
