// SPDX-License-Identifier: LicenseRef-Halyard
// Halves the rate of a stream with a half-band filter. The gain is 2: six stages in a row give 64, which the FFT stage
// behind them takes back.
// Owner: CRingCascade, by value. Threads: one at a time. Allocates nothing.
//
// The newest input lies in a ring with a mirror of its first samples, as in CHalfbandUpsampler. Input is copied into it
// before any output is written, so a stage works in place: the output may go where the input came from.
// Invariants between calls: both positions lie in the ring; `pending` is 0, or -1 when the last count was odd (it was
// rounded up, and the next call needs one sample less for its first output).
#pragma once

#include "Modules/CHalfbandUpsampler.h"
#include "Modules/HalfbandStages.h"
#include "Platform/Annotations.h"

namespace brt {

class CHalfbandDownsampler {
public:
    // [init] `stage` as makeCascadeStages gives it: its filter has 3, 4, 5, 6 or 14 taps a side. It outlives this.
    explicit CHalfbandDownsampler(const HalfbandStage& stage) noexcept;

    // [audio] Forgets all input: what follows is as if silence had come before.
    void reset() noexcept BRT_REALTIME;

    // [audio] Takes `count` samples from `src` and writes half as many to `dst`, which may be `src`.
    void process(const double* src, int count, double* dst) noexcept BRT_REALTIME;

    int base() const noexcept { return m_base; }
    int mirrorLen() const noexcept { return m_mirrorLen; }
    int delay() const noexcept { return m_delay; }
    int pending() const noexcept { return m_pending; }
    int writePos() const noexcept { return m_writePos; }
    int readPos() const noexcept { return m_readPos; }

private:
    static constexpr int kMaxMirror = 55;

    // Writes `count` outputs for the windows from readPos on; one function per length of filter.
    using Filter = void (CHalfbandDownsampler::*)(int count, double* dst) noexcept;
    template <int tapCount>
    void filter(int count, double* dst) noexcept;
    static Filter filterFor(int tapCount) noexcept;

    double m_ring[kRingLength + kMaxMirror] = {};
    const double* m_taps;  // not owned: the stage's description's
    int m_base;
    int m_mirrorLen;
    int m_delay;
    int m_pending = 0;
    int m_writePos = 0;
    int m_readPos = 0;
    Filter m_filter;
};

}  // namespace brt
