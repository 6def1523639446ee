// SPDX-License-Identifier: LicenseRef-Halyard
// One channel from 2x up to 128x the host's rate, through the clipping function, and back to 2x: the plain form, in
// which every stage keeps its newest input in a ring and writes straight into the ring of the next.
// Owner: CHalyardCore. Threads: one at a time. Allocates nothing.
#pragma once

#include "Modules/CHalfbandDownsampler.h"
#include "Modules/CHalfbandUpsampler.h"
#include "Modules/ClipCurve.h"
#include "Modules/HalfbandStages.h"
#include "Platform/Annotations.h"

namespace brt {

class CRingCascade {
public:
    // [init] `stages` outlives this.
    explicit CRingCascade(const CascadeStages& stages) noexcept;

    // [audio] As if silence had come before.
    void reset() noexcept BRT_REALTIME;

    // [audio] The longest sub-block, in host samples, that is no longer than `left` and that every stage up can write
    // without a wrap of the next stage's ring. 1 to 15.
    int subBlockLength(int left) const noexcept BRT_REALTIME;

    // [audio] Where the caller puts the two samples at 2x of each host sample before it calls process.
    double* input() noexcept { return m_up[0].writePointer(); }

    // [audio] Runs a sub-block of subBlockLength() host samples. Returns its 2 * hostSamples samples at 2x, valid until
    // the next call.
    const double* process(int hostSamples, const ClipSettings& settings) noexcept BRT_REALTIME;

    const CHalfbandUpsampler& up(int i) const noexcept { return m_up[i]; }
    const CHalfbandDownsampler& down(int i) const noexcept { return m_down[i]; }

private:
    static constexpr int kMaxSubBlock = 64;

    double m_work[kMaxSubBlock * kCascadeFactor] = {};  // at 128x
    CHalfbandUpsampler m_up[kHalfbandStages];
    CHalfbandDownsampler m_down[kHalfbandStages];
};

}  // namespace brt
