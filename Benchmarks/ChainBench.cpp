// SPDX-License-Identifier: LicenseRef-Halyard
// The whole chain of one channel, per host sample: every build, hard and soft, by host block; the longest call; the
// memory; input that is no sound; and what stands between the FFT stages alone. Names: chain/BUILD/CURVE/BLOCK.
#include "Builds.h"
#include "Modules/CHalyardCore.h"
#include "RingsAvx2.h"
#include "Targets.h"

#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace {

using brt::CHalyardCore;
using brt::ProcessorBuild;

constexpr double kHard = 1.0, kSoft = 0.5;
constexpr int kSignalLength = 8192;

// A sine that clips, under a little noise.
std::vector<double> signal() {
    std::vector<double> samples(kSignalLength);
    unsigned random = 1;
    for (int i = 0; i < kSignalLength; ++i) {
        random = random * 1664525u + 1013904223u;
        samples[static_cast<std::size_t>(i)] = 1.6 * std::sin(0.377 * i) + 0.4 * (random / 4294967296.0 - 0.5);
    }
    return samples;
}

// Runs `process(in, out, block)` over the signal again and again.
template <class Process>
void runBlocks(benchmark::State& state, const std::vector<double>& in, int block, Process process) {
    std::vector<double> out(static_cast<std::size_t>(block));
    int next = 0;
    for (auto _ : state) {
        process(in.data() + next, out.data(), block);
        benchmark::ClobberMemory();
        next = next + 2 * block <= kSignalLength ? next + block : 0;
    }
    state.SetItemsProcessed(state.iterations() * block);
}

void chain(benchmark::State& state, ProcessorBuild build, double hardness, int block, const std::vector<double>& in) {
    CHalyardCore core(build);
    core.hardness = hardness;
    runBlocks(state, in, block, [&](auto... arguments) { core.processBlock(arguments...); });
}

// Blocks of 64: how the calls lie against the transforms repeats after 39 of them. The time of the longest, by medians
// over many rounds, so that what else the machine does falls out.
void longestCall(benchmark::State& state, ProcessorBuild build, double hardness) {
    constexpr int block = 64, calls = 39, rounds = 21;
    using Clock = std::chrono::steady_clock;
    const std::vector<double> in = signal();
    std::vector<double> out(block);
    CHalyardCore core(build);
    core.hardness = hardness;
    for (auto _ : state) {
        double seconds[calls][rounds];
        for (int round = 0; round < rounds; ++round) {
            for (int call = 0; call < calls; ++call) {
                const auto begin = Clock::now();
                core.processBlock(in.data() + call * block, out.data(), block);
                seconds[call][round] = std::chrono::duration<double>(Clock::now() - begin).count();
            }
        }
        double longest = 0.0;
        for (auto& times : seconds) {
            std::nth_element(times, times + rounds / 2, times + rounds);
            longest = std::max(longest, times[rounds / 2]);
        }
        state.SetIterationTime(longest);
    }
    state.SetItemsProcessed(state.iterations() * block);
}

// What one more channel takes from the heap, as the heap itself counts; what channels share is there already.
void memory(benchmark::State& state, ProcessorBuild build) {
    constexpr std::size_t channels = 16;
    const auto heapBytes = [] {
        const struct mallinfo2 info = mallinfo2();
        return static_cast<double>(info.uordblks + info.hblkhd);
    };
    double megabytes = 0.0;
    for (auto _ : state) {
        const CHalyardCore first(build);
        std::vector<std::unique_ptr<CHalyardCore>> more(channels);
        // What earlier channels have left in the pool would cost these nothing.
        brt::CRealFFTPool::instance().freeAll();
        const double before = heapBytes();
        for (auto& core : more) core = std::make_unique<CHalyardCore>(build);
        megabytes = (heapBytes() - before) / channels / 1e6;
    }
    state.counters[bench::kMegabytes] = megabytes;
}

// The half-band stages and the clipping function alone, per host sample.
void segments(benchmark::State& state, ProcessorBuild build, double hardness) {
    constexpr int block = brt::CSegmentCascade::kSubBlock;
    brt::CSegmentCascade cascade(build);
    const brt::ClipSettings everywhere = {hardness, false};
    const std::vector<brt::ClipSettings> settings(block, everywhere);
    const std::vector<double> in = signal();
    double out[2 * block];
    int next = 0;
    for (auto _ : state) {
        cascade.process(in.data() + next, settings.data(), out);
        benchmark::ClobberMemory();
        next = next + 4 * block <= kSignalLength ? next + 2 * block : 0;
    }
    state.SetItemsProcessed(state.iterations() * block);
}

template <class Stage>
void ringStage(benchmark::State& state, const brt::HalfbandStage& description, int samplesPerHostSample) {
    constexpr int block = 8;
    Stage stage(description);
    const std::vector<double> in = signal();
    std::vector<double> out(2 * block * 128);
    for (auto _ : state) {
        stage.process(in.data(), block * samplesPerHostSample, out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * block);
}

#if defined(BENCH_RINGS_AVX2)
void ringsAvx2(benchmark::State& state, double hardness) {
    brt::CFFTUpsampler fftUp(ProcessorBuild::kAvx2);
    brt::CFFTDownsampler fftDown(ProcessorBuild::kAvx2);
    bench::RingsAvx2 rings;
    runBlocks(state, signal(), 512, [&](const double* in, double* out, int left) {
        while (left > 0) {
            const int count = rings.subBlockLength(left);
            fftUp.process(in, count, rings.input());
            fftDown.process(rings.process(count, hardness), 2 * count, out);
            in += count;
            out += count;
            left -= count;
        }
    });
}
#endif

void registerBuild(ProcessorBuild build) {
    using bench::Target;
    const std::string name = bench::nameOf(build), prefix = "chain/" + name;
    for (const double hardness : {kHard, kSoft}) {
        const std::string curve = prefix + (hardness == kHard ? "/hard" : "/soft");
        for (const int block : {512, 64, 16, 1}) {
            benchmark::RegisterBenchmark((curve + "/" + std::to_string(block)).c_str(), chain, build, hardness, block,
                                         signal());
        }
        benchmark::RegisterBenchmark((curve + "/64/longest").c_str(), longestCall, build, hardness)
            ->Iterations(20)
            ->UseManualTime();
        if (brt::CSegmentCascade::existsFor(build)) {
            benchmark::RegisterBenchmark(("cascade/" + name + (hardness == kHard ? "/hard" : "/soft")).c_str(),
                                         segments, build, hardness);
        }
    }
    benchmark::RegisterBenchmark((prefix + "/memory").c_str(), memory, build)->Iterations(1);
    bench::addTarget({name + ": memory of a channel", prefix + "/memory/iterations:1", "", Target::kAtMost, 0.5, 0.3});

    const std::vector<double> notNumbers(kSignalLength, std::numeric_limits<double>::quiet_NaN());
    const std::vector<double> denormals(kSignalLength, 1e-310);
    benchmark::RegisterBenchmark((prefix + "/soft/512/nan").c_str(), chain, build, kSoft, 512, notNumbers);
    benchmark::RegisterBenchmark((prefix + "/soft/512/denormal").c_str(), chain, build, kSoft, 512, denormals);

    const auto target = [&](const std::string& what, const std::string& figure, const std::string& against,
                            double bound, double stretch) {
        bench::addTarget({name + ": " + what, prefix + figure, prefix + against, Target::kAtMost, bound, stretch});
    };
    if (build != ProcessorBuild::kPortable) target("soft against hard", "/soft/512", "/hard/512", 1.8, 1.7);
    target("blocks of 64 against 512", "/hard/64", "/hard/512", 1.1, 0);
    target("blocks of 16 against 512", "/hard/16", "/hard/512", 1.25, 0);
    target("blocks of 1 against 512", "/hard/1", "/hard/512", 4.0, 0);
    target("longest call of 64 against the mean, hard", "/hard/64/longest/iterations:20/manual_time", "/hard/64", 2.8,
           2.6);
    target("NaN against sound", "/soft/512/nan", "/soft/512", 2.0, 0);
    target("denormals against sound", "/soft/512/denormal", "/soft/512", 2.0, 0);
}

bool registerAll() {
    for (const ProcessorBuild build : bench::supportedBuilds()) registerBuild(build);
    for (int i = 0; i < brt::kHalfbandStages; ++i) {
        const std::string number = std::to_string(i);
        benchmark::RegisterBenchmark(("rings/U" + number).c_str(), ringStage<brt::CHalfbandUpsampler>,
                                     brt::kCascadeStages.up[i], 2 << i);
        benchmark::RegisterBenchmark(("rings/D" + number).c_str(), ringStage<brt::CHalfbandDownsampler>,
                                     brt::kCascadeStages.down[i], 128 >> i);
    }
#if defined(BENCH_RINGS_AVX2)
    if (brt::isProcessorBuildSupported(ProcessorBuild::kAvx2)) {
        benchmark::RegisterBenchmark("chain/rings-avx2/hard/512", ringsAvx2, kHard);
        bench::addTarget({"avx2: faster than rings compiled alike", "chain/rings-avx2/hard/512", "chain/avx2/hard/512",
                          bench::Target::kAtLeast, 3.2, 4.0});
    }
#endif
    return true;
}

const bool kRegistered = registerAll();

}  // namespace
