// SPDX-License-Identifier: LicenseRef-Halyard
// The worst block when the routing changes in play.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <vector>

#include "BenchTree.h"
#include "Targets.h"
#include "Tools/Halyard/CToolInstance.h"

namespace {

// A channel gets a group of its own, two channels come, and all goes back; each time the block that has to build it.
// An iteration is the worst of ten rounds.
void routingChange(benchmark::State& state) {
    using Clock = std::chrono::steady_clock;
    constexpr int kFrames = 512;
    constexpr int kMostChannels = 4;
    const std::vector<std::vector<int>> groupsOfChannels = {{0, 1}, {0, 0, 1, 1}, {0, 0}};
    bench::startApplication();
    brt::CToolInstance instance;
    instance.setLayout(2, 48000.0, 2);
    std::vector<double> in(kFrames);
    for (std::size_t i = 0; i < in.size(); ++i) in[i] = 1.6 * std::sin(0.377 * static_cast<double>(i));
    std::vector<double> out(kFrames * kMostChannels);
    const std::vector<const double*> inputs(kMostChannels, in.data());
    std::vector<double*> outputs;
    for (int i = 0; i < kMostChannels; ++i) outputs.push_back(out.data() + i * kFrames);
    const auto play = [&] { instance.graph().process(inputs.data(), outputs.data(), kMostChannels, kFrames); };
    for (auto _ : state) {
        std::chrono::duration<double> worst{0.0};
        for (int round = 0; round < 10; ++round) {
            for (const std::vector<int>& groups : groupsOfChannels) {
                std::vector<brt::CAudioChannel> table;
                for (const int group : groups)
                    table.push_back({.number = static_cast<int>(table.size()), .group = group});
                instance.graph().makeSpares();
                const Clock::time_point start = Clock::now();
                instance.graph().setInput(table, 48000.0);
                play();
                worst = std::max(worst, std::chrono::duration<double>(Clock::now() - start));
                for (int i = 0; i < 3; ++i) play();
            }
        }
        state.SetIterationTime(worst.count());
    }
}
BENCHMARK(routingChange)->UseManualTime();

const bool kTargets = bench::addTarget({"worst block of 512 when the routing changes, of 10.67 ms",
                                        "routingChange/manual_time", "", bench::Target::kAtMost, 5.33e6, 1.33e6});

}  // namespace
