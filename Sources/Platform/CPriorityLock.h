// SPDX-License-Identifier: LicenseRef-Halyard
// A lock between a thread with a deadline and threads without one: while the former waits, the holder runs with its
// priority, so that nothing of a priority between them can hold both up. Not recursive. What it guards takes a few
// instructions. Threads: any. Entering a free lock, and leaving one that nobody waits for, makes no system call.
#pragma once

#include <cstddef>

#include "Platform/Annotations.h"

namespace brt {

class BRT_CAPABILITY("lock") CPriorityLock {
public:
    CPriorityLock() noexcept;
    // REQUIRES: free.
    ~CPriorityLock();
    CPriorityLock(const CPriorityLock&) = delete;
    CPriorityLock& operator=(const CPriorityLock&) = delete;

    // [any] REQUIRES: the thread does not hold it.
    void enter() noexcept BRT_ACQUIRE();
    // [any] REQUIRES: the thread holds it.
    void leave() noexcept BRT_RELEASE();

private:
    alignas(16) std::byte m_native[64];
};

}  // namespace brt
