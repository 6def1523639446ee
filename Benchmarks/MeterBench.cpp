// SPDX-License-Identifier: LicenseRef-Halyard
// What it costs to be watched: the meters' arithmetic for each sample, and a record on its way from the audio thread to
// a window. Samples are noise around full scale, so that every branch is taken now and then.
#include "Audio/CAudioVizCollector.h"
#include "Builds.h"
#include "Core/CError.h"
#include "Core/CWriteSeqBuffer.h"
#include "Modules/CGainReductionCore.h"
#include "Modules/CLevelMeterCore.h"
#include "Targets.h"

#include <malloc.h>

#include <random>
#include <string>
#include <vector>

namespace {

using brt::EMeterRoutine;
using brt::ProcessorBuild;

constexpr int kBlock = 512;

std::vector<double> noise(unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> value(-1.5, 1.5);
    std::vector<double> samples(kBlock);
    for (double& x : samples) x = value(random);
    return samples;
}

void measure(benchmark::State& state, brt::MeterSettings settings, ProcessorBuild build) {
    const std::vector<double> first = noise(1), second = noise(2);
    std::vector<double> peaks(static_cast<std::size_t>(settings.peakBlocks()));
    std::vector<double> window(static_cast<std::size_t>(settings.windowLength()));
    brt::CLevelMeterCore core(build);
    core.setUp(settings, peaks.data(), window.data());
    for (auto _ : state) {
        core.process(first.data(), second.data(), kBlock);
        benchmark::DoNotOptimize(core.read(1.0, 1.0));
    }
    state.SetItemsProcessed(state.iterations() * kBlock);
}

void reduce(benchmark::State& state, ProcessorBuild build) {
    const std::vector<double> samples = noise(1);
    brt::CGainReductionCore core(build);
    core.setUp(44100.0, 0.75);
    core.setHardness(0.5);
    for (auto _ : state) {
        core.process(samples.data(), kBlock);
        benchmark::DoNotOptimize(core.factor());
    }
    state.SetItemsProcessed(state.iterations() * kBlock);
}

// A record is made, posted, taken by the other side and freed: 16 at a time, as a window finds them. "heap" counts the
// bytes that this took from the system once it had found its size.
void post(benchmark::State& state) {
    brt::CAudioVizCollector collector;
    brt::VizSlot& slot = collector.getSlot("plugin.modMain.modMeterOut");
    slot.listenerCount = 1;
    const auto run = [&] {
        for (int i = 0; i < 16; ++i) collector.post(slot, std::make_unique<brt::CAudioVizDataMeter>());
        collector.finish();
    };
    run();
    const std::size_t before = mallinfo2().uordblks;
    for (auto _ : state) run();
    state.counters["heap"] = static_cast<double>(mallinfo2().uordblks - before);
    state.SetItemsProcessed(state.iterations() * 16);
}
BENCHMARK(post)->Name("viz/post");

// Nobody takes them: each pushes the oldest out.
void postToStalled(benchmark::State& state) {
    brt::CAudioVizCollector collector;
    brt::VizSlot& slot = collector.getSlot("plugin.modMain.modMeterOut");
    slot.listenerCount = 1;
    for (int i = 0; i < brt::CAudioVizCollector::kMostRecords; ++i)
        collector.post(slot, std::make_unique<brt::CAudioVizDataMeter>());
    for (auto _ : state) collector.post(slot, std::make_unique<brt::CAudioVizDataMeter>());
}
BENCHMARK(postToStalled)->Name("viz/post_stalled");

void save(benchmark::State& state) {
    const brt::CAudioVizDataMeter record;
    brt::CWriteSeqBuffer stream(brt::CWriteSeqBuffer::kStateBlockBytes);
    for (auto _ : state) {
        brt::discardError(record.saveTagged(stream));  // memory takes all
        if (stream.size() > 10000) stream.clear();
    }
}
BENCHMARK(save)->Name("viz/save");

bool registerAll() {
    const std::pair<const char*, brt::MeterSettings> kMeters[] = {
        {"level", {.rmsSeconds = 0.002, .releaseSeconds = 0.75}},
        {"difference", {.routine = EMeterRoutine::kDifference, .rmsSeconds = 3.0}},
        {"loudness", {.routine = EMeterRoutine::kLoudness, .rmsSeconds = 0.4}},
    };
    for (const ProcessorBuild build : bench::supportedBuilds()) {
        for (const auto& [name, settings] : kMeters)
            benchmark::RegisterBenchmark(("meter/" + std::string(name) + "/" + bench::nameOf(build)).c_str(), measure,
                                         settings, build);
        const std::string name = bench::nameOf(build);
        benchmark::RegisterBenchmark(("meter/reduction/" + name).c_str(), reduce, build);
        for (const std::string meter : {"level", "reduction"})
            bench::addTarget({name + ": " + meter + " meter against the clipper, a sample",
                              "meter/" + meter + "/" + name, "chain/" + name + "/hard/512", bench::Target::kAtMost,
                              0.06, 0});
    }
    return bench::addTarget(
        {"a record posted, taken and freed, ns", "viz/post", "", bench::Target::kAtMost, 60.0, 30.0});
}

[[maybe_unused]] const bool kRegistered = registerAll();

}  // namespace
