// SPDX-License-Identifier: LicenseRef-Halyard
// Instances beside each other, on several threads.
#include "WrapperFixture.h"

#include <atomic>
#include <random>
#include <thread>

namespace brt {
namespace {

using ManyInstancesTest = WrapperFixture;

// Each instance's sound tells whether another one has touched it: a level that is its own.
TEST_F(ManyInstancesTest, instancesOnSeveralThreadsDoNotTouchEachOther) {
#if defined(__SANITIZE_THREAD__)
    constexpr int kInstances = 16;
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
