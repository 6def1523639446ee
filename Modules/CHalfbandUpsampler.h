// SPDX-License-Identifier: LicenseRef-Halyard
// Doubles the rate of a stream with a half-band filter: of each pair of outputs the first is an input sample, delayed,
// and the second the filter's value halfway to the next.
// Owner: CRingCascade, by value. Threads: one at a time. Allocates nothing.
//
// The newest input lies in a ring of kRingLength samples. Its first mirrorLen samples exist a second time behind its
// end, so a window that starts anywhere in the ring is contiguous. The stage before may write straight to
// writePointer(), as long as it writes at most room() samples; process() then skips the copy. Invariants between calls:
// both positions lie in the ring; the window that readPos starts ends with the newest sample.
#pragma once

#include "Modules/HalfbandStages.h"
#include "Platform/Annotations.h"

namespace brt {

inline constexpr int kRingLength = 1024;  // of every stage, a power of 2

class CHalfbandUpsampler {
public:
    // [init] `stage` as makeCascadeStages gives it: its filter has 3, 4, 5, 6 or 14 taps a side.
    explicit CHalfbandUpsampler(const HalfbandStage& stage) noexcept;

    // [audio] Forgets all input: what follows is as if silence had come before.
    void reset() noexcept BRT_REALTIME;

    // [audio] Takes `count` samples from `src` and writes 2 * count to `dst`, which must not overlap the ring or `src`.
    void process(const double* src, int count, double* dst) noexcept BRT_REALTIME;

    // [audio] Where the next samples go; room() of them fit without a wrap and without touching what is still read.
    double* writePointer() noexcept { return m_ring + m_writePos; }
    int room() const noexcept BRT_REALTIME;

    int base() const noexcept { return m_base; }
    int delay() const noexcept { return m_delay; }
    int mirrorLen() const noexcept { return m_mirrorLen; }
    int writePos() const noexcept { return m_writePos; }
    int readPos() const noexcept { return m_readPos; }

private:
    static constexpr int kMaxTaps = 14;
    static constexpr int kMaxMirror = 2 * kMaxTaps - 1;

    // Writes 2 * count outputs for the windows from readPos on; one function per length of filter.
    using Filter = void (CHalfbandUpsampler::*)(int count, double* dst) noexcept;
    template <int tapCount>
    void filter(int count, double* dst) noexcept;
    static Filter filterFor(int tapCount) noexcept;

    double m_ring[kRingLength + kMaxMirror] = {};
    alignas(16) double m_taps[kMaxTaps] = {};
    int m_base;
    int m_delay;
    int m_mirrorLen;
    int m_writePos = 0;
    int m_readPos = 0;
    Filter m_filter;
};

}  // namespace brt
