// SPDX-License-Identifier: LicenseRef-Halyard
// One channel of the clipper: clips against 1.0 at 128 times the host's rate and comes back to the host's rate.
//
//   fftUp      host rate to 2x, with the sharp edge at half the host's rate
//   cascade    2x to 128x, the clipping function, 128x to 2x
//   fftDown    2x to host rate, with the sharp edge at 0.485 of it
//
// Nothing in it depends on the host's rate. The output lags by latencySamples(), and is the same bit for bit however
// the host cuts its blocks.
//
// The cascade has a plain form, rings, which the portable build runs in step with the FFT stages, and a fast one,
// segments. That one runs late: the FFT stages work in hops of 624 samples, and what comes in during a hop is not heard
// before the hop is over. So the sub-blocks of the fast form all have one length and lie on a grid of their own, each
// runs when its samples are complete, with the settings that held when they came in, and a host's block of one sample
// costs little more than a 512th of one of 512.
// Owner: the module of a channel, or whoever wants to clip. Threads: one at a time; only construction and destruction
// touch what channels share, under a lock. Memory is taken in the constructor only.
#pragma once

#include <memory>

#include "Modules/CAlignedBlock.h"
#include "Modules/CFFTDownsampler.h"
#include "Modules/CFFTUpsampler.h"
#include "Modules/CRingCascade.h"
#include "Modules/CSegmentCascade.h"
#include "Modules/ClipCurve.h"
#include "Modules/ProcessorBuild.h"
#include "Platform/Annotations.h"

namespace brt {

class CHalyardCore {
public:
    // [init] `build` is one that this machine supports.
    explicit CHalyardCore(ProcessorBuild build = processorBuild());
    ~CHalyardCore();
    CHalyardCore(const CHalyardCore&) = delete;
    CHalyardCore& operator=(const CHalyardCore&) = delete;

    // [audio] Settings of the samples to come; each processBlock takes them at once, without a ramp.
    double hardness = 1.0;  // 0 soft to 1 hard
    bool residue = false;   // give what clipping takes away instead of what it leaves

    // [audio] What follows is as if silence had come before. The settings stay.
    void reset() noexcept BRT_REALTIME;

    // [audio] Takes and writes `sampleCount` samples at the host's rate; below 1 does nothing. `in` and `out` are
    // apart. Whatever `in` holds (NaN, infinities, denormals), the time it takes is the same.
    void processBlock(const double* in, double* out, int sampleCount) noexcept BRT_REALTIME;

    // [any] How far the output lags behind the input, in host samples.
    int latencySamples() const noexcept;

    // [any] The form of the inner loops, as asked for at construction.
    ProcessorBuild build() const noexcept { return m_build; }

    // [any] False when the constructor found no memory: the output is silence then.
    bool isReady() const noexcept;

private:
    static constexpr int kHop = 624;  // host samples that complete a block of the FFT stages

    ClipSettings settings() const noexcept;
    void processRings(const double* in, double* out, int sampleCount) noexcept BRT_REALTIME;
    void processSegments(const double* in, double* out, int sampleCount) noexcept BRT_REALTIME;
    void clipWhatIsComplete() noexcept BRT_REALTIME;

    const ProcessorBuild m_build;
    CFFTUpsampler m_fftUp;
    CFFTDownsampler m_fftDown;

    // One of the two.
    std::unique_ptr<CRingCascade> m_rings;
    std::unique_ptr<CSegmentCascade> m_segments;

    // With segments: host samples of this hop that have come in, that have gone through the cascade, and their
    // settings.
    int m_arrived = 0;
    int m_clipped = 0;
    CAlignedBlock<ClipSettings> m_arrivedWith;  // kHop of them
};

}  // namespace brt
