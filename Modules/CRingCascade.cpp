// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CRingCascade.h"

#include <algorithm>

namespace brt {

using Up = CHalfbandUpsampler;
using Down = CHalfbandDownsampler;

CRingCascade::CRingCascade(const CascadeStages& stages) noexcept
    : m_up{Up(stages.up[0]), Up(stages.up[1]), Up(stages.up[2]), Up(stages.up[3]), Up(stages.up[4]), Up(stages.up[5])},
      m_down{Down(stages.down[0]), Down(stages.down[1]), Down(stages.down[2]),
             Down(stages.down[3]), Down(stages.down[4]), Down(stages.down[5])} {}

void CRingCascade::reset() noexcept {
    for (CHalfbandUpsampler& stage : m_up) stage.reset();
    for (CHalfbandDownsampler& stage : m_down) stage.reset();
}

int CRingCascade::subBlockLength(int left) const noexcept {
    // The write positions advance in step and that of stage i is a multiple of its rate, so there is always room for
    // one.
    int length = std::min(left, kMaxSubBlock);
    for (int i = 0; i < kHalfbandStages; ++i) length = std::min(length, m_up[i].room() / (2 << i));
    return length;
}

const double* CRingCascade::process(int hostSamples, const ClipSettings& settings) noexcept {
    int count = 2 * hostSamples;
    for (int i = 0; i < kHalfbandStages; ++i) {
        double* next = i + 1 < kHalfbandStages ? m_up[i + 1].writePointer() : m_work;
        m_up[i].process(m_up[i].writePointer(), count, next);
        count *= 2;
    }
    clip(m_work, count, settings);
    for (CHalfbandDownsampler& stage : m_down) {
        stage.process(m_work, count, m_work);
        count /= 2;
    }
    return m_work;
}

}  // namespace brt
