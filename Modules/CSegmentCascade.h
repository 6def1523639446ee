// SPDX-License-Identifier: LicenseRef-Halyard
// One channel from 2x up to 128x the host's rate, through the clipping function, and back to 2x: the fast form, for
// builds with vectors. It computes what CRingCascade computes, with roundings of its own, in sub-blocks of one length.
// Owner: CHalyardCore. Threads: one at a time. Memory is taken in the constructor only.
#pragma once

#include <cstddef>

#include "Modules/CAlignedBlock.h"
#include "Modules/ProcessorBuild.h"
#include "Modules/SegmentKernel.h"
#include "Platform/Annotations.h"

namespace brt {

struct ClipSettings;

class CSegmentCascade {
public:
    static constexpr int kSubBlock = kSegmentSubBlock;  // in host samples

    // [any] False for builds without vectors.
    static bool existsFor(ProcessorBuild build);

    // [init] REQUIRES: existsFor(build).
    explicit CSegmentCascade(ProcessorBuild build);

    // [any] False when the constructor found no memory; then nothing else may be called.
    bool isReady() const { return m_state.size() != 0; }

    // [audio] As if silence had come before.
    void reset() noexcept BRT_REALTIME { m_state.clear(); }

    // [audio] Takes 2 * kSubBlock samples at 2x from `in` and writes as many to `out`, which may be `in`. `settings`
    // tells for each of the kSubBlock host samples how to clip.
    void process(const double* in, const ClipSettings* settings, double* out) noexcept BRT_REALTIME {
        m_kernel.process(m_state.data(), in, settings, out);
    }

private:
    const SegmentKernel& m_kernel;
    CAlignedBlock<std::byte> m_state;
};

}  // namespace brt
