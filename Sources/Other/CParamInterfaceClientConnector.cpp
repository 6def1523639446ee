// SPDX-License-Identifier: LicenseRef-Halyard
#include "Other/CParamInterfaceClientConnector.h"

#include "Audio/CParamMessageHandler.h"
#include "Core/CClassInfo.h"
#include "Core/CError.h"
#include "Core/CObjectAddress.h"
#include "Core/CObjectWatch.h"

namespace brt {
namespace {

constexpr CStringView kProcessEvent = "process-base-data";

}  // namespace

void CParamInterfaceClientConnector::describeClass(CClassInfo& info) {
    CObject::describeClass(info);
    static constexpr CEventInfo kEvents[] = {
        event<&CParamInterfaceClientConnector::onProcessBaseData>(kProcessEvent,
                                                                  "hands the instance's messages to the client"),
    };
    info.addEvents(kEvents);
}

void CParamInterfaceClientConnector::receive(CPacketList& packets) {
    if (packets.isEmpty()) return;
    {
        const CRankedLock lock(m_pendingSection);
        m_pending.appendAll(packets);
    }
    postEvent(getFullName(), kProcessEvent, {});
}

CError* CParamInterfaceClientConnector::onProcessBaseData() {
    CPacketList packets;
    {
        const CRankedLock lock(m_pendingSection);
        packets.appendAll(m_pending);
    }
    CError* firstError = nullptr;
    bool isAlive = true;
    while (const std::unique_ptr<CParamPacket> packet = isAlive ? packets.takeFirst() : nullptr) {
        CError* const error = handle(*packet, isAlive);
        if (firstError == nullptr) {
            firstError = error;
        } else {
            logError(error);
            discardError(error);  // logged; the first one is told
        }
    }
    return firstError;
}

// A handler may end the window, and this object with it.
CError* CParamInterfaceClientConnector::handle(const CParamPacket& packet, bool& isAlive) {
    if (m_client == nullptr)
        return makeError(
            nullptr, __FILE__, __LINE__, getFullName(),
            "@brtstr_CParamInterfaceClientConnector_onProcessBaseData_NoClientObject No client object defined.");
    const CObjectWatch watch(*this);
    CError* error = nullptr;
    {
        const CDeferralScope hostCalls;
        error = m_client->handleMessage(packet.bytes);
    }
    isAlive = watch.isAlive();
    return error != nullptr ? makeError(error, __FILE__, __LINE__, watch.fullName(), "") : nullptr;
}

}  // namespace brt
