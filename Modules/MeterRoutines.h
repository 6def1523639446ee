// SPDX-License-Identifier: LicenseRef-Halyard
// What all meters are made of besides their loops (MeterKernel.h): how fast they smooth, how long their frames are, and
// the filter that makes a level a loudness. Threads: every operation is [any].
#pragma once

#include "Modules/MeterKernel.h"
#include "Modules/ProcessorBuild.h"

namespace brt {

// What a frame shows, as linear factors.
struct MeterReading {
    double level;
    double peak;
};

// Of a one-pole low-pass that is 3 dB down at 1 / (1.362 * seconds) Hz: after a step it has come within 1% of the
// target after that time. 0 seconds give the fastest that a sample rate allows.
double smoothingCoefficient(double seconds, double sampleRate) noexcept;
// The same for the way back of a peak: exactly 1, no smoothing, below 0.1 ms.
double releaseCoefficient(double seconds, double sampleRate) noexcept;

// Samples of a frame: an even number, so that it has a middle, and 32 at least. REQUIRES: fps > 0.
int meterFrameLength(double sampleRate, double fps) noexcept;

// A time in whole samples, 1 at least.
int samplesOf(double seconds, double sampleRate) noexcept;

// The two filters of a loudness: a high-pass at 38 Hz and a shelf that raises what lies above 1.5 kHz by 4 dB, for the
// effect of the head. Forms by bandwidth of R. Bristow-Johnson, "Cookbook formulae for audio equalizer biquad filter
// coefficients". Their states are silent.
MeterFilter loudnessHighPass(double sampleRate) noexcept;
MeterFilter loudnessShelf(double sampleRate) noexcept;

// The loops of a build.
const MeterKernel& meterKernel(ProcessorBuild build) noexcept;

}  // namespace brt
