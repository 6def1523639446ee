// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CModGain.h"

#include <cmath>
#include <limits>

namespace brt {

void CModGainDef::describeClass(CClassInfo& info) { CAudioProcessDefBase::describeClass(info); }

std::unique_ptr<CAudioProcessBase> CModGainDef::createProcess() const { return std::make_unique<CModGain>(); }

void CModGainModule::bindParams() {
    bind(m_gain, 0);
    bind(m_mute, 1);
    bind(m_phaseInvert, 2);
}

void CModGainModule::update() {
    m_isMuted = value(m_mute, 0.0) >= 0.5;
    const double sign = value(m_phaseInvert, 0.0) >= 0.5 ? -1.0 : 1.0;
    m_factor = m_isMuted ? 0.0 : value(m_gain, 1.0) * sign;
    constexpr double kTolerance = std::numeric_limits<double>::epsilon();
    m_isActive = std::abs(m_factor - 1.0) > kTolerance * (std::abs(m_factor) + 1.0);
}

void CModGainModule::process() {
    CAudioBufferRef in = inputBuffer(0);
    if (!m_isActive) {
        output(0).buffer = std::move(in);
        return;
    }
    CAudioBufferRef out = pool().takeBlock(blockLength());
    double* const samples = out.samples();
    if (m_isMuted) {
        m_guard.fill(samples, blockLength());
    } else {
        const double* const source = in.samples();
        const double factor = m_factor;
        for (int i = 0; i < blockLength(); ++i) samples[i] = source[i] * factor;
    }
    output(0).buffer = std::move(out);
}

}  // namespace brt
