// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/Interrupt.h"

#include <atomic>
#include <csignal>

#include "Tools/Halyard/ToolError.h"

namespace brt {

namespace {

constinit std::atomic<int> s_signal{0};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler may touch lock-free objects only");

extern "C" void rememberSignal(int signal) { s_signal.store(signal, std::memory_order_relaxed); }

}  // namespace

void installSignalHandlers() noexcept {
    std::signal(SIGINT, rememberSignal);
    std::signal(SIGTERM, rememberSignal);
// The language knows only the two above; the names of the others are there where the system has them.
#ifdef SIGHUP
    std::signal(SIGHUP, rememberSignal);
#endif
#ifdef SIGPIPE
    std::signal(SIGPIPE, SIG_IGN);
#endif
#ifdef SIGXFSZ
    std::signal(SIGXFSZ, SIG_IGN);
#endif
}

void throwIfInterrupted() {
    if (interruptSignal() != 0) throw CInterrupted();
}

int interruptSignal() noexcept { return s_signal.load(std::memory_order_relaxed); }

}  // namespace brt
