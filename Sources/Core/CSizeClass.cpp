// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CSizeClass.h"

#include <cstdlib>

#include "Core/CBrtMemAllocator.h"

namespace brt {

namespace {

constexpr std::size_t kChunkSlack = 25;  // the chunk's link, the first block's class byte, and what aligning may cost
constexpr int kFirstBatch = 2;

// After these many attempts the thread that makes the chunk is taken to be stopped: a real-time thread that preempted
// it on the same processor would otherwise wait for ever.
constexpr int kMaxRefillSpins = 1000;

}  // namespace

void* CSizeClass::take() {
    FreeBlock* const chain = takeChain();
    if (chain->nextInChain != nullptr) giveChain(chain->nextInChain);
    return chain;
}

FreeBlock* CSizeClass::takeChain() {
    if (void* chain = m_freeList.pop()) return static_cast<FreeBlock*>(chain);
    return refill();
}

FreeBlock* CSizeClass::refill() {
    for (int spin = 0; spin < kMaxRefillSpins; ++spin) {
        if (m_lock.tryEnter()) {
            FreeBlock* const block = addChunk(m_batch);
            if (m_batch < m_growthLimit) m_batch = m_batch * 9 / 5;
            m_lock.leave();
            return block;
        }
        if (void* chain = m_freeList.pop()) return static_cast<FreeBlock*>(chain);
    }
    return addChunk(kFirstBatch);
}

// Returns the first block of a new chunk; the others are listed.
FreeBlock* CSizeClass::addChunk(int slots) {
    const std::size_t slotSize = static_cast<std::size_t>(m_slotSize);
    const std::size_t bytes = static_cast<std::size_t>(slots) * slotSize + kChunkSlack;
    void* const raw = std::malloc(bytes);
    if (raw == nullptr) CBrtMemAllocator::endOutOfMemory(bytes);

    Chunk* const chunk = ::new (raw) Chunk{m_chunks.load(std::memory_order_relaxed)};
    while (!m_chunks.compare_exchange_weak(chunk->next, chunk, std::memory_order_release)) {
    }
    m_slots.fetch_add(slots, std::memory_order_relaxed);

    const std::uintptr_t first = (reinterpret_cast<std::uintptr_t>(raw) + kChunkSlack) & ~std::uintptr_t{15};
    const auto blockAt = [&](int slot) {
        std::byte* const place = reinterpret_cast<std::byte*>(first + static_cast<std::size_t>(slot) * slotSize);
        place[-1] = std::byte{m_number};
        return ::new (place) FreeBlock{nullptr, nullptr};
    };
    for (int slot = slots - 1; slot > 0; --slot) giveChain(blockAt(slot));
    return blockAt(0);
}

int CSizeClass::freeCount() noexcept {
    int count = 0;
    FreeBlock* taken = nullptr;
    while (void* listed = m_freeList.pop()) {
        FreeBlock* const chain = static_cast<FreeBlock*>(listed);
        for (const FreeBlock* block = chain; block != nullptr; block = block->nextInChain) ++count;
        chain->link = taken;
        taken = chain;
    }
    while (taken != nullptr) {
        FreeBlock* const chain = taken;
        taken = static_cast<FreeBlock*>(chain->link);
        giveChain(chain);
    }
    return count;
}

void CSizeClass::freeChunks() noexcept {
    while (m_freeList.pop() != nullptr) {
    }
    Chunk* chunk = m_chunks.exchange(nullptr, std::memory_order_acquire);
    while (chunk != nullptr) {
        Chunk* next = chunk->next;
        std::free(chunk);
        chunk = next;
    }
    m_slots.store(0, std::memory_order_relaxed);
    m_batch = kFirstBatch;
}

}  // namespace brt
