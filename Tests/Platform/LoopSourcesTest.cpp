// SPDX-License-Identifier: LicenseRef-Halyard
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <deque>
#include <mutex>
#include <thread>

#include "Platform/CNativeThread.h"
#include "Platform/LoopProbe.h"

namespace brt {
namespace {

// Input that a test injects from any thread, each for a window of its own. No descriptor.
class CInjectedInput final : public CEventSource {
public:
    CInjectedInput(CMessageLoop& loop, Log& log) : m_address(loop.address()), m_log(log) {}

    void inject(LoopTargetId window, std::string event) {
        {
            const std::lock_guard lock(m_lock);
            m_events.push_back({window, std::move(event)});
        }
        m_address.wake();
    }

    bool prepare(LoopTargetId only) override {
        ++prepared;
        bool isReady = false;
        {
            const std::lock_guard lock(m_lock);
            isReady = count(only) > 0;
        }
        if (afterPrepare) afterPrepare();
        return isReady;
    }
    LoopDescriptor descriptor() const override { return kNoDescriptor; }
    void dispatch(LoopTargetId only) override {
        std::unique_lock lock(m_lock);
        for (std::size_t left = count(only); left > 0; --left) {
            const auto next =
                std::find_if(m_events.begin(), m_events.end(), [&](const Event& e) { return e.is(only); });
            if (next == m_events.end()) return;  // a modal loop in a handler has taken it
            m_log.push_back(next->text);
            m_events.erase(next);
            lock.unlock();
            if (onEvent) onEvent(m_log.back());
            lock.lock();
        }
    }

    std::function<void(const std::string&)> onEvent;
    std::function<void()> afterPrepare;  // what other threads do after the look and before the sleep
    std::atomic<int> prepared{0};

private:
    struct Event {
        LoopTargetId window;
        std::string text;
        bool is(LoopTargetId only) const { return only == LoopTargetId::none || window == only; }
    };
    std::size_t count(LoopTargetId only) const {
        return static_cast<std::size_t>(
            std::count_if(m_events.begin(), m_events.end(), [&](const Event& e) { return e.is(only); }));
    }

    const CLoopAddress m_address;
    Log& m_log;
    std::mutex m_lock;
    std::deque<Event> m_events;
};

class CPipeSource final : public CEventSource {
public:
    CPipeSource() { EXPECT_EQ(::pipe2(m_ends, O_CLOEXEC | O_NONBLOCK), 0); }
    ~CPipeSource() override {
        ::close(m_ends[0]);
        closeWriter();
    }
    void write(const std::string& bytes) {
        EXPECT_EQ(::write(m_ends[1], bytes.data(), bytes.size()), std::ssize(bytes));
    }
    void closeWriter() {
        if (m_ends[1] >= 0) ::close(m_ends[1]);
        m_ends[1] = -1;
    }

    bool prepare(LoopTargetId) override { return false; }
    LoopDescriptor descriptor() const override { return isAtEnd ? kNoDescriptor : m_ends[0]; }
    void dispatch(LoopTargetId) override {
        char buffer[64];
        const ssize_t got = ::read(m_ends[0], buffer, sizeof buffer);
        isAtEnd = got == 0;
        if (got > 0) text.append(buffer, static_cast<std::size_t>(got));
        if (onEvent) onEvent();
    }

    std::string text;
    bool isAtEnd = false;
    std::function<void()> onEvent;

private:
    int m_ends[2] = {-1, -1};
};

TEST(LoopSources, areServedBetweenMessagesAndTimers) {
    ManualLoop loop;
    Log log;
    const CProbe probe(loop.loop, log, "a");
    CInjectedInput input(*loop.loop, log);
    const LoopSourceId id = loop->addSource(input);
    input.onEvent = [&](const std::string& event) {
        EXPECT_FALSE(loop->pump());
        if (event == "press") input.inject(LoopTargetId::none, "release");
    };
    probe.start(1);
    loop.clock.advance(0.001);
    input.inject(LoopTargetId::none, "press");
    probe.post(1);
    EXPECT_TRUE(loop->pump());
    EXPECT_EQ(log, (Log{"a:1", "press", "a:tick"}));
    EXPECT_TRUE(loop->pump());
    EXPECT_EQ(log.back(), "release");
    input.inject(LoopTargetId::none, "late");
    loop->removeSource(id);
    EXPECT_FALSE(loop->pump());
}

TEST(LoopSources, keepTheEventsOfOtherWindowsWhileAModalLoopRuns) {
    const ManualLoop loop;
    Log log;
    const CProbe box(loop.loop, log, "box");
    CInjectedInput input(*loop.loop, log);
    const LoopSourceId id = loop->addSource(input);
    input.onEvent = [&](const std::string& event) {
        if (event == "answer") loop->endModal(box.id);
        if (event != "ask") return;
        EXPECT_EQ(loop->runModal(box.id), 0);
    };
    input.inject(LoopTargetId::none, "ask");
    input.inject(LoopTargetId::none, "expose");
    input.inject(box.id, "answer");
    EXPECT_TRUE(loop->pump());
    EXPECT_EQ(log, (Log{"ask", "answer", "expose"}));
    loop->removeSource(id);
}

TEST(LoopSources, withADescriptorWakeTheLoopAndMayTakeThemselvesOut) {
    const ManualLoop loop;
    CPipeSource pipe;
    CPipeSource broken;
    const LoopSourceId brokenId = loop->addSource(broken);
    const LoopSourceId id = loop->addSource(pipe);
    EXPECT_FALSE(loop->pump());
    pipe.write("one ");
    EXPECT_TRUE(loop->pump());
    broken.closeWriter();
    EXPECT_TRUE(loop->pump());
    EXPECT_TRUE(broken.isAtEnd);
    EXPECT_FALSE(loop->pump());  // an ended connection doesn't keep the loop busy
    pipe.onEvent = [&] {
        loop->removeSource(id);
        loop->removeSource(brokenId);
        loop->quit();
    };
    std::thread writer([&] {
        sleepSeconds(0.005);
        pipe.write("two");
    });
    EXPECT_EQ(loop->run(), 0);
    writer.join();
    EXPECT_EQ(pipe.text, "one two");
    pipe.write("three");
    EXPECT_FALSE(loop->pump());
}

TEST(LoopSources, mayBeTakenOutByEachOther) {
    const ManualLoop loop;
    CPipeSource first;
    CPipeSource second;
    loop->addSource(first);
    const LoopSourceId secondId = loop->addSource(second);
    first.onEvent = [&] { loop->removeSource(secondId); };
    first.write("1");
    second.write("2");
    EXPECT_TRUE(loop->pump());
    EXPECT_EQ(first.text, "1");
    EXPECT_EQ(second.text, "");
}

TEST(LoopSources, nothingThatHappensBeforeTheSleepIsSleptThrough) {
    std::shared_ptr<CMessageLoop> loop;
    ASSERT_EQ(CMessageLoop::obtain(loop), 0);
    Log log;
    const CProbe probe(loop, log, "a");
    constexpr int kAlarmMilliseconds = 10000;
    CProbe alarm(loop, log, "slept through");
    alarm.onTimer = [&](LoopTimerId) { loop->quit(); };
    alarm.start(kAlarmMilliseconds);
    const std::int64_t begin = loop->clock().now();
    CInjectedInput input(*loop, log);
    const LoopSourceId id = loop->addSource(input);
    int prepared = 0;
    input.afterPrepare = [&] {
        ++prepared;
        if (prepared == 1) input.inject(LoopTargetId::none, "press");
        if (prepared == 3) probe.post(1);
        if (prepared == 4) loop->quit();
    };
    EXPECT_EQ(loop->run(), 0);
    EXPECT_EQ(log, (Log{"press", "a:1"}));
    EXPECT_LT(loop->clock().now() - begin, kAlarmMilliseconds * std::int64_t{1'000'000});
    loop->removeSource(id);
}

// A loop with nothing to do asks nobody; each kind of reason wakes it.
TEST(LoopSources, aRunSleepsUntilThereIsAReason) {
    CManualLoopClock clock;
    CLoopAddress probe;
    std::atomic<CInjectedInput*> input{nullptr};
    std::atomic<std::size_t> handled{0};
    Log log;
    std::thread runner([&] {
        std::shared_ptr<CMessageLoop> loop;
        ASSERT_EQ(CMessageLoop::obtain(loop, {.clock = &clock}), 0);
        CProbe target(loop, log, "a");
        CInjectedInput source(*loop, log);
        const LoopSourceId id = loop->addSource(source);
        target.onMessage = [&](std::int64_t) { ++handled; };
        target.onTimer = [&](LoopTimerId) { ++handled; };
        source.onEvent = [&](const std::string&) { ++handled; };
        target.start(1000);
        probe = loop->addressOf(target.id);
        input = &source;
        EXPECT_EQ(loop->run(), 0);
        loop->removeSource(id);
    });
    while (input == nullptr) yieldThread();
    const auto restAfter = [&](std::size_t count) {
        while (handled != count) yieldThread();
        sleepSeconds(0.02);
    };
    restAfter(0);
    EXPECT_EQ(probe.post(1, 5), 0);
    restAfter(1);
    clock.advance(1.0);
    restAfter(2);
    input.load()->inject(LoopTargetId::none, "press");
    restAfter(3);
    EXPECT_LE(input.load()->prepared, 12);  // rounds: a few for each reason, none for the time between
    probe.quit();
    runner.join();
    EXPECT_EQ(log, (Log{"a:5", "a:tick", "press"}));
}

}  // namespace
}  // namespace brt
