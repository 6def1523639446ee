// SPDX-License-Identifier: LicenseRef-Halyard
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <optional>

#include "Platform/Clock.h"
#include "Platform/LoopProbe.h"

namespace brt {
namespace {

TEST(LoopTimers, fireOnTheirGridAndNeverTwiceForTimeThatPassed) {
    ManualLoop loop;
    Log log;
    const CProbe probe(loop.loop, log, "a");
    probe.start(10);
    const auto ticksAfter = [&](double milliseconds) {
        loop.clock.advance(milliseconds * 0.001);
        const std::size_t before = log.size();
        loop->pump();
        loop->pump();
        return log.size() - before;
    };
    EXPECT_EQ(ticksAfter(0), 0u);
    EXPECT_EQ(ticksAfter(9.999), 0u);
    EXPECT_EQ(ticksAfter(0.001), 1u);  // at 10
    EXPECT_EQ(ticksAfter(37), 1u);     // at 47: those of 20, 30 and 40 in one
    EXPECT_EQ(ticksAfter(2.9), 0u);
    EXPECT_EQ(ticksAfter(0.1), 1u);  // at 50
    EXPECT_EQ(ticksAfter(3.6e6), 1u);
    EXPECT_EQ(ticksAfter(9.9), 0u);
}

TEST(LoopTimers, aTickThatTakesLongIsFollowedByOne) {
    ManualLoop loop;
    Log log;
    CProbe slow(loop.loop, log, "slow");
    const CProbe other(loop.loop, log, "other");
    slow.onTimer = [&](LoopTimerId) { loop.clock.advance(60.0); };
    slow.start(10);
    other.start(25);
    loop.clock.advance(0.010);
    EXPECT_TRUE(loop->pump());
    EXPECT_EQ(log, (Log{"slow:tick"}));
    EXPECT_TRUE(loop->pump());  // the longest overdue first
    EXPECT_EQ(log, (Log{"slow:tick", "slow:tick", "other:tick"}));
}

TEST(LoopTimers, takeAnyPeriod) {
    ManualLoop loop;
    Log log;
    const CProbe probe(loop.loop, log, "a");
    for (int period : {0, -5, std::numeric_limits<int>::min()}) probe.start(period);
    probe.start(std::numeric_limits<int>::max());
    loop.clock.advance(0.001);
    loop->pump();
    EXPECT_EQ(log.size(), 3u);
    loop.clock.advance(3e6);
    loop->pump();
    EXPECT_EQ(log.size(), 7u);
}

TEST(LoopTimers, stopAndStartInTheirHandlers) {
    ManualLoop loop;
    Log log;
    std::optional<CProbe> a(std::in_place, loop.loop, log, "a");
    std::optional<CProbe> b(std::in_place, loop.loop, log, "b");
    std::optional<CProbe> c(std::in_place, loop.loop, log, "c");
    a->start(1);
    const LoopTimerId ofB = b->start(1);
    c->start(1);
    a->onTimer = [&](LoopTimerId timer) {
        loop->stopTimer(timer);
        loop->stopTimer(ofB);
        c.reset();
        b->start(1);
    };
    loop.clock.advance(0.001);
    loop->pump();
    EXPECT_EQ(log, (Log{"a:tick"}));  // b's new one is a period away
    loop.clock.advance(0.001);
    loop->pump();
    EXPECT_EQ(log, (Log{"a:tick", "b:tick"}));
    loop->stopTimer(ofB);
    loop->startTimer(LoopTargetId{999}, 1);  // of nobody: never fires
    b.reset();
    loop.clock.advance(0.001);
    EXPECT_FALSE(loop->pump());
}

// By the system's clock: the loop sleeps until each tick by itself.
TEST(LoopTimers, endTheSleepOfARun) {
    std::shared_ptr<CMessageLoop> loop;
    ASSERT_EQ(CMessageLoop::obtain(loop), 0);
    Log log;
    CProbe probe(loop, log, "a");
    probe.onTimer = [&](LoopTimerId) {
        if (log.size() == 3) loop->quit();
    };
    const std::int64_t begin = clockCounter();
    probe.start(7);
    EXPECT_EQ(loop->run(), 0);
    EXPECT_GE(static_cast<double>(clockCounter() - begin) / clockFrequency(), 0.021);
}

}  // namespace
}  // namespace brt
