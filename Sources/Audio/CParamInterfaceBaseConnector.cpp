// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CParamInterfaceBaseConnector.h"

#include "Audio/CParamMessageHandler.h"
#include "Core/CError.h"

namespace brt {

void CParamInterfaceBaseConnector::setBase(CParamMessageHandler* base) {
    const CRankedLock lock(m_section);
    m_base = base;
}

CError* CParamInterfaceBaseConnector::processClientData(const CByteBuffer& bytes) {
    const CRankedLock lock(m_section);
    if (m_base == nullptr)
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CParamInterfaceBaseConnector_processClientData_NoBaseObject No base object defined.");
    BRT_TRY(getFullName(), m_base->handleMessage(bytes));
    return nullptr;
}

void CParamInterfaceBaseConnector::forgetClient(int clientId) {
    const CRankedLock lock(m_section);
    if (m_base != nullptr) m_base->onClientGone(clientId);
}

}  // namespace brt
