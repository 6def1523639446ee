// SPDX-License-Identifier: LicenseRef-Halyard
// The process-wide block allocator, and the base class of every object that lives in its blocks.
//
// Requests of up to 4,080 bytes are rounded up to one of 255 size classes of 16-byte steps and served from lists of
// free blocks: no lock, no system call, no search. Larger ones come from the system's heap. All blocks are aligned
// to 16. The byte in front of a block tells what it is, so `free` needs no size:
//
//     block - 10   offset from the raw allocation to here       big blocks only
//     block -  9   size of the request, 8 bytes, unaligned      big blocks only
//     block -  1   size class 0 to 254, or 255: a big block
//     block        the user's bytes; while the block is free, the link of the list and that of its chain
//
// Each thread keeps a few blocks that it has freed for its own next requests (CMagazines.h); all others are shared by
// all threads (CSizeClass.h). Builds with AddressSanitizer or ThreadSanitizer take every block from the system's heap,
// under the same header, so that the sanitizers see each one.
//
// Threads: any. Usable before the first static constructor and after the last destructor. Only `tryAlloc` and
// `zlibAlloc` can fail: elsewhere the process ends, with one line on standard error, if the system refuses memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

#include "Platform/Annotations.h"

namespace brt {

class CBrtMemAllocator {
public:
    static constexpr int kClassCount = 255;
    static constexpr int kBigBlock = 255;  // in place of a class number
    static constexpr std::size_t kLargestSmallRequest = 4080;

    // [any] A block of at least `size` bytes, not initialised; 0 is served like 1.
    [[nodiscard, gnu::malloc, gnu::returns_nonnull, gnu::alloc_size(1)]] static void* alloc(std::size_t size);

    // [any] The same, but null where the system refuses a request above 4,080 bytes: for sizes that come from data.
    [[nodiscard, gnu::malloc, gnu::alloc_size(1)]] static void* tryAlloc(std::size_t size);

    // [any] Takes a block back. Null is ignored.
    static void free(void* block) noexcept;

    // [any] A new block of `size` bytes that starts with the bytes of the old one, which is freed: the result always
    // lies elsewhere. A null block means `alloc`.
    [[nodiscard, gnu::returns_nonnull, gnu::alloc_size(2)]] static void* realloc(void* block, std::size_t size);

    // [any] `tryAlloc` and `free` in the form that zlib calls. `opaque` is ignored.
    static void* zlibAlloc(void* opaque, unsigned items, unsigned size);
    static void zlibFree(void* opaque, void* block) noexcept;

    // [any] Ends the process with one line on standard error: `size` bytes could not be had.
    [[noreturn]] static void endOutOfMemory(std::size_t size) noexcept;

    // [any] The class that serves a request, or `kBigBlock`.
    static constexpr int classOf(std::size_t size) noexcept {
        if (size > kLargestSmallRequest) return kBigBlock;
        return size == 0 ? 0 : static_cast<int>((size - 1) / 16);
    }

    // [any] Blocks of a class (or `kBigBlock`) that somebody holds. Exact while no other thread allocates or frees.
    static std::int64_t liveBlocks(int classNumber) noexcept;
    static std::int64_t liveBlocks() noexcept;

    // The end of the process, or of the module in a host that unloads it: gives all chunks back to the system. Small
    // blocks that somebody still holds die with them. The allocator starts afresh if it is used again.
    // REQUIRES: no other thread uses the allocator.
    static void teardown() noexcept;

    static void* operator new(std::size_t size) { return alloc(size); }
    static void* operator new[](std::size_t size) { return alloc(size); }
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* block) noexcept { free(block); }
    static void operator delete[](void* block) noexcept { free(block); }
    static void operator delete(void*, void*) noexcept {}

    // Blocks are aligned to 16 and no further: a class that needs more holds its data in aligned storage of its own.
    static void* operator new(std::size_t, std::align_val_t) = delete;
    static void* operator new[](std::size_t, std::align_val_t) = delete;
    static void operator delete(void*, std::align_val_t) = delete;
    static void operator delete[](void*, std::align_val_t) = delete;

protected:
    CBrtMemAllocator() = default;
    ~CBrtMemAllocator() = default;
    CBrtMemAllocator(const CBrtMemAllocator&) = default;
    CBrtMemAllocator& operator=(const CBrtMemAllocator&) = default;
};

// While one lives on a thread, that thread may neither allocate nor free: builds with assertions trap there.
class CNoAllocationScope {
public:
#if defined(NDEBUG)
    CNoAllocationScope() noexcept {}
#else
    CNoAllocationScope() noexcept { ++t_depth; }
    ~CNoAllocationScope() { --t_depth; }
    static bool isActive() noexcept { return t_depth > 0; }
#endif
    CNoAllocationScope(const CNoAllocationScope&) = delete;
    CNoAllocationScope& operator=(const CNoAllocationScope&) = delete;

private:
#if !defined(NDEBUG)
    static constinit thread_local int t_depth;
#endif
};

}  // namespace brt
