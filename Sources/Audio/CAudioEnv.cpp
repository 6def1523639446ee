// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioEnv.h"

#include "Core/CClassInfo.h"
#include "Core/CError.h"

#include <algorithm>

namespace brt {

void CAudioEnv::describeClass(CClassInfo& info) { CObject::describeClass(info); }

CError* CAudioEnv::init() {
    BRT_TRY(getFullName(), CObject::init());
    const CObject* const project = findObject("shared::project");
    if (project != nullptr) setDefaultFrameRate(project->getAttrDouble("default-fps"));
    return nullptr;
}

bool CAudioEnv::setActive(bool isActive) noexcept {
    const CSwapLock lock(m_section);
    return m_isActive.exchange(isActive, std::memory_order_relaxed) != isActive;
}

bool CAudioEnv::setSampleRate(double sampleRateHz) noexcept {
    if (!(sampleRateHz >= kLowestSampleRate && sampleRateHz <= kHighestSampleRate)) return false;
    const CSwapLock lock(m_section);
    m_sampleRate.store(sampleRateHz, std::memory_order_relaxed);
    return true;
}

void CAudioEnv::requestFrameRate(double framesPerSecond) noexcept {
    if (!(framesPerSecond > 0.0)) return;
    const CSwapLock lock(m_section);
    m_requestedFrameRate = std::clamp(framesPerSecond, kLowestFrameRate, kHighestFrameRate);
}

void CAudioEnv::beginBlock(double endSeconds) noexcept {
    const CSwapLock lock(m_section);
    m_blockEndSeconds.store(endSeconds, std::memory_order_relaxed);
    m_frameRate.store(m_requestedFrameRate, std::memory_order_relaxed);
}

void CAudioEnv::setDefaultFrameRate(double framesPerSecond) noexcept {
    requestFrameRate(framesPerSecond);
    beginBlock(blockEndSeconds());
}

}  // namespace brt
