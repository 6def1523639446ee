// SPDX-License-Identifier: LicenseRef-Halyard
// The twelve half-band stages between 2x and 128x the host's rate: their filters, where each filter's window lies in
// the stage's stream, and the delay that follows. Known at compile time; both forms of the cascade are built from it.
//
// A half-band filter has a centre tap of 1 and taps at odd distances only, the same on both sides. Going up, the new
// samples between the old ones are sums of the taps; going down, every second sample is kept and the taps join it to
// its neighbours. A side's taps sum to 0.5, so a stage up has a gain of 1 and a stage down a gain of 2.
//
// Only the FFT stages in front and behind have a sharp edge. What is left for a stage here is to remove the images far
// away that its predecessor left, so the filters grow shorter as the rate grows.
#pragma once

namespace brt {

// One side of a filter, from the tap next to the centre outwards.
struct HalfbandFilter {
    int tapCount;
    double taps[14];
};

inline constexpr HalfbandFilter kFilterA = {
    14,
    {0.631240998626138, -0.19655597710631964, 0.1027684921342688, -0.059490988758402405, 0.0346988134060341,
     -0.019549960480486066, 0.010349142324331035, -0.005025002614623113, 0.0021821682186055525, -0.000822358834526356,
     0.00025827473074253247, -6.355752012851194e-05, 1.0958455299770852e-05, -1.0032273970755534e-06}};
inline constexpr HalfbandFilter kFilterB = {6,
                                            {0.612783922717009, -0.15000053763035304, 0.047575323515978485,
                                             -0.012320702804596599, 0.0021462442599168604, -0.00018425092390713776}};
inline constexpr HalfbandFilter kFilterC = {
    5, {0.6062680829563801, -0.1358822405377674, 0.03554430539178499, -0.006512702293187077, 0.0005825545039281257}};
inline constexpr HalfbandFilter kFilterD = {
    4, {0.598350286536635, -0.11999986080299097, 0.024132530818597356, -0.0024829565615183094}};
inline constexpr HalfbandFilter kFilterE = {3, {0.5860080813907921, -0.09776218587529621, 0.011754104552897233}};

// A stage's window holds its newest mirrorLen + 1 input samples.
struct HalfbandStage {
    HalfbandFilter filter;
    int base;       // the centre's place in the window, counted from the oldest sample
    int mirrorLen;  // so many samples before the newest one are still read
    int delay;      // of the centre against the newest sample, in input samples of the stage
};

inline constexpr int kHalfbandStages = 6;                    // each way
inline constexpr int kCascadeFactor = 2 << kHalfbandStages;  // the clipping function runs at 128x

struct CascadeStages {
    HalfbandStage up[kHalfbandStages];    // from 2x to 128x
    HalfbandStage down[kHalfbandStages];  // from 128x to 2x
    int delayAt2x;                        // of all stages so far, the first FFT stage among them, in samples at 2x
};

// The window of an up stage: the old sample of each pair and, between it and the next, the new one.
constexpr HalfbandStage makeUpStage(const HalfbandFilter& filter) {
    const int n = filter.tapCount;
    return {filter, n - 1, 2 * n - 1, n};
}

// The window of a down stage, moved one sample back where `pad` is 1.
constexpr HalfbandStage makeDownStage(const HalfbandFilter& filter, int pad) {
    const int halfWidth = 2 * filter.tapCount - 1;
    return {filter, halfWidth, 2 * halfWidth + pad, halfWidth + pad};
}

// All stages behind a first FFT stage with `fftUpLatency` samples of delay at 2x. The whole chain shall delay by a
// whole number of host samples, so the delays summed so far must be even each time the rate halves: a stage that finds
// an even sum (its half-width is odd) pads its own delay by one sample.
constexpr CascadeStages makeCascadeStages(int fftUpLatency) {
    const HalfbandFilter upFilters[] = {kFilterA, kFilterB, kFilterC, kFilterD, kFilterE, kFilterE};
    const HalfbandFilter downFilters[] = {kFilterE, kFilterE, kFilterD, kFilterC, kFilterB, kFilterA};
    CascadeStages stages = {};
    int delay = fftUpLatency;
    for (int i = 0; i < kHalfbandStages; ++i) {
        stages.up[i] = makeUpStage(upFilters[i]);
        delay = (delay + stages.up[i].delay) * 2;
    }
    for (int i = 0; i < kHalfbandStages; ++i) {
        stages.down[i] = makeDownStage(downFilters[i], delay % 2 == 0 ? 1 : 0);
        delay = (delay + stages.down[i].delay) / 2;
    }
    stages.delayAt2x = delay;
    return stages;
}

// The stages of the product's chain, behind the delay that CFFTUpsampler tells.
inline constexpr int kFftUpLatency = 1648;
inline constexpr CascadeStages kCascadeStages = makeCascadeStages(kFftUpLatency);

}  // namespace brt
