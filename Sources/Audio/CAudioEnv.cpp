// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioEnv.h"

#include "Core/CClassInfo.h"

namespace brt {

void CAudioEnv::describeClass(CClassInfo& info) { CObject::describeClass(info); }

void CAudioEnv::setActive(bool isActive) noexcept {
    const CSwapLock lock(m_section);
    m_isActive.store(isActive, std::memory_order_relaxed);
}

bool CAudioEnv::setSampleRate(double sampleRateHz) noexcept {
    if (!(sampleRateHz >= kLowestSampleRate && sampleRateHz <= kHighestSampleRate)) return false;
    const CSwapLock lock(m_section);
    m_sampleRate.store(sampleRateHz, std::memory_order_relaxed);
    return true;
}

}  // namespace brt
