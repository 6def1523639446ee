// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/CTimerQueue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "Platform/Clock.h"

namespace brt {
namespace {

using Action = std::function<void()>;

CTimerQueue::TimerId addAction(CTimerQueue& queue, Action& action, int dueMs, int periodMs) {
    return queue.add([](void* context) { (*static_cast<Action*>(context))(); }, &action, dueMs, periodMs);
}

double secondsSince(std::int64_t begin) { return static_cast<double>(clockCounter() - begin) / clockFrequency(); }

class CTimerQueueTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(m_queue.start(), 0); }

    void TearDown() override { m_queue.stop(); }

    CTimerQueue m_queue;
    CAutoResetEvent m_called;
    std::atomic<int> m_calls{0};
    Action m_count = [this] {
        ++m_calls;
        m_called.signal();
    };
};

TEST_F(CTimerQueueTest, callsOnceNoSoonerThanDue) {
    const std::int64_t begin = clockCounter();
    addAction(m_queue, m_count, 30, 0);
    m_called.wait();
    EXPECT_GE(secondsSince(begin), 0.030);
    EXPECT_FALSE(m_called.waitFor(0.05));
    EXPECT_EQ(m_calls, 1);
}

TEST_F(CTimerQueueTest, callsAtOnceThenEveryPeriod) {
    const std::int64_t begin = clockCounter();
    const CTimerQueue::TimerId timer = addAction(m_queue, m_count, 0, 10);
    while (m_calls < 5) m_called.wait();
    EXPECT_GE(secondsSince(begin), 0.040);
    m_queue.cancel(timer);
    const int calls = m_calls;
    EXPECT_FALSE(m_called.waitFor(0.0) && m_called.waitFor(0.05));
    EXPECT_EQ(m_calls, calls);
}

TEST_F(CTimerQueueTest, theEarlierOfTwoComesFirstWhicheverWasAddedFirst) {
    std::vector<int> order;
    CAutoResetEvent done;
    Action late = [&] {
        order.push_back(2);
        done.signal();
    };
    Action early = [&] { order.push_back(1); };
    addAction(m_queue, late, 60, 0);
    addAction(m_queue, early, 20, 0);
    done.wait();
    EXPECT_EQ(order, (std::vector<int>{1, 2}));
}

TEST_F(CTimerQueueTest, periodsThatABusyThreadMissesAreSkipped) {
    std::vector<double> seconds;
    CAutoResetEvent done;
    const std::int64_t begin = clockCounter();
    Action slowAtFirst = [&] {
        seconds.push_back(secondsSince(begin));
        if (seconds.size() == 1) sleepSeconds(0.105);
        if (seconds.size() == 3) done.signal();
    };
    const CTimerQueue::TimerId timer = addAction(m_queue, slowAtFirst, 0, 20);
    done.wait();
    m_queue.cancel(timer);
    // One call is late; the third waits for the next multiple of the period, and doesn't follow at once.
    EXPECT_GE(seconds[1], 0.105);
    EXPECT_GE(seconds[2], 0.12);
}

TEST_F(CTimerQueueTest, cancelWaitsForTheCallUnderWay) {
    for (int round = 0; round < 20; ++round) {
        CAutoResetEvent entered;
        std::atomic<bool> hasEnded{false};
        Action slow = [&] {
            entered.signal();
            sleepSeconds(0.005);
            hasEnded = true;
        };
        const CTimerQueue::TimerId timer = addAction(m_queue, slow, 0, 1000);
        entered.wait();
        std::thread another([&] {
            m_queue.cancel(timer);
            EXPECT_TRUE(hasEnded);
        });
        m_queue.cancel(timer);
        EXPECT_TRUE(hasEnded);
        another.join();
    }
}

TEST_F(CTimerQueueTest, aCallbackMayCancelAndAdd) {
    CTimerQueue::TimerId periodic = 0;
    CAutoResetEvent idIsKnown;
    Action cancelsItself = [&] {
        idIsKnown.wait();
        m_queue.cancel(periodic);
        addAction(m_queue, m_count, 1, 0);
    };
    periodic = addAction(m_queue, cancelsItself, 0, 1);
    idIsKnown.signal();
    m_called.wait();
    EXPECT_FALSE(m_called.waitFor(0.02));
    m_queue.cancel(periodic);
    m_queue.cancel(0);
    m_queue.cancel(periodic + 1000);
}

// The context dies right after the cancel: a late call is a use after free for the sanitizers.
TEST_F(CTimerQueueTest, timersComeAndGoOnSeveralThreads) {
    const auto comeAndGo = [&] {
        for (int i = 0; i < 500; ++i) {
            int calls = 0;
            auto count = std::make_unique<Action>([&calls] { ++calls; });
            const CTimerQueue::TimerId timer = addAction(m_queue, *count, i % 3, 1);
            if (i % 5 == 0) sleepSeconds(0.001);
            m_queue.cancel(timer);
            count.reset();
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) threads.emplace_back(comeAndGo);
    for (std::thread& thread : threads) thread.join();
}

TEST_F(CTimerQueueTest, stopsWithTimersLeftAndStartsAgain) {
    addAction(m_queue, m_count, 0, 1);
    m_called.wait();
    m_queue.stop();
    const int calls = m_calls;
    m_called.waitFor(0.0);
    EXPECT_FALSE(m_called.waitFor(0.02));
    EXPECT_EQ(m_calls, calls);
    m_queue.stop();
    ASSERT_EQ(m_queue.start(), 0);
    EXPECT_FALSE(m_called.waitFor(0.02));
    addAction(m_queue, m_count, 0, 0);
    m_called.wait();
    EXPECT_EQ(m_calls, calls + 1);
}

}  // namespace
}  // namespace brt
