// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/CAutoResetEvent.h"

#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <thread>
#include <vector>

#include "Platform/Clock.h"

namespace brt {
namespace {

double secondsTaken(const auto& action) {
    const std::int64_t begin = clockCounter();
    action();
    return static_cast<double>(clockCounter() - begin) / clockFrequency();
}

TEST(CAutoResetEvent, countsTwoSignalsAsOne) {
    CAutoResetEvent event;
    EXPECT_FALSE(event.waitFor(0.0));
    event.signal();
    event.signal();
    event.wait();
    EXPECT_FALSE(event.waitFor(0.0));
}

TEST(CAutoResetEvent, timesOutNoSoonerThanTold) {
    CAutoResetEvent event;
    EXPECT_GE(secondsTaken([&] { EXPECT_FALSE(event.waitFor(0.05)); }), 0.05);
    for (double notATime : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) EXPECT_FALSE(event.waitFor(notATime));
    event.signal();
    EXPECT_TRUE(event.waitFor(std::numeric_limits<double>::infinity()));
}

TEST(CAutoResetEvent, letsOneWaiterPassForEachSignal) {
    constexpr int kWaiters = 3;
    CAutoResetEvent event;
    CAutoResetEvent hasPassed;
    std::atomic<int> passed{0};
    std::vector<std::thread> waiters;
    for (int i = 0; i < kWaiters; ++i)
        waiters.emplace_back([&] {
            event.wait();
            ++passed;
            hasPassed.signal();
        });
    for (int i = 1; i <= kWaiters; ++i) {
        event.signal();
        hasPassed.wait();
        EXPECT_FALSE(hasPassed.waitFor(0.01));
        EXPECT_EQ(passed, i);
    }
    for (std::thread& waiter : waiters) waiter.join();
}

// The plain counter is handed to and fro: the race detector sees whether a signal orders what stands around it.
TEST(CAutoResetEvent, handsOverWhatWasWritten) {
    constexpr int kRounds = 2000;
    CAutoResetEvent ping;
    CAutoResetEvent pong;
    int count = 0;
    std::thread other([&] {
        for (int i = 0; i < kRounds; ++i) {
            ping.wait();
            ++count;
            pong.signal();
        }
    });
    for (int i = 0; i < kRounds; ++i) {
        ++count;
        ping.signal();
        EXPECT_TRUE(pong.waitFor(60.0));
    }
    other.join();
    EXPECT_EQ(count, 2 * kRounds);
}

}  // namespace
}  // namespace brt
