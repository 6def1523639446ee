// SPDX-License-Identifier: LicenseRef-Halyard
// What a sine becomes on its way through the chain: its harmonics, which belong to the curve, and the lines beside
// them, which are images of harmonics above half the rate. The sine repeats a whole, odd number of times in the stretch
// that is analysed, a power of two long; so each image falls on a bin of its own, and no window smears one into
// another. Threads: every operation is [any].
#pragma once

#include <vector>

#include "Tools/Halyard/CProcessor.h"

namespace brt {

struct ToneMeasurement {
    double frequencyHz = 0;  // of the sine: the nearest to the wish that repeats as said
    double sineLine = 0;     // amplitude of the sine in the output; full scale is 1
    double worstLine = 0;    // amplitude of the loudest line that is no harmonic
    double worstLineHz = 0;
    std::vector<double> lineAmplitudes;  // one a bin, from 0 to half the rate

    double binHz(int rateHz) const { return 0.5 * rateHz / static_cast<double>(lineAmplitudes.size() - 1); }
};

// REQUIRES: wishedHz above 0 and below half the rate.
ToneMeasurement measureTone(const ProcessorSettings& settings, double amplitude, double wishedHz, int rateHz);

// The loudest image that clipping at full scale and 128 times the rate makes of a sine even with perfect filters, up to
// `bandHz`: the harmonics above 64 times the rate fold back whatever comes behind. From the Fourier series of the
// clipped sine, and as a factor of the sine that is left. 0 for an amplitude that doesn't clip.
double idealWorstRatio(double amplitude, double frequencyHz, int rateHz, double bandHz);

}  // namespace brt
