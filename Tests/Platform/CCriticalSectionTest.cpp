// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/CCriticalSection.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace brt {
namespace {

constinit CCriticalSection g_needsNoConstructor{50};

bool othersCanEnter(CCriticalSection& section) {
    bool entered = false;
    std::thread([&] {
        entered = section.tryEnter();
        if (entered) section.leave();
    }).join();
    return entered;
}

TEST(CCriticalSection, isFreeOnlyAfterAsManyLeavesAsEntries) {
    CCriticalSection section;
    section.enter();
    ASSERT_TRUE(section.tryEnter());
    section.enter();
    for (int leaves = 0; leaves < 3; ++leaves) {
        EXPECT_FALSE(othersCanEnter(section));
        section.leave();
    }
    EXPECT_TRUE(othersCanEnter(section));
}

// Runs long enough inside the lock that the others use up their spins and sleep: the wake-ups are tested too.
TEST(CCriticalSection, letsOneThreadInAtATime) {
    for (int spinCount : {0, 50, 500}) {
        CCriticalSection section(spinCount);
        int inside = 0;
        int total = 0;
        const auto work = [&] {
            for (int i = 0; i < 5000; ++i) {
                const CLock outer(section);
                const CLock inner(section);
                EXPECT_EQ(++inside, 1);
                ++total;
                if (i % 100 == 0) std::this_thread::yield();
                --inside;
            }
        };
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) threads.emplace_back(work);
        for (std::thread& thread : threads) thread.join();
        EXPECT_EQ(total, 20000) << spinCount;
    }
}

TEST(CCriticalSection, wakesASleeper) {
    g_needsNoConstructor.enter();
    std::thread sleeper([] { const CLock lock(g_needsNoConstructor); });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    g_needsNoConstructor.leave();
    sleeper.join();
}

}  // namespace
}  // namespace brt
