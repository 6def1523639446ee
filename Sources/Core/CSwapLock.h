// SPDX-License-Identifier: LicenseRef-Halyard
// The lock under which the audio thread exchanges lists with all others: it takes what waits and hands back what it is
// done with. Under it only pointers and numbers move. Nothing is searched, allocated, freed or told, and no other lock
// is taken; builds with assertions end the program where memory is asked for or given back under it.
// Owner: whoever has the lists. Threads: any.
#pragma once

#include "Core/CBrtMemAllocator.h"
#include "Platform/CPriorityLock.h"

namespace brt {

class BRT_SCOPED_CAPABILITY CSwapLock {
public:
    explicit CSwapLock(CPriorityLock& section) noexcept BRT_ACQUIRE(section) : m_section(section) { section.enter(); }
    ~CSwapLock() BRT_RELEASE() { m_section.leave(); }
    CSwapLock(const CSwapLock&) = delete;
    CSwapLock& operator=(const CSwapLock&) = delete;

private:
    CPriorityLock& m_section;
    [[maybe_unused]] const CNoAllocationScope m_noAllocation{};
};

}  // namespace brt
