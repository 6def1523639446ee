// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/CCriticalSection.h"

#include "Platform/CNativeThread.h"
#include "Platform/Posix/Futex_p.h"
#include "Platform/Posix/Processor_p.h"

namespace brt {

namespace {

// A holder that leaves asks the kernel to wake somebody only where the word says that somebody may sleep.
constexpr std::uint32_t kFree = 0;
constexpr std::uint32_t kHeld = 1;
constexpr std::uint32_t kHeldWithSleepers = 2;

}  // namespace

bool CCriticalSection::takeIfFree() noexcept {
    std::uint32_t expected = kFree;
    return m_state.compare_exchange_strong(expected, kHeld, std::memory_order_acquire, std::memory_order_relaxed);
}

void CCriticalSection::takeContended() noexcept {
    for (int spin = 0; spin < m_spinCount; ++spin) {
        pauseProcessor();
        if (m_state.load(std::memory_order_relaxed) == kFree && takeIfFree()) return;
    }
    // Others may sleep beside this thread: it can't tell, so it holds the lock as one with sleepers from here on.
    while (m_state.exchange(kHeldWithSleepers, std::memory_order_acquire) != kFree)
        sleepOnWord(m_state, kHeldWithSleepers, nullptr);
}

// The analysis can't see that the three operations below are what acquires and releases.
void CCriticalSection::enter() noexcept BRT_NO_THREAD_SAFETY_ANALYSIS {
    const std::uint32_t self = currentThreadId();
    // Only the thread itself ever stores its own id, so a match is no guess.
    if (m_ownerThread.load(std::memory_order_relaxed) == self) {
        ++m_recursions;
        return;
    }
    if (!takeIfFree()) takeContended();
    m_ownerThread.store(self, std::memory_order_relaxed);
}

bool CCriticalSection::tryEnter() noexcept BRT_NO_THREAD_SAFETY_ANALYSIS {
    const std::uint32_t self = currentThreadId();
    if (m_ownerThread.load(std::memory_order_relaxed) == self) {
        ++m_recursions;
        return true;
    }
    if (!takeIfFree()) return false;
    m_ownerThread.store(self, std::memory_order_relaxed);
    return true;
}

void CCriticalSection::leave() noexcept BRT_NO_THREAD_SAFETY_ANALYSIS {
    BRT_ASSERT(m_ownerThread.load(std::memory_order_relaxed) == currentThreadId());
    if (m_recursions > 0) {
        --m_recursions;
        return;
    }
    m_ownerThread.store(0, std::memory_order_relaxed);
    if (m_state.exchange(kFree, std::memory_order_release) == kHeldWithSleepers) wakeOneOnWord(m_state);
}

}  // namespace brt
