// SPDX-License-Identifier: LicenseRef-Halyard
// FFTW, as a peer to measure the transforms against; no part of the product. Planned by measuring, out of place, which
// is its faster way.
#include "Targets.h"

#include <fftw3.h>

#include <string>

namespace {

void fftw(benchmark::State& state, int order, bool forward) {
    const int size = 1 << order;
    double* real = fftw_alloc_real(static_cast<std::size_t>(size));
    fftw_complex* bins = fftw_alloc_complex(static_cast<std::size_t>(size) / 2 + 1);
    const fftw_plan plan = forward ? fftw_plan_dft_r2c_1d(size, real, bins, FFTW_MEASURE)
                                   : fftw_plan_dft_c2r_1d(size, bins, real, FFTW_MEASURE);
    for (int i = 0; i < size; ++i) real[i] = 0.0;
    for (int i = 0; i <= size / 2; ++i) bins[i][0] = bins[i][1] = 0.0;
    for (auto _ : state) {
        fftw_execute(plan);
        benchmark::ClobberMemory();
    }
    fftw_destroy_plan(plan);
    fftw_free(bins);
    fftw_free(real);
}

bool registerAll() {
    for (const int order : {10, 11}) {
        for (const bool forward : {true, false}) {
            const std::string prefix = "fft/" + std::to_string(1 << order) + (forward ? "/forward/" : "/inverse/");
            benchmark::RegisterBenchmark((prefix + "fftw").c_str(), fftw, order, forward);
            bench::addTarget(
                {prefix + "avx2 against FFTW's", prefix + "avx2", prefix + "fftw", bench::Target::kAtMost, 1.35, 1.0});
        }
    }
    return true;
}

const bool kRegistered = registerAll();

}  // namespace
