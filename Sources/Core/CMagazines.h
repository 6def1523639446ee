// SPDX-License-Identifier: LicenseRef-Halyard
// A few free blocks of every size class for one thread alone, in front of the lists that all threads share. What a
// thread frees it soon wants again, and this way it has it without an atomic step or a cache line of another processor.
//
// Owner: the allocator holds a fixed number of sets for ever. A thread adopts one at its first request; threads beyond
// that number use the shared lists alone. Nothing runs at the end of a thread (its set is found again by the next
// thread whose thread-local data lies at the same address, as systems arrange when they reuse the stack), so a set
// holds few blocks. Constant initialised, trivially destroyed.
//
// Threads: the owner, where no other is told.
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>

#include "Core/CBrtMemAllocator.h"
#include "Core/CSizeClass.h"

namespace brt {

class alignas(64) CMagazines {
public:
    constexpr CMagazines() noexcept = default;
    CMagazines(const CMagazines&) = delete;
    CMagazines& operator=(const CMagazines&) = delete;

    // [any] Claims the set for the thread that `owner` stands for: true if it is that thread's now.
    bool claim(const void* owner) noexcept;

    // The block that was kept last; null if none is held.
    [[nodiscard]] void* take(int classNumber) noexcept BRT_REALTIME {
        CMagazine& magazine = m_magazines[classNumber];
        FreeBlock* const block = magazine.top;
        if (block != nullptr) {
            magazine.top = block->nextInChain;
            magazine.setCount(magazine.getCount() - 1);
        }
        return block;
    }

    // False if no more can be held; then nothing was done.
    [[nodiscard]] bool keep(int classNumber, void* block) noexcept BRT_REALTIME {
        CMagazine& magazine = m_magazines[classNumber];
        if (magazine.getCount() >= kCapacities[static_cast<std::size_t>(classNumber)]) return false;
        FreeBlock* const kept = static_cast<FreeBlock*>(block);
        kept->nextInChain = magazine.top;
        magazine.top = kept;
        magazine.setCount(magazine.getCount() + 1);
        return true;
    }

    // Takes a chain of free blocks from the shared list, or a new block; returns one and holds the rest.
    // REQUIRES: none is held.
    [[nodiscard]] void* reload(int classNumber, CSizeClass& shared);

    // Hands all blocks that are held to the shared list.
    void unload(int classNumber, CSizeClass& shared) noexcept;

    // [any] Blocks held.
    int blockCount(int classNumber) const noexcept { return m_magazines[classNumber].getCount(); }

    // Forgets all blocks. REQUIRES: no other thread uses the allocator.
    void forget() noexcept;

private:
    struct CMagazine {
        FreeBlock* top = nullptr;
        std::atomic<int> count{0};  // written by the owner alone, read by any

        int getCount() const noexcept { return count.load(std::memory_order_relaxed); }
        void setCount(int value) noexcept { count.store(value, std::memory_order_relaxed); }
    };

    using Capacities = std::array<std::uint8_t, CBrtMemAllocator::kClassCount>;

    // Up to 16 blocks, fewer where they are large: what a thread that has ended holds back stays small.
    static constexpr Capacities kCapacities = [] {
        Capacities capacities{};
        for (std::size_t number = 0; number < capacities.size(); ++number)
            capacities[number] = static_cast<std::uint8_t>(std::clamp<std::size_t>(128 / (number + 1), 1, 16));
        return capacities;
    }();

    CMagazine m_magazines[CBrtMemAllocator::kClassCount];
    std::atomic<const void*> m_owner{nullptr};
};

}  // namespace brt
