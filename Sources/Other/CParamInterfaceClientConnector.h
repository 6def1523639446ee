// SPDX-License-Identifier: LicenseRef-Halyard
// A window's end of the way to its instance: carries bytes, and knows nothing of what they say.
//
// What has come waits in a list, from whatever thread brings it; an event of this object's hands it to the client on
// the window's thread. While a message is handled, calls that shall reach a host are held back: a host that closes the
// window in such a call does so after the handler.
// Owner: the window's tree, ahead of the client. Threads: the tree's, but for `receive`.
#pragma once

#include "Audio/CParamPacket.h"
#include "Core/CObject.h"
#include "Core/CRankedLock.h"

namespace brt {

class CParamMessageHandler;

class CParamInterfaceClientConnector : public CObject {
public:
    static void describeClass(CClassInfo& info);

    // The client that handles messages; null: none from now on.
    void setClient(CParamMessageHandler* client) noexcept { m_client = client; }
    // Of this connection; 0: none.
    int clientId() const noexcept { return m_clientId; }

    // Sends a message. False if it could not be handled; why is logged.
    virtual bool sendToBase(const CByteBuffer& bytes) = 0;
    // Takes over what has come for the client, and has it handled soon.
    virtual void poll() = 0;
    // Hands what waits to the client. A message that fails loses none behind it; the first error is returned.
    [[nodiscard]] virtual CError* onProcessBaseData();

protected:
    void setClientId(int clientId) noexcept { m_clientId = clientId; }
    // [any] Appends messages to those that wait, and wakes the window's thread. REQUIRES: initialised.
    void receive(CPacketList& packets);

private:
    CError* handle(const CParamPacket& packet, bool& isAlive);

    CParamMessageHandler* m_client = nullptr;  // not owned
    int m_clientId = 0;
    CRankedSection m_pendingSection{ELockRank::kLeaf};
    CPacketList m_pending BRT_GUARDED_BY(m_pendingSection);
};

}  // namespace brt
