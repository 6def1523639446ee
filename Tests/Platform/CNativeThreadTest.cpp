// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/CNativeThread.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>

#include <cfenv>
#include <limits>
#include <set>
#include <string>
#include <thread>

#include "Platform/Clock.h"
#include "Platform/ScopedFlushToZero.h"

namespace brt {
namespace {

// What a thread finds when it starts.
struct Findings {
    std::uint32_t id = 0;
    std::string name;
    int policy = -1;
    int rounding = -1;
    bool keepsDenormals = false;
    sigset_t blocked{};
};

void look(void* context) {
    auto& findings = *static_cast<Findings*>(context);
    findings.id = currentThreadId();
    char name[64] = {};
    pthread_getname_np(pthread_self(), name, sizeof name);
    findings.name = name;
    sched_param parameters{};
    pthread_getschedparam(pthread_self(), &findings.policy, &parameters);
    findings.rounding = std::fegetround();
    volatile double smallest = std::numeric_limits<double>::denorm_min();
    findings.keepsDenormals = smallest + smallest > 0.0;
    pthread_sigmask(SIG_BLOCK, nullptr, &findings.blocked);
}

Findings startAndLook(const ThreadOptions& options = {}) {
    Findings findings;
    CNativeThread thread;
    EXPECT_EQ(thread.start(&look, &findings, options), 0);
    EXPECT_TRUE(thread.isStarted());
    thread.join();
    EXPECT_FALSE(thread.isStarted());
    EXPECT_EQ(findings.id, thread.id());
    return findings;
}

TEST(CNativeThread, idsAreNeverReused) {
    std::set<std::uint32_t> ids{currentThreadId()};
    EXPECT_EQ(currentThreadId(), *ids.begin());
    CNativeThread thread;
    thread.join();  // not started: nothing to wait for
    EXPECT_EQ(thread.id(), 0u);
    for (int i = 0; i < 50; ++i) {
        Findings findings;
        ASSERT_EQ(thread.start(&look, &findings), 0);
        thread.join();
        EXPECT_TRUE(ids.insert(findings.id).second) << findings.id;
    }
    std::thread foreign([&] { EXPECT_TRUE(ids.insert(currentThreadId()).second); });
    foreign.join();
    EXPECT_FALSE(ids.contains(0));
}

TEST(CNativeThread, blocksAsynchronousSignalsOnlyOnItself) {
    sigset_t before;
    pthread_sigmask(SIG_BLOCK, nullptr, &before);
    const Findings findings = startAndLook();
    for (int signal : {SIGINT, SIGTERM, SIGHUP, SIGUSR1, SIGCHLD, SIGALRM, SIGPIPE, SIGRTMIN})
        EXPECT_EQ(sigismember(&findings.blocked, signal), 1) << signal;
    for (int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT})
        EXPECT_EQ(sigismember(&findings.blocked, signal), 0) << signal;
    sigset_t after;
    pthread_sigmask(SIG_BLOCK, nullptr, &after);
    for (int signal = 1; signal <= SIGRTMAX; ++signal)
        EXPECT_EQ(sigismember(&before, signal), sigismember(&after, signal)) << signal;
}

TEST(CNativeThread, hasDefaultFloatingPointWhateverItsCreatorHas) {
    const ScopedFlushToZero flush;
    std::fesetround(FE_UPWARD);
    const Findings findings = startAndLook();
    std::fesetround(FE_TONEAREST);
    EXPECT_EQ(findings.rounding, FE_TONEAREST);
    EXPECT_TRUE(findings.keepsDenormals);
}

TEST(CNativeThread, isOrdinaryThoughItsCreatorIsRealTime) {
    bool isRealTime = false;
    Findings ordinary;
    Findings critical;
    std::thread creator([&] {
        sched_param parameters{};
        parameters.sched_priority = 1;
        isRealTime = pthread_setschedparam(pthread_self(), SCHED_FIFO, &parameters) == 0;
        ordinary = startAndLook();
        critical = startAndLook({.name = "", .isTimeCritical = true});
    });
    creator.join();
    EXPECT_EQ(ordinary.policy, SCHED_OTHER);
    if (!isRealTime) GTEST_SKIP() << "the system grants no real-time scheduling here";
}

TEST(CNativeThread, carriesItsNameUpToTheSystemsLimit) {
    EXPECT_EQ(startAndLook({.name = "worker-thread"}).name, "worker-thread");
    EXPECT_EQ(startAndLook({.name = "a-name-longer-than-fifteen-bytes"}).name, "a-name-longer-t");
}

TEST(SleepSeconds, sleepsAtLeastThatLong) {
    const std::int64_t begin = clockCounter();
    sleepSeconds(0.02);
    sleepSeconds(-1.0);
    sleepSeconds(std::numeric_limits<double>::quiet_NaN());
    const double seconds = static_cast<double>(clockCounter() - begin) / clockFrequency();
    EXPECT_GE(seconds, 0.02);
    EXPECT_LT(seconds, 30.0);
}

}  // namespace
}  // namespace brt
