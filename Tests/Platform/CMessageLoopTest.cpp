// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/CMessageLoop.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cerrno>
#include <limits>
#include <optional>
#include <thread>

#include "Platform/LoopProbe.h"
#include "Platform/SystemError.h"

namespace brt {
namespace {

TEST(CMessageLoop, isSharedByItsThreadAndEndsWithItsLastOwner) {
    EXPECT_EQ(CMessageLoop::current(), nullptr);
    std::shared_ptr<CMessageLoop> first;
    std::shared_ptr<CMessageLoop> second;
    ASSERT_EQ(CMessageLoop::obtain(first), 0);
    ASSERT_EQ(CMessageLoop::obtain(second), 0);
    EXPECT_EQ(first, second);
    EXPECT_EQ(CMessageLoop::current(), first);
    std::thread([&] {
        EXPECT_EQ(CMessageLoop::current(), nullptr);
        EXPECT_FALSE(first->pump());
        EXPECT_EQ(first->run(), kErrorWrongThread);
        std::shared_ptr<CMessageLoop> other;
        ASSERT_EQ(CMessageLoop::obtain(other), 0);
        EXPECT_NE(other, first);
        EXPECT_EQ(CMessageLoop::current(), other);
    }).join();
    first.reset();
    EXPECT_EQ(CMessageLoop::current(), second);
    std::thread([gone = std::move(second)]() mutable { gone.reset(); }).join();
    EXPECT_EQ(CMessageLoop::current(), nullptr);
}

TEST(CMessageLoop, withoutADescriptorLeftIsNotMade) {
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit none{.rlim_cur = 0, .rlim_max = before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    std::shared_ptr<CMessageLoop> loop;
    const int error = CMessageLoop::obtain(loop);
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(error, EMFILE);
    EXPECT_EQ(loop, nullptr);
    EXPECT_EQ(CMessageLoop::current(), nullptr);
}

TEST(CMessageLoop, deliversInTheOrderOfPosting) {
    const ManualLoop loop;
    Log log;
    const CProbe a(loop.loop, log, "a");
    const CProbe b(loop.loop, log, "b");
    EXPECT_FALSE(loop->pump());
    a.post(1);
    b.post(2);
    a.post(std::numeric_limits<std::int64_t>::min());
    b.post(4);
    EXPECT_TRUE(log.empty());
    EXPECT_TRUE(loop->pump());
    EXPECT_EQ(log, (Log{"a:1", "b:2", "a:-9223372036854775808", "b:4"}));
    EXPECT_FALSE(loop->pump());
}

TEST(CMessageLoop, pumpHandlesWhatWasThereAtItsStart) {
    ManualLoop loop;
    Log log;
    CProbe probe(loop.loop, log, "a");
    probe.onMessage = [&](std::int64_t number) { probe.post(number + 10); };
    probe.start(5);
    probe.post(1);
    probe.post(2);
    for (const Log& expected : {Log{"a:1", "a:2", "a:tick"}, {"a:11", "a:12", "a:tick"}, {"a:21", "a:22", "a:tick"}}) {
        loop.clock.advance(0.005);
        log.clear();
        EXPECT_TRUE(loop->pump());
        EXPECT_EQ(log, expected);
    }
}

TEST(CMessageLoop, pumpInsideAHandlerDoesNothing) {
    ManualLoop loop;
    Log log;
    CProbe a(loop.loop, log, "a");
    const CProbe b(loop.loop, log, "b");
    const auto tryAll = [&](auto) {
        b.post(7);
        EXPECT_FALSE(loop->pump());
        EXPECT_EQ(loop->run(), kErrorWouldDeadlock);
    };
    a.onMessage = tryAll;
    a.onTimer = tryAll;
    a.start(1);
    loop.clock.advance(0.001);
    a.post(1);
    EXPECT_TRUE(loop->pump());
    EXPECT_EQ(log, (Log{"a:1", "a:tick"}));
    EXPECT_TRUE(loop->pump());
    EXPECT_EQ(log, (Log{"a:1", "a:tick", "b:7", "b:7"}));
}

TEST(CMessageLoop, dropsWhatWaitsForATargetThatGoes) {
    const ManualLoop loop;
    Log log;
    auto a = std::make_unique<CProbe>(loop.loop, log, "a");
    auto b = std::make_unique<CProbe>(loop.loop, log, "b");
    std::optional<CProbe> newcomer;
    const CLoopAddress toA = loop->addressOf(a->id);
    a->onMessage = [&](std::int64_t) {
        b.reset();
        a.reset();
        newcomer.emplace(loop.loop, log, "new");
    };
    a->post(1);
    b->post(2);
    a->post(3);
    a->start(1);
    EXPECT_TRUE(loop->pump());
    EXPECT_EQ(toA.post(1, 4), 0);
    EXPECT_FALSE(loop->pump());
    EXPECT_EQ(log, (Log{"a:1"}));
}

// The editor closes itself in a handler, and nothing else keeps the loop.
TEST(CMessageLoop, outlivesTheHandlerThatLetsGoOfIt) {
    std::optional<ManualLoop> loop(std::in_place);
    Log log;
    auto probe = std::make_unique<CProbe>(loop->loop, log, "a");
    probe->onMessage = [&](std::int64_t) {
        probe.reset();
        loop->loop.reset();
        EXPECT_NE(CMessageLoop::current(), nullptr);
    };
    probe->post(1);
    probe->post(2);
    loop->loop->pump();
    EXPECT_EQ(log, (Log{"a:1"}));
    EXPECT_EQ(CMessageLoop::current(), nullptr);
}

TEST(CMessageLoop, postingWhereNobodyIsSucceeds) {
    EXPECT_EQ(CLoopAddress().post(1, 2), 0);
    Log log;
    CLoopAddress address;
    {
        const ManualLoop loop;
        const CProbe probe(loop.loop, log, "a");
        address = loop->addressOf(probe.id);
        EXPECT_EQ(loop->address().post(1, 2), 0);
        probe.post(3);
    }
    EXPECT_EQ(address.post(1, 4), 0);
    address.wake();
    address.quit();
    // The first target of a new loop has the same number, and nothing to do with it.
    const ManualLoop loop;
    const CProbe probe(loop.loop, log, "b");
    EXPECT_EQ(probe.id, address.target());
    EXPECT_NE(loop->addressOf(probe.id), address);
    EXPECT_EQ(address.post(1, 5), 0);
    EXPECT_FALSE(loop->pump());
    EXPECT_TRUE(log.empty());
}

TEST(CMessageLoop, postingFailsWhileTooManyWait) {
    class CCounter final : public CLoopTarget {
    public:
        void handleMessage(std::uint32_t, std::int64_t) override { ++count; }
        std::size_t count = 0;
    };
    constexpr std::size_t kMany = CLoopAddress::kMostWaitingMessages * 3 / 5;
    const ManualLoop loop;
    CCounter counter;
    Log log;
    auto deaf = std::make_unique<CProbe>(loop.loop, log, "deaf");
    const CLoopAddress toDeaf = loop->addressOf(deaf->id);
    const CLoopAddress toCounter = loop->addressOf(loop->addTarget(counter));

    for (std::size_t i = 0; i < kMany; ++i) ASSERT_EQ(toCounter.post(1, 1), 0);
    loop->pump();
    EXPECT_EQ(counter.count, kMany);

    for (std::size_t i = 0; i < kMany; ++i) ASSERT_EQ(toDeaf.post(1, 1), 0);
    for (std::size_t i = kMany; i < CLoopAddress::kMostWaitingMessages; ++i) ASSERT_EQ(toCounter.post(1, 1), 0);
    EXPECT_EQ(toDeaf.post(1, 1), kErrorQueueFull);
    EXPECT_EQ(toCounter.post(1, 1), kErrorQueueFull);
    deaf.reset();
    EXPECT_EQ(toDeaf.post(1, 1), 0);
    EXPECT_EQ(toCounter.post(1, 1), 0);
    loop->removeTarget(toCounter.target());
    EXPECT_FALSE(loop->pump());
}

TEST(CMessageLoop, quitEndsTheRunAndKeepsWhatWaits) {
    const ManualLoop loop;
    Log log;
    CProbe probe(loop.loop, log, "a");
    probe.onMessage = [&](std::int64_t) { loop->quit(); };
    probe.post(1);
    probe.post(2);
    probe.post(3);
    EXPECT_EQ(loop->run(), 0);
    EXPECT_EQ(log, (Log{"a:1"}));
    loop->quit();  // before a run, it ends that one, and only that
    EXPECT_EQ(loop->run(), 0);
    EXPECT_EQ(log, (Log{"a:1"}));
    EXPECT_EQ(loop->run(), 0);
    EXPECT_EQ(log, (Log{"a:1", "a:2"}));
    EXPECT_TRUE(loop->pump());
    EXPECT_EQ(log, (Log{"a:1", "a:2", "a:3"}));
}

}  // namespace
}  // namespace brt
