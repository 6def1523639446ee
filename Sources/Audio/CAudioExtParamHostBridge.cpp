// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioExtParamHostBridge.h"

namespace brt {

void CHostCall::defer(CAudioExtParamHostBridge& bridge, EKind kind, int extIndex, double value) {
    deferCall(std::unique_ptr<CDeferredCall>(new CHostCall(bridge, kind, extIndex, value)));
}

void CHostCall::run() {
    switch (m_kind) {
    case EKind::kBeginEdit: return m_bridge.hostBeginEdit(m_extIndex);
    case EKind::kAutomate: return m_bridge.hostAutomate(m_extIndex, m_value);
    case EKind::kEndEdit: return m_bridge.hostEndEdit(m_extIndex);
    case EKind::kUpdateDisplay: return m_bridge.hostUpdateDisplay();
    }
}

bool CHostCall::absorb(const CDeferredCall& later) {
    const auto* const call = dynamic_cast<const CHostCall*>(&later);
    if (call == nullptr || &call->m_bridge != &m_bridge || call->m_kind != m_kind) return false;
    if (m_kind != EKind::kAutomate || call->m_extIndex != m_extIndex) return false;
    m_value = call->m_value;
    return true;
}

}  // namespace brt
