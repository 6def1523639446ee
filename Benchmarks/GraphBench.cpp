// SPDX-License-Identifier: LicenseRef-Halyard
// The running graph around the clipper: what it costs beside the bare cores of its channels, and with its meters.
// Names: graph/CHANNELS, graph/watched, graph/unwatched.
#include <cmath>
#include <vector>

#include "BenchTree.h"
#include "Modules/CHalyardCore.h"
#include "Targets.h"
#include "Tools/Halyard/CToolInstance.h"

namespace {

constexpr int kBlock = 64;
constexpr int kBlocks = 128;

std::vector<double> signal() {
    std::vector<double> samples(kBlock * kBlocks);
    for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = 1.6 * std::sin(0.377 * static_cast<double>(i));
    return samples;
}

// One item is one sample of one channel.
void measure(benchmark::State& state, brt::CToolInstance& instance, int channels) {
    const std::vector<double> in = signal();
    std::vector<double> out(static_cast<std::size_t>(kBlock * channels));
    std::vector<const double*> inputs(static_cast<std::size_t>(channels));
    std::vector<double*> outputs;
    for (int i = 0; i < channels; ++i) outputs.push_back(out.data() + i * kBlock);
    int block = 0;
    for (auto _ : state) {
        for (const double*& input : inputs) input = in.data() + block * kBlock;
        instance.process(inputs.data(), outputs.data(), kBlock);
        benchmark::ClobberMemory();
        block = (block + 1) % kBlocks;
    }
    state.SetItemsProcessed(state.iterations() * kBlock * channels);
}

void graph(benchmark::State& state) {
    const int channels = static_cast<int>(state.range(0));
    bench::startApplication();
    brt::CToolInstance instance;
    instance.setLayout(channels, 48000.0, 2);
    measure(state, instance, channels);
}
BENCHMARK(graph)->Arg(2)->Arg(16);

constexpr const char* kMeters[] = {"plugin.modMain.modHal.modHalyardMeter", "plugin.modMain.modMeterIODiff",
                                   "plugin.modMain.modMeterOut"};

// A stereo instance whose three meters somebody watches, or has watched until now.
void watched(benchmark::State& state, bool isWatchedNow) {
    bench::startApplication();
    brt::CToolInstance instance;
    instance.setLayout(2, 48000.0, 2);
    for (const char* const meter : kMeters) instance.watch(meter);
    instance.settle();
    if (!isWatchedNow)
        for (const char* const meter : kMeters) instance.unwatch(meter);
    instance.settle();
    measure(state, instance, 2);
}
BENCHMARK_CAPTURE(watched, now, true)->Name("graph/watched");
BENCHMARK_CAPTURE(watched, before, false)->Name("graph/unwatched");

void bareCores(benchmark::State& state) {
    brt::CHalyardCore cores[2];
    const std::vector<double> in = signal();
    std::vector<double> out(kBlock);
    int block = 0;
    for (auto _ : state) {
        for (brt::CHalyardCore& core : cores) core.processBlock(in.data() + block * kBlock, out.data(), kBlock);
        benchmark::ClobberMemory();
        block = (block + 1) % kBlocks;
    }
    state.SetItemsProcessed(state.iterations() * kBlock * 2);
}
BENCHMARK(bareCores);

const bool kTargets = bench::addTarget({"a stereo instance against its bare cores, blocks of 64", "graph/2",
                                        "bareCores", bench::Target::kAtMost, 1.15, 1.05}) &&
                      bench::addTarget({"16 channels in 8 groups against 2 in one, a channel", "graph/16", "graph/2",
                                        bench::Target::kAtMost, 1.15, 1.05}) &&
                      bench::addTarget({"a stereo instance with all meters against one without", "graph/watched",
                                        "graph/2", bench::Target::kAtMost, 1.15, 1.1}) &&
                      bench::addTarget({"a stereo instance that nobody watches any more against one without",
                                        "graph/unwatched", "graph/2", bench::Target::kAtMost, 1.02, 1.01});

}  // namespace
