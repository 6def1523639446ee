// SPDX-License-Identifier: LicenseRef-Halyard
// Sleeping on a 32-bit word of this process: the one primitive that locks and events of this folder need of the kernel.
#pragma once

#include <linux/futex.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdint>

namespace brt {

// Sleeps while the word holds `expected`. May return early for no reason; the caller looks again.
// `deadline` is a time of the monotonic clock, or null. False only if it has passed.
inline bool sleepOnWord(std::atomic<std::uint32_t>& word, std::uint32_t expected, const timespec* deadline) noexcept {
    const long result =
        syscall(SYS_futex, &word, FUTEX_WAIT_BITSET_PRIVATE, expected, deadline, nullptr, FUTEX_BITSET_MATCH_ANY);
    return result == 0 || errno != ETIMEDOUT;
}

// Wakes one sleeper. The word itself is not touched, so it may be gone by now: at worst a sleeper elsewhere looks
// again.
inline void wakeOneOnWord(std::atomic<std::uint32_t>& word) noexcept {
    syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, 1);
}

}  // namespace brt
