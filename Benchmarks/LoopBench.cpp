// SPDX-License-Identifier: LicenseRef-Halyard
// The message loop: what a host's idle call costs when nothing is due, what a message costs, and how long one takes to
// wake a thread that sleeps and come back.
#include <memory>

#include "Platform/CAutoResetEvent.h"
#include "Platform/CMessageLoop.h"
#include "Platform/CNativeThread.h"
#include "Targets.h"

namespace {

using namespace brt;

const bool kTargets =
    bench::addTarget({"idle pump with 20 timers", "loop/idle", "", bench::Target::kAtMost, 300, 150}) &&
    bench::addTarget({"message posted and handled", "loop/message", "", bench::Target::kAtMost, 200, 100}) &&
    bench::addTarget({"message to a sleeping thread and back, against two bare events", "loop/round-trip/real_time",
                      "loop/bare-round-trip/real_time", bench::Target::kAtMost, 2.0, 1.5});

class CCounter final : public CLoopTarget {
public:
    void handleMessage(std::uint32_t, std::int64_t) override { ++count; }
    std::int64_t count = 0;
};

class CAnswers final : public CLoopTarget {
public:
    void handleMessage(std::uint32_t, std::int64_t) override { answered.signal(); }
    CAutoResetEvent answered;
};

void idle(benchmark::State& state) {
    std::shared_ptr<CMessageLoop> loop;
    if (CMessageLoop::obtain(loop) != 0) return state.SkipWithError("no loop");
    CCounter target;
    const LoopTargetId id = loop->addTarget(target);
    for (int i = 0; i < 20; ++i) loop->startTimer(id, 1'000'000'000);
    for (auto _ : state) benchmark::DoNotOptimize(loop->pump());
    loop->removeTarget(id);
}

void message(benchmark::State& state) {
    constexpr int kBatch = 64;
    std::shared_ptr<CMessageLoop> loop;
    if (CMessageLoop::obtain(loop) != 0) return state.SkipWithError("no loop");
    CCounter target;
    const CLoopAddress address = loop->addressOf(loop->addTarget(target));
    for (auto _ : state) {
        for (int i = 0; i < kBatch; ++i) benchmark::DoNotOptimize(address.post(1, i));
        loop->pump();
    }
    loop->removeTarget(address.target());
    if (target.count != state.iterations() * kBatch) state.SkipWithError("messages were lost");
    state.SetItemsProcessed(state.iterations() * kBatch);
}

struct Runner {
    static void main(void* context) {
        auto& self = *static_cast<Runner*>(context);
        std::shared_ptr<CMessageLoop> loop;
        if (CMessageLoop::obtain(loop) != 0) return self.isReady.signal();
        self.address = loop->addressOf(loop->addTarget(self.target));
        self.isReady.signal();
        static_cast<void>(loop->run());  // ended by `quit`
        loop->removeTarget(self.address.target());
    }
    CAnswers target;
    CAutoResetEvent isReady;
    CLoopAddress address;  // of nobody if there is no loop
};

void roundTrip(benchmark::State& state) {
    Runner runner;
    CNativeThread thread;
    if (thread.start(&Runner::main, &runner) != 0) return state.SkipWithError("no thread");
    runner.isReady.wait();
    if (runner.address.target() == LoopTargetId::none) state.SkipWithError("no loop");
    for (auto _ : state) {
        benchmark::DoNotOptimize(runner.address.post(1, 0));
        runner.target.answered.wait();
    }
    runner.address.quit();
    thread.join();
}

struct Echo {
    static void main(void* context) {
        auto& self = *static_cast<Echo*>(context);
        for (self.asked.wait(); !self.isOver; self.asked.wait()) self.answered.signal();
    }
    CAutoResetEvent asked;
    CAutoResetEvent answered;
    std::atomic<bool> isOver{false};
};

// The least that any message to a sleeping thread could cost.
void bareRoundTrip(benchmark::State& state) {
    Echo echo;
    CNativeThread thread;
    if (thread.start(&Echo::main, &echo) != 0) return state.SkipWithError("no thread");
    for (auto _ : state) {
        echo.asked.signal();
        echo.answered.wait();
    }
    echo.isOver = true;
    echo.asked.signal();
    thread.join();
}

const auto* const kIdle = benchmark::RegisterBenchmark("loop/idle", idle);
const auto* const kMessage = benchmark::RegisterBenchmark("loop/message", message);
const auto* const kRoundTrip = benchmark::RegisterBenchmark("loop/round-trip", roundTrip) -> UseRealTime();
const auto* const kBareRoundTrip = benchmark::RegisterBenchmark("loop/bare-round-trip", bareRoundTrip) -> UseRealTime();

}  // namespace
