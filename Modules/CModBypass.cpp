// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CModBypass.h"

namespace brt {

void CModBypassDef::describeClass(CClassInfo& info) { CAudioProcessDefBase::describeClass(info); }

std::unique_ptr<CAudioProcessBase> CModBypassDef::createProcess() const { return std::make_unique<CModBypass>(); }

void CModBypassModule::bindParams() {
    bind(m_enable, 0);
    bind(m_groupSolo, 1);
}

void CModBypassModule::update() {
    if (isFullUpdate()) m_dry = findPartner();
    m_isWet = value(m_enable, 0.0) < 0.5;
    m_isSilent = (!m_isWet && m_dry == nullptr) || isSilencedBySolo();
    if (m_isSilent) m_isWet = false;
}

// Whether groups are soloed, but not this module's.
bool CModBypassModule::isSilencedBySolo() const noexcept {
    if (m_groupSolo.values == nullptr) return false;
    bool isAnySoloed = false;
    for (int g = 0; g < m_groupSolo.values->groupCount(); ++g) {
        if (m_groupSolo.values->elementCount(g) == 0 || m_groupSolo.values->values(g)[0] < 0.5) continue;
        if (g == group()) return false;
        isAnySoloed = true;
    }
    return isAnySoloed;
}

void CModBypassModule::process() {
    if (m_isWet) {
        output(0).buffer = inputBuffer(0);
    } else if (!m_isSilent && (*m_dry)->buffer) {
        output(0).buffer = (*m_dry)->buffer;
    } else if (!m_isSilent) {
        output(0).buffer = pool().takeSilentBlock(blockLength());
    } else {
        output(0).buffer = pool().takeBlock(blockLength());
        m_guard.fill(output(0).buffer.samples(), blockLength());
    }
}

}  // namespace brt
