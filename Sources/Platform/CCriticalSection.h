// SPDX-License-Identifier: LicenseRef-Halyard
// A recursive lock that spins before it sleeps.
// Constant initialised and trivially destroyed: a static one works before the first static constructor and after the
// last destructor, and needs no order. It must not be destroyed while anybody holds it or waits for it.
// Threads: any. Entering a free lock, and leaving one that nobody waits for, makes no system call.
#pragma once

#include <atomic>
#include <cstdint>

#include "Platform/Annotations.h"

namespace brt {

class BRT_CAPABILITY("lock") CCriticalSection {
public:
    // `spinCount`: attempts before the thread sleeps; 500 as a rule, 50 where the lock guards a few instructions.
    explicit constexpr CCriticalSection(int spinCount = 500) noexcept : m_spinCount(spinCount) {}
    CCriticalSection(const CCriticalSection&) = delete;
    CCriticalSection& operator=(const CCriticalSection&) = delete;

    // [any] Waits without a limit. A thread may enter again what it holds; it leaves as often as it entered.
    void enter() noexcept BRT_ACQUIRE();

    // [any] True if the calling thread holds the lock now. Never waits.
    [[nodiscard]] bool tryEnter() noexcept BRT_TRY_ACQUIRE(true);

    // [any] REQUIRES: the calling thread holds the lock.
    void leave() noexcept BRT_RELEASE();

private:
    bool takeIfFree() noexcept;
    void takeContended() noexcept;

    std::atomic<std::uint32_t> m_state{0};        // free, held, or held with sleepers: see the .cpp
    std::atomic<std::uint32_t> m_ownerThread{0};  // id of the holder, 0 for none
    int m_recursions = 0;                         // entries of the holder beyond its first; the holder's alone
    const int m_spinCount;
};

// Holds a lock for the life of a scope.
class BRT_SCOPED_CAPABILITY CLock {
public:
    explicit CLock(CCriticalSection& section) noexcept BRT_ACQUIRE(section) : m_section(section) { section.enter(); }
    ~CLock() BRT_RELEASE() { m_section.leave(); }
    CLock(const CLock&) = delete;
    CLock& operator=(const CLock&) = delete;

private:
    CCriticalSection& m_section;
};

}  // namespace brt
