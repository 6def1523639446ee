// SPDX-License-Identifier: LicenseRef-Halyard
// A last-in first-out list of free blocks that any number of threads push and pop without a lock.
//
// The first 8 bytes of a listed block are its link; the list touches no other byte and owns no block. Its head is the
// top block together with a counter of changes, swapped as one unit of 16 bytes, so a block that was popped and pushed
// again in the meantime is never mistaken for an unchanged top (the ABA problem).
//
// REQUIRES: the memory of a block that was ever pushed stays readable while the list is in use, since a thread may
// still read the link of a block that another one has just taken. It drops what it read in that case.
// Constant initialised and trivially destroyed. Threads: any. Real-time safe: no system call, no wait.
#pragma once

#include <cstdint>

#include "Platform/Annotations.h"

namespace brt {

class alignas(16) CLockFreeList {
public:
    constexpr CLockFreeList() noexcept = default;
    CLockFreeList(const CLockFreeList&) = delete;
    CLockFreeList& operator=(const CLockFreeList&) = delete;

    // [any] REQUIRES: `block` is not null, aligned to 8, and in no list.
    void push(void* block) noexcept BRT_REALTIME;

    // [any] Pushes a chain in one step: each block's first 8 bytes point to the next, those of `last` are overwritten.
    // Afterwards `first` is on top.
    void pushChain(void* first, void* last) noexcept BRT_REALTIME;

    // [any] The block pushed last, or null if the list is empty.
    [[nodiscard]] void* pop() noexcept BRT_REALTIME;

    // [any] True if this processor can swap 16 bytes at once. Where it can't, no other operation may be called.
    [[nodiscard]] static bool isSupported() noexcept;

private:
    struct Head {
        void* top = nullptr;
        std::uint64_t changes = 0;
    };

    static Head load(const Head& head) noexcept;
    static bool replace(Head& head, const Head& expected, void* top) noexcept;

    alignas(16) Head m_head;
};

}  // namespace brt
