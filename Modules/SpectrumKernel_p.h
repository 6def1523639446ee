// SPDX-License-Identifier: LicenseRef-Halyard
// The products between the two transforms of an FFT stage, on packed spectra (RealFft.h), in place. Compiled per build.
#pragma once

namespace brt {

struct SpectrumKernel {
    // From the spectrum of `points` samples to that of twice as many, filtered: zeros between the samples repeat the
    // spectrum, mirrored, in the upper half. `spectrum` and `kernel` have 2 * points entries, 64-byte aligned.
    void (*widen)(double* spectrum, const double* kernel, int points);
    // From the spectrum of 2 * points samples to that of every second one, filtered: the bins of the upper half, which
    // the kernel is to have removed, are dropped.
    void (*narrow)(double* spectrum, const double* kernel, int points);
};

}  // namespace brt
