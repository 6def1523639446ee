// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CThread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <functional>
#include <string>

#include "RefusedThreads.h"

namespace brt {
namespace {

class TestThread : public CThread {
public:
    explicit TestThread(std::function<CError*(TestThread&)> body, CStringView name = "test-thread")
        : CThread(name), m_body(std::move(body)) {}
    ~TestThread() override { stopThread(); }

    using CThread::waitForWake;
    void waitUntilStopped() {
        while (!isStopRequested()) waitForWake();
    }

private:
    CError* run() override { return m_body(*this); }

    std::function<CError*(TestThread&)> m_body;
};

std::string messageOf(CError* error) {
    if (error == nullptr) return "";
    const std::string message = error->message().toUtf8();
    discardError(error);  // its text is what the test wants
    return message;
}

void waitForReturn(std::atomic<int>& runs, int expected) {
    while (runs < expected) yieldThread();
}

TEST(CThread, refusesASecondStartAndLeavesTheFirstAlone) {
    std::atomic<int> runs{0};
    TestThread thread([&](TestThread& self) {
        self.waitUntilStopped();
        ++runs;
        return nullptr;
    });
    EXPECT_FALSE(thread.isRunning());
    ASSERT_EQ(thread.runThread(), nullptr);
    const std::uint32_t id = thread.threadId();
    EXPECT_EQ(messageOf(thread.runThread()), "Thread is already running.");
    EXPECT_TRUE(thread.isRunning());
    EXPECT_EQ(thread.threadId(), id);
    EXPECT_EQ(runs, 0);
    thread.stopThread();
    EXPECT_FALSE(thread.isRunning());
    EXPECT_EQ(runs, 1);
}

TEST(CThread, aReturnedRunIsRunningUntilJoinedAndMayBeStartedAnew) {
    std::atomic<int> runs{0};
    TestThread thread([&](TestThread&) -> CError* {
        ++runs;
        return nullptr;
    });
    ASSERT_EQ(thread.runThread(), nullptr);
    waitForReturn(runs, 1);
    EXPECT_TRUE(thread.isRunning());
    const std::uint32_t id = thread.threadId();
    while (discardError(thread.runThread())) yieldThread();  // refused until the last steps of `run` are over
    EXPECT_NE(thread.threadId(), id);
    waitForReturn(runs, 2);
    thread.stopThread();
    EXPECT_FALSE(thread.isRunning());
    thread.stopThread();
}

// The signal of the stop is still up when the thread has ended without waiting for it.
TEST(CThread, aStopLeavesNoWakeBehindForTheNextRun) {
    std::atomic<int> wakes{0};
    bool waits = false;
    TestThread thread([&](TestThread& self) -> CError* {
        while (waits && !self.isStopRequested()) {
            self.waitForWake();
            ++wakes;
        }
        return nullptr;
    });
    ASSERT_EQ(thread.runThread(), nullptr);
    thread.stopThread();
    waits = true;
    ASSERT_EQ(thread.runThread(), nullptr);
    sleepSeconds(0.02);
    EXPECT_EQ(wakes, 0);
    thread.stopThread();
}

TEST(CThread, stoppingItselfOnlyAsks) {
    std::atomic<int> runs{0};
    TestThread thread([&](TestThread& self) -> CError* {
        self.stopThread();
        EXPECT_TRUE(self.isStopRequested());
        EXPECT_TRUE(self.isRunning());
        ++runs;
        return nullptr;
    });
    ASSERT_EQ(thread.runThread(), nullptr);
    waitForReturn(runs, 1);
    EXPECT_TRUE(thread.isRunning());
    thread.stopThread();
    EXPECT_FALSE(thread.isRunning());
}

TEST(CThread, itsNameIsKnownWhileItRuns) {
    CString name("before");
    TestThread named([](TestThread& self) -> CError* {
        self.waitUntilStopped();
        return nullptr;
    });
    TestThread nameless([](TestThread& self) -> CError* { return self.waitUntilStopped(), nullptr; }, "");
    ASSERT_EQ(named.runThread(), nullptr);
    ASSERT_EQ(nameless.runThread(), nullptr);
    EXPECT_TRUE(CThread::findName(named.threadId(), name));
    EXPECT_EQ(name, CStringView("test-thread"));
    name = "before";
    EXPECT_FALSE(CThread::findName(nameless.threadId(), name));
    named.stopThread();
    EXPECT_FALSE(CThread::findName(named.threadId(), name));
    EXPECT_EQ(name, CStringView("before"));
}

TEST(CThread, thatTheSystemRefusesMayBeStartedLater) {
    std::atomic<int> runs{0};
    TestThread thread([&](TestThread&) { return ++runs, nullptr; });
    {
        const RefusedThreads refused;
        EXPECT_EQ(messageOf(thread.runThread()), "Thread creation error " + std::to_string(EAGAIN) + ".");
        EXPECT_FALSE(thread.isRunning());
    }
    EXPECT_EQ(messageOf(thread.runThread()), "");
    waitForReturn(runs, 1);
}

std::atomic<int> g_windows{0};

// Without a window, which would hold up whoever stops the thread.
TEST(CThread, anErrorOfItsRunIsWritten) {
    g_windows = 0;
    setErrorWindow([](const ErrorReport&) { return ++g_windows, true; });
    testing::internal::CaptureStderr();
    TestThread thread([](TestThread&) { return makeError(nullptr, "f", 1, "", "@id Disk on fire."); });
    ASSERT_EQ(thread.runThread(), nullptr);
    thread.stopThread();
    setErrorWindow(nullptr);
    EXPECT_TRUE(testing::internal::GetCapturedStderr().starts_with("Disk on fire."));
    EXPECT_EQ(g_windows, 0);
}

}  // namespace
}  // namespace brt
