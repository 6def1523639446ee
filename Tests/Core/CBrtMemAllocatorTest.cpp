// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CBrtMemAllocator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <new>
#include <random>
#include <thread>
#include <type_traits>
#include <vector>

#include "Core/HeapBlock_p.h"

namespace brt {
namespace {

int classByte(const void* block) { return static_cast<const unsigned char*>(block)[-1]; }

bool isAligned(const void* block) { return reinterpret_cast<std::uintptr_t>(block) % 16 == 0; }

TEST(CBrtMemAllocator, tellsTheClassInFrontOfTheBlock) {
    const struct {
        std::size_t size;
        int classNumber;
    } cases[] = {{0, 0}, {1, 0}, {16, 0}, {17, 1}, {4080, 254}, {4081, 255}, {1 << 20, 255}};
    for (const auto& [size, classNumber] : cases) {
        void* block = CBrtMemAllocator::alloc(size);
        EXPECT_EQ(classByte(block), classNumber) << size;
        EXPECT_TRUE(isAligned(block)) << size;
        std::memset(block, 0xAA, size);
        EXPECT_EQ(classByte(block), classNumber) << size;
        CBrtMemAllocator::free(block);
    }
    CBrtMemAllocator::free(nullptr);
}

TEST(CBrtMemAllocator, reallocMovesAndKeepsTheLesserSize) {
    for (const auto& [before, after] : {std::pair<std::size_t, std::size_t>{100, 50},
                                        {50, 100},
                                        {100, 100},
                                        {4000, 9000},
                                        {9000, 4000},
                                        {9000, 20000}}) {
        auto* old = static_cast<unsigned char*>(CBrtMemAllocator::alloc(before));
        for (std::size_t i = 0; i < before; ++i) old[i] = static_cast<unsigned char>(i * 7);
        const auto address = reinterpret_cast<std::uintptr_t>(old);
        auto* moved = static_cast<unsigned char*>(CBrtMemAllocator::realloc(old, after));
        EXPECT_NE(reinterpret_cast<std::uintptr_t>(moved), address);
        for (std::size_t i = 0; i < std::min(before, after); ++i) {
            ASSERT_EQ(moved[i], static_cast<unsigned char>(i * 7)) << before << " " << after;
        }
        CBrtMemAllocator::free(moved);
    }
    void* block = CBrtMemAllocator::realloc(nullptr, 40);
    EXPECT_EQ(classByte(block), 2);
    CBrtMemAllocator::free(block);
}

TEST(CBrtMemAllocator, findsTheRawAllocationOfABigBlock) {
    alignas(16) std::array<unsigned char, 16 + kHeapBlockSlack + 5000> room;
    for (std::size_t alignment = 0; alignment < 16; ++alignment) {
        void* const raw = room.data() + alignment;
        void* const block = makeHeapBlock(raw, kHeapBlockSlack, 5000, 255);
        EXPECT_TRUE(isAligned(block));
        EXPECT_EQ(rawOfHeapBlock(block), raw);
        EXPECT_EQ(sizeOfHeapBlock(block), 5000u);
        EXPECT_EQ(classByte(block), 255);
        EXPECT_LE(static_cast<unsigned char*>(block) + 5000, room.data() + alignment + kHeapBlockSlack + 5000);
        EXPECT_GE(static_cast<unsigned char*>(block) - 10, raw);
    }
}

TEST(CBrtMemAllocator, countsLiveBlocksByClass) {
    const std::int64_t small = CBrtMemAllocator::liveBlocks(7), big = CBrtMemAllocator::liveBlocks(255),
                       all = CBrtMemAllocator::liveBlocks();
    std::vector<void*> blocks;
    for (int i = 0; i < 100; ++i) blocks.push_back(CBrtMemAllocator::alloc(128));
    blocks.push_back(CBrtMemAllocator::alloc(5000));
    EXPECT_EQ(CBrtMemAllocator::liveBlocks(7) - small, 100);
    EXPECT_EQ(CBrtMemAllocator::liveBlocks(255) - big, 1);
    EXPECT_EQ(CBrtMemAllocator::liveBlocks() - all, 101);
    // Freed elsewhere, so that the blocks rest with another thread.
    std::thread([&] {
        for (void* block : blocks) CBrtMemAllocator::free(block);
    }).join();
    EXPECT_EQ(CBrtMemAllocator::liveBlocks(), all);
}

TEST(CBrtMemAllocator, servesZlib) {
    void* block = CBrtMemAllocator::zlibAlloc(nullptr, 100, 30);
    EXPECT_EQ(classByte(block), (3000 - 1) / 16);
    CBrtMemAllocator::zlibFree(nullptr, block);
    CBrtMemAllocator::zlibFree(nullptr, nullptr);
}

// A thread that ends leaves blocks behind for one that comes after it, and each counts only once.
TEST(CBrtMemAllocator, shortLivedThreadsLoseNoBlocks) {
    const std::int64_t before = CBrtMemAllocator::liveBlocks();
    std::vector<void*> kept;
    for (int i = 0; i < 40; ++i) {
        std::thread([&] {
            void* blocks[20];
            for (void*& block : blocks) block = CBrtMemAllocator::alloc(64);
            kept.push_back(blocks[0]);
            for (int k = 1; k < 20; ++k) CBrtMemAllocator::free(blocks[k]);
        }).join();
    }
    EXPECT_EQ(CBrtMemAllocator::liveBlocks(), before + 40);
    for (void* block : kept) CBrtMemAllocator::free(block);
    EXPECT_EQ(CBrtMemAllocator::liveBlocks(), before);
}

// More threads at once than the allocator has sets of magazines.
TEST(CBrtMemAllocator, servesManyThreadsAtOnce) {
    const std::int64_t before = CBrtMemAllocator::liveBlocks();
    std::vector<std::thread> threads;
    for (int t = 0; t < 24; ++t) {
        threads.emplace_back([] {
            std::vector<void*> blocks;
            for (int i = 0; i < 500; ++i) blocks.push_back(CBrtMemAllocator::alloc(48));
            for (void* block : blocks) CBrtMemAllocator::free(block);
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(CBrtMemAllocator::liveBlocks(), before);
}

TEST(CBrtMemAllocatorDeathTest, aRefusedRequestEndsTheProcessWithOneLine) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    volatile std::size_t size = SIZE_MAX - 3;
    EXPECT_DEATH(static_cast<void>(CBrtMemAllocator::alloc(size)),
                 "^Out of memory: the system refused [0-9]+ bytes.\n$");
}

struct CPlain : CBrtMemAllocator {
    char data[24];
};

template <class T>
concept CanNewAligned = requires {
    T::operator new (std::size_t{64}, std::align_val_t{64});
};

TEST(CBrtMemAllocator, makesObjectsInItsBlocks) {
    CPlain* one = new CPlain;
    EXPECT_EQ(classByte(one), 1);
    delete one;
    alignas(CPlain) std::byte place[sizeof(CPlain)];
    EXPECT_EQ(static_cast<void*>(new (place) CPlain), place);
    EXPECT_FALSE(CanNewAligned<CPlain>);  // no object is made that would not be aligned as its class says
}

// Blocks wander between threads: each slot of a shared table is exchanged for a new block, whose bytes must be as the
// thread that filled it left them.
TEST(CBrtMemAllocator, threadsExchangeBlocks) {
    constexpr int kRounds = 40'000;
    const std::int64_t before = CBrtMemAllocator::liveBlocks();
    std::array<std::atomic<unsigned char*>, 64> table{};
    std::atomic<int> damaged{0};
    const auto isIntact = [](const unsigned char* block) {
        return std::all_of(block + 1, block + 64, [&](unsigned char byte) { return byte == block[0]; });
    };
    const auto work = [&](unsigned seed) {
        std::minstd_rand random(seed);
        for (int i = 0; i < kRounds; ++i) {
            auto* fresh = static_cast<unsigned char*>(CBrtMemAllocator::alloc(64));
            std::memset(fresh, static_cast<int>(random() & 0xFF), 64);
            unsigned char* old = table[random() % table.size()].exchange(fresh);
            if (old == nullptr) continue;
            if (!isIntact(old)) ++damaged;
            CBrtMemAllocator::free(old);
        }
    };
    std::thread other(work, 1);
    work(2);
    other.join();
    for (auto& slot : table) CBrtMemAllocator::free(slot.load());
    EXPECT_EQ(damaged, 0);
    EXPECT_EQ(CBrtMemAllocator::liveBlocks(), before);
}

}  // namespace
}  // namespace brt
