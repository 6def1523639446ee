// SPDX-License-Identifier: LicenseRef-Halyard
// The lists under the allocator, as objects of their own: builds with a sanitizer go past them in the allocator itself.
#include "Core/CSizeClass.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <random>
#include <set>
#include <thread>
#include <vector>

#include "Core/CMagazines.h"

namespace brt {
namespace {

// The class of requests of 64 bytes, given back to the system with the test.
class CSizeClassTest : public testing::Test {
protected:
    static constexpr int kNumber = 3;

    ~CSizeClassTest() override { m_class.freeChunks(); }

    CSizeClass m_class{kNumber};
};

std::vector<int> batchesOf(CSizeClass& sizeClass, int refills) {
    std::vector<int> batches;
    for (int slots = 0; static_cast<int>(batches.size()) < refills;) {
        static_cast<void>(sizeClass.take());
        if (sizeClass.slotCount() == slots) continue;
        batches.push_back(sizeClass.slotCount() - slots);
        slots = sizeClass.slotCount();
    }
    return batches;
}

TEST_F(CSizeClassTest, growsInBatchesUpToItsLimit) {
    EXPECT_EQ(batchesOf(m_class, 10), (std::vector{2, 3, 5, 9, 16, 28, 50, 90, 162, 162}));
    m_class.freeChunks();
    EXPECT_EQ(batchesOf(m_class, 3), (std::vector{2, 3, 5}));

    for (const auto& [number, slotSize, batch] : {std::tuple{125, 2032, 162}, {126, 2048, 90}, {254, 4096, 90}}) {
        CSizeClass large(number);
        EXPECT_EQ(large.slotSize(), slotSize);
        EXPECT_EQ(batchesOf(large, 9).back(), batch);
        large.freeChunks();
    }
}

TEST_F(CSizeClassTest, blocksOfAChunkStandInSteps) {
    std::vector<std::byte*> blocks;
    for (int i = 0; i < 2 + 3 + 5; ++i) blocks.push_back(static_cast<std::byte*>(m_class.take()));
    EXPECT_EQ(m_class.slotSize(), 80);
    EXPECT_EQ(blocks[1] - blocks[0], 80);
    EXPECT_EQ(blocks[9] - blocks[5], 4 * 80);
    for (std::byte* block : blocks) {
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 16, 0u);
        std::memset(block, 0xEE, 64);  // the last block's end is the chunk's: ASan looks at it
    }
    for (const std::byte* block : blocks) EXPECT_EQ(block[-1], std::byte{kNumber});
}

TEST_F(CSizeClassTest, givesAndTakesWholeChains) {
    FreeBlock* chain = nullptr;
    std::set<void*> blocks;
    for (int i = 0; i < 5; ++i) {
        auto* block = static_cast<FreeBlock*>(m_class.take());
        block->nextInChain = chain;
        chain = block;
        blocks.insert(block);
    }
    m_class.giveChain(chain);
    EXPECT_EQ(m_class.freeCount(), 5);
    EXPECT_EQ(m_class.take(), chain);  // and the rest of the chain stays listed
    EXPECT_EQ(m_class.freeCount(), 4);
    blocks.erase(chain);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(blocks.erase(m_class.take()), 1u);
    EXPECT_EQ(m_class.freeCount(), 0);
    EXPECT_EQ(m_class.slotCount(), 5);
}

// As if a real-time thread had preempted, on the same processor, the thread that makes the chunk.
TEST_F(CSizeClassTest, doesNotWaitForAThreadThatIsStopped) {
    std::atomic<int> step{0};
    std::thread stopped([&] {
        const CLock lock(m_class.refillLock());
        step = 1;
        while (step != 2) std::this_thread::yield();
    });
    while (step != 1) std::this_thread::yield();
    void* first = m_class.take();
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(m_class.slotCount(), 2);
    EXPECT_NE(m_class.take(), first);  // the second slot of that chunk
    EXPECT_EQ(m_class.slotCount(), 2);
    m_class.give(first);
    EXPECT_EQ(m_class.take(), first);
    step = 2;
    stopped.join();
}

TEST_F(CSizeClassTest, threadsThatEmptyItGetDistinctBlocks) {
    constexpr int kRounds = 100, kBlocks = 64;
    std::atomic<int> damaged{0};
    const auto work = [&](unsigned char mark) {
        std::vector<unsigned char*> blocks(kBlocks);
        for (int round = 0; round < kRounds; ++round) {
            for (auto& block : blocks) {
                block = static_cast<unsigned char*>(m_class.take());
                std::memset(block, mark, 64);
            }
            for (auto* block : blocks) {
                for (int i = 0; i < 64; ++i) damaged += block[i] != mark;
                m_class.give(block);
            }
        }
    };
    std::thread other(work, static_cast<unsigned char>(1));
    work(2);
    other.join();
    EXPECT_EQ(damaged, 0);
    EXPECT_EQ(m_class.freeCount(), m_class.slotCount());
}

TEST_F(CSizeClassTest, magazinesKeepAFewBlocksForTheirThread) {
    CMagazines mine;
    std::vector<void*> blocks;
    for (int i = 0; i < 40; ++i) blocks.push_back(m_class.take());
    const int listed = m_class.freeCount();
    EXPECT_EQ(mine.take(kNumber), nullptr);
    int kept = 0;
    while (mine.keep(kNumber, blocks[static_cast<std::size_t>(kept)])) ++kept;
    EXPECT_EQ(kept, 16);
    EXPECT_EQ(mine.take(kNumber), blocks[15]);
    EXPECT_EQ(mine.blockCount(kNumber), 15);
    EXPECT_EQ(mine.blockCount(kNumber + 1), 0);

    mine.unload(kNumber, m_class);
    EXPECT_EQ(mine.blockCount(kNumber), 0);
    EXPECT_EQ(m_class.freeCount(), listed + 15);
    EXPECT_EQ(mine.reload(kNumber, m_class), blocks[14]);  // all of them come back in one step
    EXPECT_EQ(mine.blockCount(kNumber), 14);
}

TEST_F(CSizeClassTest, magazinesAreFoundAgainByTheirOwnerAlone) {
    CMagazines set;
    const int owner = 0, other = 0;
    EXPECT_TRUE(set.claim(&owner));
    EXPECT_FALSE(set.claim(&other));
    EXPECT_TRUE(set.claim(&owner));
}

TEST_F(CSizeClassTest, threadsWithMagazinesExchangeBlocks) {
    constexpr int kRounds = 30'000;
    std::array<std::atomic<unsigned char*>, 48> table{};
    CMagazines magazines[2];
    std::atomic<int> damaged{0};
    const auto work = [&](CMagazines& mine, unsigned seed) {
        std::minstd_rand random(seed);
        for (int i = 0; i < kRounds; ++i) {
            void* block = mine.take(kNumber);
            if (block == nullptr) block = mine.reload(kNumber, m_class);
            auto* fresh = static_cast<unsigned char*>(block);
            std::memset(fresh, static_cast<int>(seed), 64);
            unsigned char* old = table[random() % table.size()].exchange(fresh);
            if (old == nullptr) continue;
            for (int byte = 1; byte < 64; ++byte) damaged += old[byte] != old[0];
            if (mine.keep(kNumber, old)) continue;
            mine.unload(kNumber, m_class);
            ASSERT_TRUE(mine.keep(kNumber, old));
        }
    };
    std::thread other([&] { work(magazines[0], 1); });
    work(magazines[1], 2);
    other.join();
    for (auto& slot : table) m_class.give(slot.load());
    EXPECT_EQ(damaged, 0);
    EXPECT_EQ(m_class.freeCount() + magazines[0].blockCount(kNumber) + magazines[1].blockCount(kNumber),
              m_class.slotCount());
}

}  // namespace
}  // namespace brt
