// SPDX-License-Identifier: LicenseRef-Halyard
// One size class of the block allocator: a lock-free list of free blocks, all of one size, that grows in chunks.
//
// What the list holds are chains of blocks, so that a thread hands over many in one step; a block freed by itself is a
// chain of one.
//
// A chunk is one allocation of the system's heap: 8 bytes of link, then slots. A slot is a block and the 16 bytes up to
// the next, the last of which is the byte that tells the next block's class. Chunks go back to the system only in
// `freeChunks`, so the memory of a block stays readable while the class is in use, as the list requires.
//
// Owner: the allocator holds one per class for ever. Constant initialised, trivially destroyed. Threads: any.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <new>

#include "Platform/Annotations.h"
#include "Platform/CCriticalSection.h"
#include "Platform/CLockFreeList.h"

namespace brt {

// A block while it is free.
struct FreeBlock {
    void* link;              // the list's
    FreeBlock* nextInChain;  // null at the end
};

// A cache line of its own: threads that work on neighbouring classes don't meet.
class alignas(64) CSizeClass {
public:
    // `number`: 0 to 254; its blocks hold (number + 1) * 16 bytes.
    explicit constexpr CSizeClass(int number) noexcept
        : m_growthLimit(slotSizeOf(number) < 2048 ? 128 : 64),
          m_slotSize(slotSizeOf(number)),
          m_number(static_cast<std::uint8_t>(number)) {}
    CSizeClass(const CSizeClass&) = delete;
    CSizeClass& operator=(const CSizeClass&) = delete;

    // [any] A block; makes a chunk if none is free. Real-time safe but for that chunk. Never sleeps: while another
    // thread makes the chunk it spins, for a bounded time, since that thread may have been preempted by this one.
    [[nodiscard]] void* take();

    // [any] The same, together with all others of its chain.
    [[nodiscard]] FreeBlock* takeChain();

    // [any] Lists a chain of blocks as free.
    void giveChain(FreeBlock* chain) noexcept BRT_REALTIME { m_freeList.push(chain); }

    // [any] Lists a block as free.
    void give(void* block) noexcept BRT_REALTIME { giveChain(::new (block) FreeBlock{nullptr, nullptr}); }

    // [any] Blocks of all chunks, and those of them that are in the list. The latter empties and refills the list, so
    // that other threads may meanwhile make a chunk that they would not have needed.
    int slotCount() const noexcept { return m_slots.load(std::memory_order_relaxed); }
    int freeCount() noexcept;

    // Gives all chunks back to the system and starts afresh. REQUIRES: no other thread uses the class.
    void freeChunks() noexcept BRT_NO_THREAD_SAFETY_ANALYSIS;

    // [any] Bytes from a block to the next of its chunk.
    int slotSize() const noexcept { return m_slotSize; }

    // Held by the thread that makes a chunk. For tests, which stop such a thread at its worst moment.
    CCriticalSection& refillLock() noexcept BRT_RETURN_CAPABILITY(m_lock) { return m_lock; }

private:
    struct Chunk {
        Chunk* next;
    };

    static constexpr int slotSizeOf(int number) noexcept { return ((number + 1) * 16 + 16) / 16 * 16; }

    FreeBlock* refill();
    FreeBlock* addChunk(int slots);

    CCriticalSection m_lock{50};
    const int m_growthLimit;
    const int m_slotSize;
    const std::uint8_t m_number;
    CLockFreeList m_freeList;
    int m_batch BRT_GUARDED_BY(m_lock) = 2;  // slots of the next chunk
    std::atomic<Chunk*> m_chunks{nullptr};
    std::atomic<int> m_slots{0};
};

}  // namespace brt
