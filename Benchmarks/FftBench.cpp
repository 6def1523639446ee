// SPDX-License-Identifier: LicenseRef-Halyard
// The transforms one by one, and the two FFT stages per host sample. FftwBench.cpp has their peer.
// Transforms run on zeros, in place: their time does not depend on the values, and zeros stay zeros.
#include "Builds.h"
#include "Modules/CAlignedBlock.h"
#include "Modules/CFFTDownsampler.h"
#include "Modules/CFFTUpsampler.h"
#include "Modules/CRealFFTPool.h"
#include "Targets.h"

#include <string>
#include <vector>

namespace {

using brt::ProcessorBuild;

void transform(benchmark::State& state, int order, bool forward, ProcessorBuild build) {
    brt::CRealFFTRef fft = brt::CRealFFTPool::instance().acquire(order, build);
    brt::CAlignedBlock<double> data;
    if (!fft || !data.allocate(std::size_t{1} << order)) return state.SkipWithError("no memory");
    for (auto _ : state) {
        if (forward)
            fft->forward(data.data(), data.data());
        else
            fft->inverse(data.data(), data.data());
        benchmark::ClobberMemory();
    }
}

// `block` host samples a call.
void upStage(benchmark::State& state, ProcessorBuild build, int block) {
    brt::CFFTUpsampler stage(build);
    std::vector<double> in(static_cast<std::size_t>(block), 0.25), out(2 * in.size());
    for (auto _ : state) {
        stage.process(in.data(), block, out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * block);
}

void downStage(benchmark::State& state, ProcessorBuild build, int block) {
    brt::CFFTDownsampler stage(build);
    std::vector<double> in(2 * static_cast<std::size_t>(block), 0.25), out(static_cast<std::size_t>(block));
    for (auto _ : state) {
        stage.process(in.data(), 2 * block, out.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * block);
}

bool registerAll() {
    for (const ProcessorBuild build : bench::supportedBuilds()) {
        const std::string name = bench::nameOf(build);
        for (const int order : {10, 11}) {
            const std::string prefix = "fft/" + std::to_string(1 << order);
            benchmark::RegisterBenchmark((prefix + "/forward/" + name).c_str(), transform, order, true, build);
            benchmark::RegisterBenchmark((prefix + "/inverse/" + name).c_str(), transform, order, false, build);
        }
        for (const int block : {624, 1}) {
            const std::string suffix = "/" + name + "/" + std::to_string(block);
            benchmark::RegisterBenchmark(("fftUp" + suffix).c_str(), upStage, build, block);
            benchmark::RegisterBenchmark(("fftDown" + suffix).c_str(), downStage, build, block);
        }
    }
    return true;
}

const bool kRegistered = registerAll();

}  // namespace
