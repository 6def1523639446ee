// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CParallelSection.h"

#include <gtest/gtest.h>
#include <time.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Core/CProcess.h"
#include "Core/CWorkerPool.h"
#include "Core/Log.h"
#include "Core/TimeBase.h"

namespace brt {
namespace {

class TestTask : public CWorkerThread {
public:
    explicit TestTask(std::function<CError*()> body) : m_body(std::move(body)) { ++s_alive; }
    ~TestTask() override { --s_alive; }
    CError* run() override { return m_body(); }

    static inline std::atomic<int> s_alive{0};

private:
    std::function<CError*()> m_body;
};

CError* failure(const char* text) { return makeError(nullptr, "f", 1, "", CString("@id ").append(text)); }

class LinesLogged : public CLogSink {
public:
    LinesLogged() : m_before(setLogSink(this)) {}
    ~LinesLogged() override { setLogSink(m_before); }
    void write(std::string_view text, bool) override { m_lines.emplace_back(text); }
    bool contains(const std::string& line) const {
        return std::find(m_lines.begin(), m_lines.end(), line) != m_lines.end();
    }

private:
    CLogSink* m_before;
    std::vector<std::string> m_lines;
};

double processorSecondsOfThisThread() {
    timespec used{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &used);
    return static_cast<double>(used.tv_sec) + 1e-9 * static_cast<double>(used.tv_nsec);
}

class CParallelSectionTest : public testing::Test {
protected:
    void TearDown() override {
        CWorkerPool::stop();
        EXPECT_EQ(TestTask::s_alive, 0);
    }
};

TEST_F(CParallelSectionTest, helpersAndCallerEmptyOneQueue) {
    constexpr int kItems = 1000;
    for (int round = 0; round < 20; ++round) {
        std::atomic<int> next{0};
        std::vector<int> handled(kItems);  // plain: the race detector sees whether the end of the section orders them
        const auto work = [&]() -> CError* {
            for (int item = next++; item < kItems; item = next++) ++handled[static_cast<std::size_t>(item)];
            return nullptr;
        };
        CParallelSection section;
        for (int i = 0; i < 3; ++i) section.addTask(new TestTask(work));
        EXPECT_EQ(section.helperCount(), 3);
        section.start();
        ASSERT_EQ(section.finish(work()), nullptr);
        EXPECT_EQ(handled, std::vector<int>(kItems, 1));
    }
}

TEST_F(CParallelSectionTest, anEarlyFailureFreesNoTaskThatStillRuns) {
    const LinesLogged log;
    std::atomic<bool> hasEnded{false};
    auto data = std::make_unique<int>(0);
    CParallelSection section;
    section.addTask(new TestTask([] { return failure("first"); }));
    section.addTask(new TestTask([&] {
        for (int i = 0; i < 50; ++i) {
            sleepSeconds(0.001);
            ++*data;
        }
        hasEnded = true;
        return failure("second");
    }));
    section.start();
    CError* const error = section.finish();
    EXPECT_TRUE(hasEnded);
    EXPECT_EQ(TestTask::s_alive, 0);
    data.reset();
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->message(), CStringView("first"));
    EXPECT_TRUE(log.contains("second"));
    EXPECT_TRUE(discardError(error));  // seen
}

TEST_F(CParallelSectionTest, theCallersOwnErrorComesFirst) {
    const LinesLogged log;
    CParallelSection section;
    section.addTask(new TestTask([] { return failure("helper's"); }));
    section.start();
    CError* const error = section.finish(failure("own"));
    EXPECT_EQ(error->message(), CStringView("own"));
    EXPECT_TRUE(log.contains("helper's"));
    discardError(error);  // seen
}

TEST_F(CParallelSectionTest, leavingItEarlyFinishesIt) {
    const LinesLogged log;
    std::atomic<int> ended{0};
    {
        CParallelSection section;
        section.addTask(new TestTask([&] {
            sleepSeconds(0.02);
            ++ended;
            return failure("late");
        }));
        section.start();
    }
    EXPECT_EQ(ended, 1);
    EXPECT_TRUE(log.contains("late"));
    {
        CParallelSection neverStarted;
        neverStarted.addTask(new TestTask([&] { return ++ended, nullptr; }));
    }
    EXPECT_EQ(ended, 1);
}

// A helper that takes long: the caller must leave the processor to it, and not turn in a circle.
TEST_F(CParallelSectionTest, aLongWaitSleeps) {
    CParallelSection section;
    section.addTask(new TestTask([]() -> CError* { return sleepSeconds(0.3), nullptr; }));
    section.start();
    const double before = processorSecondsOfThisThread();
    ASSERT_EQ(section.finish(), nullptr);
    EXPECT_LT(processorSecondsOfThisThread() - before, 0.1);
}

TEST_F(CParallelSectionTest, thePoolGivesTheThreadReleasedLastFirst) {
    const auto task = [] { return new TestTask([]() -> CError* { return nullptr; }); };
    CSmallArray<CPersistentThread*> workers;
    for (int i = 0; i < 3; ++i) workers.append(CWorkerPool::acquireWorker(task()));
    CPersistentThread* const last = workers.last();
    EXPECT_EQ(last->name(), CStringView("worker-thread"));
    CWorkerPool::releaseWorkers(workers);
    EXPECT_TRUE(workers.isEmpty());
    workers.append(CWorkerPool::acquireWorker(task()));
    EXPECT_EQ(workers.last(), last);
    CWorkerPool::releaseWorkers(workers);
}

// The last instance goes while a section is under way: its threads must still end with the next one.
TEST_F(CParallelSectionTest, threadsThatAStopFoundInUseEndWithTheNext) {
    const auto task = [] { return new TestTask([]() -> CError* { return nullptr; }); };
    CSmallArray<CPersistentThread*> workers;
    workers.append(CWorkerPool::acquireWorker(task()));
    const std::uint32_t firstId = workers.last()->threadId();
    { const CProcessInstance instance; }
    CWorkerPool::releaseWorkers(workers);
    { const CProcessInstance instance; }
    workers.append(CWorkerPool::acquireWorker(task()));
    EXPECT_NE(workers.last()->threadId(), firstId);
    CWorkerPool::releaseWorkers(workers);
}

TEST_F(CParallelSectionTest, sectionsOfSeveralThreadsShareThePool) {
    std::atomic<int> runs{0};
    const auto sections = [&]() -> CError* {
        for (int i = 0; i < 100; ++i) {
            CParallelSection section;
            for (int helper = 0; helper < 2; ++helper)
                section.addTask(new TestTask([&]() -> CError* { return ++runs, nullptr; }));
            section.start();
            BRT_TRY("", section.finish());
        }
        return nullptr;
    };
    CParallelSection outer;
    for (int i = 0; i < 2; ++i) outer.addTask(new TestTask(sections));
    outer.start();
    ASSERT_EQ(outer.finish(sections()), nullptr);
    EXPECT_EQ(runs, 600);
}

TEST(CPersistentThread, aStartThatMeetsTheStopKeepsNobodyWaiting) {
    for (int i = 0; i < 200; ++i) {
        CPersistentThread thread("p");
        ASSERT_EQ(thread.runThread(), nullptr);
        thread.setTask(new TestTask([]() -> CError* { return nullptr; }));
        thread.startTask();
        thread.stopThread();
        EXPECT_FALSE(thread.isBusy());
        thread.waitUntilIdle();
    }
    EXPECT_EQ(TestTask::s_alive, 0);
}

TEST(TimeBase, beginsAtLoad) {
    const double before = secondsSinceOrigin();
    EXPECT_GT(before, 0.0);
    EXPECT_LT(before, 3600.0);
    EXPECT_GE(secondsSinceOrigin(), before);
    EXPECT_GE(timeBase().processorCount, 1);
}

}  // namespace
}  // namespace brt
