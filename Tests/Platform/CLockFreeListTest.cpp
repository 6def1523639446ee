// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/CLockFreeList.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

namespace brt {
namespace {

struct alignas(16) Block {
    unsigned char bytes[32] = {};
    std::atomic<bool> isTaken{false};
};

TEST(CLockFreeList, givesBackTheLastBlockFirst) {
    CLockFreeList list;
    Block blocks[3];
    EXPECT_EQ(list.pop(), nullptr);
    for (Block& block : blocks) list.push(&block);
    for (int i = 2; i >= 0; --i) EXPECT_EQ(list.pop(), &blocks[i]);
    EXPECT_EQ(list.pop(), nullptr);
}

TEST(CLockFreeList, pushesAChainOntoWhatStands) {
    CLockFreeList list;
    Block blocks[4];
    list.push(&blocks[3]);
    for (int i = 0; i < 2; ++i) {
        void* next = &blocks[i + 1];
        std::memcpy(blocks[i].bytes, &next, sizeof next);
    }
    list.pushChain(&blocks[0], &blocks[2]);
    for (Block& block : blocks) EXPECT_EQ(list.pop(), &block);
    EXPECT_EQ(list.pop(), nullptr);
}

TEST(CLockFreeList, touchesOnlyTheLink) {
    CLockFreeList list;
    Block block;
    std::memset(block.bytes, 0xA5, sizeof block.bytes);
    list.push(&block);
    ASSERT_EQ(list.pop(), &block);
    for (std::size_t i = sizeof(void*); i < sizeof block.bytes; ++i) EXPECT_EQ(block.bytes[i], 0xA5);
}

// Few blocks and many threads, each of which holds two at a time and gives them back in the other order: the top is
// popped and pushed again between another thread's look and its swap all the time. Taken blocks are overwritten whole.
TEST(CLockFreeList, neverGivesABlockToTwoThreads) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 30000;
    CLockFreeList list;
    Block blocks[5];
    for (Block& block : blocks) list.push(&block);

    std::atomic<int> faults{0};
    const auto take = [&](unsigned char mark) {
        auto* block = static_cast<Block*>(list.pop());
        if (block == nullptr) return block;
        if (block->isTaken.exchange(true)) ++faults;
        std::memset(block->bytes, mark, sizeof block->bytes);
        return block;
    };
    const auto giveBack = [&](Block* block, unsigned char mark) {
        if (block == nullptr) return;
        for (unsigned char byte : block->bytes)
            if (byte != mark) ++faults;
        if (!block->isTaken.exchange(false)) ++faults;
        list.push(block);
    };
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, mark = static_cast<unsigned char>(0xF0 + t)] {
            for (int i = 0; i < kRounds; ++i) {
                Block* const first = take(mark);
                Block* const second = take(mark);
                if (i % 64 == 0) std::this_thread::yield();
                giveBack(first, mark);
                giveBack(second, mark);
            }
        });
    for (std::thread& thread : threads) thread.join();

    EXPECT_EQ(faults, 0);
    int left = 0;
    while (list.pop() != nullptr) ++left;
    EXPECT_EQ(left, 5);
}

}  // namespace
}  // namespace brt
