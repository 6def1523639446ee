// SPDX-License-Identifier: LicenseRef-Halyard
// Compiled with the 16-byte compare-and-swap enabled, as the only file. The __sync builtin is used because
// std::atomic of 16 bytes calls a library that takes a lock with some compilers.
#include "Platform/CLockFreeList.h"

#include "Platform/Processor.h"

#if !defined(__GCC_HAVE_SYNC_COMPARE_AND_SWAP_16)
#error "This file needs a 16-byte compare-and-swap: compile it with -mcx16"
#endif

namespace brt {

namespace {

struct Link {
    void* next;
};

using Pair [[gnu::may_alias]] = unsigned __int128;

Pair packed(const void* top, std::uint64_t changes) noexcept {
    return Pair{changes} << 64 | reinterpret_cast<std::uintptr_t>(top);
}

// The one race of the list, and a harmless one: another thread may have taken this block since the head was read, and
// write its own data here. What was read is then dropped, because the head has changed and the swap fails.
BRT_HARMLESS_RACE void* linkOf(const void* block) noexcept { return *static_cast<void* const volatile*>(block); }

}  // namespace

bool CLockFreeList::isSupported() noexcept { return processorFeatures().cmpxchg16b; }

// The halves may come from different moments; `replace` fails then. The counter is read first: if it still stands at
// the swap, nothing at all has changed since, so the top and its link were read from the very list that is replaced.
CLockFreeList::Head CLockFreeList::load(const Head& head) noexcept {
    Head seen;
    seen.changes = __atomic_load_n(&head.changes, __ATOMIC_ACQUIRE);
    seen.top = __atomic_load_n(&head.top, __ATOMIC_ACQUIRE);
    return seen;
}

bool CLockFreeList::replace(Head& head, const Head& expected, void* top) noexcept {
    return __sync_bool_compare_and_swap(reinterpret_cast<Pair*>(&head), packed(expected.top, expected.changes),
                                        packed(top, expected.changes + 1));
}

void CLockFreeList::push(void* block) noexcept { pushChain(block, block); }

void CLockFreeList::pushChain(void* first, void* last) noexcept {
    Head seen;
    do {
        seen = load(m_head);
        static_cast<Link*>(last)->next = seen.top;
    } while (!replace(m_head, seen, first));
}

void* CLockFreeList::pop() noexcept {
    for (;;) {
        const Head seen = load(m_head);
        if (seen.top == nullptr) return nullptr;
        if (replace(m_head, seen, linkOf(seen.top))) return seen.top;
    }
}

}  // namespace brt
