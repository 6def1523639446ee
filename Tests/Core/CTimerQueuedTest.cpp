// SPDX-License-Identifier: LicenseRef-Halyard
// Timers of the tree: their rules on a clock that the test sets, and their life on the real one.
#include "Core/CTimerQueued.h"

#include <thread>

#include "EventFixture.h"
#include "Platform/Clock.h"
#include "RefusedThreads.h"

namespace brt {
namespace {

// A gate whose timer queue ticks every interval, and a loop that handles what was posted.
class CTickSimulation {
public:
    explicit CTickSimulation(double intervalSeconds)
        : m_interval(intervalSeconds), m_gate(new CTickGate({}, m_interval)) {}

    // The queue ticks; returns the number of posts.
    int runFor(double seconds) {
        int posts = 0;
        for (const double end = m_now + seconds - 1e-9; m_now < end; m_now += m_interval) posts += m_gate->pass(m_now);
        m_waiting += posts;
        return posts;
    }

    // Handles one post, with the queue ticking on; false if it was stale.
    bool handle(double seconds) {
        --m_waiting;
        if (!m_gate->isAwaited()) return false;
        runFor(seconds);
        m_gate->setHandled(seconds);
        return true;
    }

    int waiting() const { return m_waiting; }
    double now() const { return m_now; }

private:
    const double m_interval;
    const CRef<CTickGate> m_gate;
    double m_now = 0.0;
    int m_waiting = 0;
};

TEST(CTickGate, leavesOutTheTicksThatAHandlerTook) {
    CTickSimulation timer(0.010);
    EXPECT_EQ(timer.runFor(0.010), 1);
    EXPECT_EQ(timer.runFor(0.050), 0) << "not handled yet";
    EXPECT_TRUE(timer.handle(0.035));
    EXPECT_EQ(timer.runFor(0.030), 0);
    EXPECT_EQ(timer.runFor(0.010), 1);
    EXPECT_TRUE(timer.handle(0.0));
    EXPECT_EQ(timer.runFor(0.010), 1) << "a quick handler costs nothing";
}

TEST(CTickGate, postsEveryTwoSecondsWhileNothingIsHandled) {
    CTickSimulation timer(0.025);
    EXPECT_EQ(timer.runFor(1.999), 1);
    EXPECT_EQ(timer.runFor(60.0), 30);
    // The thread is back: one tick is handled, and none is made up for.
    int handled = 0;
    while (timer.waiting() > 0) handled += timer.handle(0.0);
    EXPECT_EQ(handled, 1);
    EXPECT_EQ(timer.runFor(0.025), 1);
}

TEST(CTickGate, ticksSoonAfterALongHandler) {
    for (const double interval : {0.001, 0.025, 0.7, 5.0}) {
        CTickSimulation timer(interval);
        timer.runFor(interval);
        EXPECT_TRUE(timer.handle(60.0));
        while (timer.waiting() > 0) EXPECT_FALSE(timer.handle(0.0));
        const double end = timer.now();
        while (timer.runFor(interval) == 0) {
        }
        EXPECT_LE(timer.now() - end, 2.0 + interval + 1e-6);
    }
}

class Timers : public EventFixture {
protected:
    // Loops that the tests make go by a clock that they set.
    void useManualClock() { ASSERT_EQ(CMessageLoop::obtain(m_loop, {.clock = &m_clock}), 0); }
    void TearDown() override {
        m_loop.reset();
        EventFixture::TearDown();
    }

    CTimerQueued& timer(CStringView name = "timer") {
        return dynamic_cast<CTimerQueued&>(*add(ui(), name, "core:timer"));
    }
    CActor& listenTo(CTimerQueued& timer) {
        CActor& listener = actor("listener");
        listener.listenObject(timer.getFullName(), "tick", "on-x");
        return listener;
    }
    static void set(CObject& object, CStringView name, CStringView value) {
        EXPECT_EQ(messageOf(object.setAttr(name, value, kImmediate)), "");
    }
    std::size_t ticksAfter(double seconds) {
        m_clock.advance(seconds);
        pump();
        return takeJournal().size();
    }
    // Pumps until that many ticks have come; false if they don't.
    static bool waitForTicks(std::size_t count) {
        for (int i = 0; i < 10000 && CActor::s_journal.size() < count; ++i) {
            sleepSeconds(0.001);
            pump();
        }
        return takeJournal().size() >= count;
    }

    CManualLoopClock m_clock;
    std::shared_ptr<CMessageLoop> m_loop;
};

TEST_F(Timers, limitTheirInterval) {
    CTimerQueued& tick = timer();
    EXPECT_EQ(tick.intervalSeconds(), 0.0);
    EXPECT_FALSE(tick.isTimerActive());
    const auto interval = [&](CStringView name, CStringView value) {
        set(tick, name, value);
        EXPECT_TRUE(tick.isTimerActive());
        return tick.intervalSeconds();
    };
    EXPECT_EQ(interval("fps", "0"), 1000.0);
    EXPECT_EQ(interval("fps", "5000"), 0.001);
    EXPECT_EQ(interval("fps", "50"), 0.02);
    EXPECT_EQ(interval("interval", "0"), 0.001);
    EXPECT_EQ(interval("interval", "0.3"), 0.3);
    EXPECT_EQ(interval("interval", "1e300"), 1e6);
    EXPECT_EQ(interval("interval", "-5"), 0.001);
    EXPECT_EQ(messageOf(tick.setAttrDouble("interval", std::numeric_limits<double>::quiet_NaN(), kImmediate)), "");
    EXPECT_EQ(tick.intervalSeconds(), 0.001);
}

TEST_F(Timers, tickFromTheLoopOfTheirThread) {
    useManualClock();
    CTimerQueued& tick = timer();
    listenTo(tick);
    set(tick, "is-high-precision", "false");
    set(tick, "fps", "50");
    EXPECT_EQ(ticksAfter(0.015), 0U);
    set(tick, "fps", "50");  // the same: it goes on
    set(tick, "interval", "0.0200000000000000001");
    EXPECT_EQ(ticksAfter(0.006), 1U);
    EXPECT_EQ(ticksAfter(10.0), 1U) << "missed ticks aren't made up for";
    EXPECT_EQ(ticksAfter(0.020), 1U);
    set(tick, "interval", "1");
    EXPECT_EQ(ticksAfter(0.9), 0U);
    EXPECT_EQ(ticksAfter(0.2), 1U);
    CObject::release(&tick);
    EXPECT_EQ(ticksAfter(10.0), 0U);
}

TEST_F(Timers, doNotTickWithoutALoopOrABridge) {
    useManualClock();
    CTimerQueued* outside = nullptr;
    std::thread([&] {
        outside = dynamic_cast<CTimerQueued*>(add(root(), "outside", "core:timer"));
        set(*outside, "is-high-precision", "false");
        set(*outside, "interval", "0.001");
    }).join();
    EXPECT_TRUE(outside->isTimerActive());
    listenTo(*outside);
    EXPECT_EQ(ticksAfter(1.0), 0U);
    set(*outside, "is-high-precision", "true");
    sleepSeconds(0.01);
    EXPECT_EQ(ticksAfter(1.0), 0U);
}

TEST_F(Timers, mayBeChangedAndReleasedByTheirTick) {
    useManualClock();
    CTimerQueued& tick = timer();
    CActor& listener = listenTo(tick);
    set(tick, "is-high-precision", "false");
    set(tick, "interval", "1");
    listener.onEvent = [&](const CAttrMap&) { return tick.setAttr("interval", "2", kImmediate); };
    EXPECT_EQ(ticksAfter(1.0), 1U);
    EXPECT_EQ(ticksAfter(1.0), 0U);
    EXPECT_EQ(ticksAfter(1.0), 1U);
    listener.onEvent = [&](const CAttrMap&) {
        return makeError(nullptr, __FILE__, __LINE__, "", "@brtstr_CTimerQueuedTest_tick It fails.");
    };
    EXPECT_EQ(ticksAfter(2.0), 1U);
    EXPECT_TRUE(isLogged("It fails."));
    listener.onEvent = [&](const CAttrMap&) { return CObject::release(&ui()), nullptr; };
    EXPECT_EQ(ticksAfter(2.0), 1U);
    EXPECT_EQ(ticksAfter(2.0), 0U);

    // The same, from the timer queue.
    CTimerQueued& queued = timer();
    CActor& other = listenTo(queued);
    set(queued, "interval", "0.001");
    EXPECT_TRUE(waitForTicks(3));
    other.onEvent = [&](const CAttrMap&) { return CObject::release(&ui()), nullptr; };
    EXPECT_TRUE(waitForTicks(1));
    EXPECT_FALSE(pump());
}

// An event that comes when nothing was posted is no tick.
TEST_F(Timers, handleEachTickOnce) {
    CTimerQueued& tick = timer();
    CActor& listener = listenTo(tick);
    EXPECT_EQ(messageOf(tick.runEvent("sys-tick")), "");
    set(tick, "interval", "1000");
    sleepSeconds(0.02);  // the first comes at once
    pump();
    EXPECT_EQ(messageOf(tick.runEvent("sys-tick")), "");
    EXPECT_EQ(takeJournal(), (Journal{"listener on-x tick -"}));
    listener.unlistenObject("ui.timer", "tick");
}

TEST_F(Timers, failWhereTheQueuesThreadIsRefused) {
    CTimerQueued& tick = timer();
    listenTo(tick);
    {
        const RefusedThreads refused;
        EXPECT_EQ(messageOf(tick.setAttr("interval", "0.5", kImmediate)), "Timer queue creation error.");
        EXPECT_FALSE(tick.isTimerActive());
    }
    set(tick, "interval", "0.001");
    EXPECT_TRUE(waitForTicks(1));
}

TEST_F(Timers, comeAndGoByTheThousand) {
    constexpr int kTimers = 10000;
    listenTo(timer("steady"));
    set(*ui().findChild("steady"), "interval", "0.001");
    std::thread otherTree([] {
        CObject* other = nullptr;
        EXPECT_EQ(messageOf(CApplication::initRootObject(other, "")), "");
        CObject* const bridge = add(*other, "ui", "ui:ui-event-bridge");
        for (int i = 0; i < kTimers / 2; ++i) {
            CObject* const tick = add(*bridge, "timer", "core:timer");
            set(*tick, "interval", "0.001");
            if (i % 16 == 0) pump();
            CObject::release(tick);
        }
        CObject::release(other);
    });
    for (int i = 0; i < kTimers / 2; ++i) {
        CTimerQueued& tick = timer();
        set(tick, "interval", "0.001");
        if (i % 16 == 0) pump();
        CObject::release(&tick);
    }
    otherTree.join();
    takeJournal();
    EXPECT_TRUE(waitForTicks(3)) << "the one that stays ticks on";
}

TEST_F(Timers, stopWithTheProcessesThreads) {
    CTimerQueued& tick = timer();
    listenTo(tick);
    set(tick, "interval", "0.001");
    EXPECT_TRUE(waitForTicks(1));
    { const CProcessInstance last; }
    pump();
    takeJournal();
    sleepSeconds(0.01);
    EXPECT_FALSE(pump());
    set(tick, "interval", "0.002");
    EXPECT_TRUE(waitForTicks(1)) << "and start anew";
}

}  // namespace
}  // namespace brt
