// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CSegmentCascade.h"

#include "Modules/ProcessorBuild_p.h"

namespace brt {

BRT_TABLE_PER_BUILD(SegmentKernel, kSegmentKernel, segmentKernel)

bool CSegmentCascade::existsFor(ProcessorBuild build) { return segmentKernel(build).process != nullptr; }

CSegmentCascade::CSegmentCascade(ProcessorBuild build) : m_kernel(segmentKernel(build)) {
    // Without memory isReady() says so.
    static_cast<void>(m_state.allocate(m_kernel.stateBytes));
}

}  // namespace brt
