// SPDX-License-Identifier: LicenseRef-Halyard
// Instances under hosts that do anything, alone and many at once.
#include "RandomHost.h"

#include <atomic>
#include <thread>

namespace brt {
namespace {

using HostStormTest = WrapperFixture;

int seconds() {
    const char* const wanted = std::getenv("HALYARD_STORM_SECONDS");
    return wanted != nullptr ? std::atoi(wanted) : 0;
}

// HALYARD_STORM_SECONDS lets it run for longer.
TEST_F(HostStormTest, anInstanceStandsWhateverAHostDoes) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds());
    for (unsigned seed = 1; !HasFailure() && (seed <= 4 || std::chrono::steady_clock::now() < end); ++seed) {
        PlainInstance instance;
        instance.start();
        RandomHost host(instance, seed);
        for (int i = 0; i < 600 && !HasFatalFailure(); ++i) host.step();
        instance.deactivate();
        EXPECT_EQ(instance.graph().pool().heldCount(), 0) << seed;
        // It is still what it was: reset, it is a delay again.
        instance.reopen();
        instance.registry().activateFactoryPreset(0);
        instance.setExtParam(0, 1.0);
        play(instance, silence(4096));
        Sound input = silence(4096);
        input[0][0] = 0.5;
        EXPECT_EQ(play(instance, input)[0][1667], 0.5) << seed;
        EXPECT_EQ(instance.latencySamples(), 1667) << seed;
    }
}

// Each instance's sound tells whether another one has touched it: a level that is its own.
TEST_F(HostStormTest, instancesOnSeveralThreadsDoNotTouchEachOther) {
#if defined(__SANITIZE_THREAD__)
    constexpr int kInstances = 24;
#else
    constexpr int kInstances = 200;
#endif
    std::vector<std::unique_ptr<PlainInstance>> instances;
    for (int i = 0; i < kInstances; ++i) {
        instances.push_back(std::make_unique<PlainInstance>());
        instances.back()->start();
        instances.back()->setExtParam(0, 1.0);
        instances.back()->param("instance-name").setString(0, 0, std::to_string(i), nullptr);
    }
    const auto levelOf = [](int i) { return 0.001 * (i + 1); };
    std::atomic<int> wrongCount{0};
    const auto play = [&](int first) {
        std::mt19937 random(static_cast<unsigned>(first));
        for (int i = first; i < kInstances; i += 2) {
            const Sound input(2, Channel(512, levelOf(i)));
            for (int block = 0; block < 6; ++block) {
                const Sound output = WrapperFixture::play(*instances[static_cast<std::size_t>(i)], input);
                wrongCount += block == 5 && (output[0].back() != levelOf(i) || output[1].front() != levelOf(i));
            }
        }
        // Closed in random order, beside the other thread's.
        std::vector<int> mine;
        for (int i = first; i < kInstances; i += 2) mine.push_back(i);
        std::shuffle(mine.begin(), mine.end(), random);
        for (const int i : mine) {
            PlainInstance& instance = *instances[static_cast<std::size_t>(i)];
            wrongCount += text(instance.param("instance-name").getString(0, 0)) != std::to_string(i);
            instances[static_cast<std::size_t>(i)].reset();
        }
    };
    std::thread other(play, 1);
    play(0);
    other.join();
    EXPECT_EQ(wrongCount.load(), 0);
}

}  // namespace
}  // namespace brt
