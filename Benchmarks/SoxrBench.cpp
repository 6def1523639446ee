// SPDX-License-Identifier: LicenseRef-Halyard
// A peer for the chain: a well-known resampler, in double precision and at its very high quality, does the same work:
// up to 128x, the hard limit, and back.
#include "Targets.h"

#include <soxr.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr int kBlock = 512, kFactor = 128;

soxr_t resampler(double inputRate, double outputRate) {
    const soxr_io_spec_t io = soxr_io_spec(SOXR_FLOAT64_I, SOXR_FLOAT64_I);
    const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_VHQ, 0);
    const soxr_runtime_spec_t runtime = soxr_runtime_spec(1);
    return soxr_create(inputRate, outputRate, 1, nullptr, &io, &quality, &runtime);
}

void chain(benchmark::State& state) {
    soxr_t up = resampler(1, kFactor), down = resampler(kFactor, 1);
    if (up == nullptr || down == nullptr) return state.SkipWithError("soxr cannot resample by 128");
    std::vector<double> in(kBlock), out(4 * kBlock), wide(4 * kBlock * kFactor);
    for (int i = 0; i < kBlock; ++i) in[static_cast<std::size_t>(i)] = 1.6 * std::sin(0.377 * i);
    for (auto _ : state) {
        std::size_t made = 0;
        soxr_process(up, in.data(), in.size(), nullptr, wide.data(), wide.size(), &made);
        for (std::size_t i = 0; i < made; ++i) wide[i] = std::clamp(wide[i], -1.0, 1.0);
        soxr_process(down, wide.data(), made, nullptr, out.data(), out.size(), nullptr);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kBlock);
    soxr_delete(up);
    soxr_delete(down);
}

bool registerAll() {
    benchmark::RegisterBenchmark("chain/soxr/hard/512", chain);
    const auto target = [](const char* build, double bound, double stretch) {
        bench::addTarget({std::string(build) + ": faster than soxr VHQ", "chain/soxr/hard/512",
                          std::string("chain/") + build + "/hard/512", bench::Target::kAtLeast, bound, stretch});
    };
    target("baseline", 4.0, 5.0);
    target("avx2", 8.0, 10.0);
    return true;
}

const bool kRegistered = registerAll();

}  // namespace
