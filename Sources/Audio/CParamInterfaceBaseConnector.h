// SPDX-License-Identifier: LicenseRef-Halyard
// The instance's end of the way between an instance and its windows: carries bytes, and knows nothing of what they say.
//
// A client's message is handled on the thread that brings it, one at a time. What is sent to a client waits for it, so
// `sendToClient` may be called under any lock: it takes none but its own, and calls nobody.
// Owner: the instance's tree, ahead of the interface that uses it. Threads: any.
#pragma once

#include <memory>

#include "Audio/CParamPacket.h"
#include "Core/CObject.h"
#include "Core/CRankedLock.h"

namespace brt {

class CParamMessageHandler;

class CParamInterfaceBaseConnector : public CObject {
public:
    static void describeClass(CClassInfo& info) { CObject::describeClass(info); }

    // The interface that handles messages; null: none from now on. Waits for a message that is being handled.
    void setBase(CParamMessageHandler* base);

    // [any] Takes the message over, for a client or for kAllClients. One for nobody is dropped.
    virtual void sendToClient(int clientId, std::unique_ptr<CParamPacket> packet) = 0;
    // [any] Whether that client is there.
    virtual bool isConnected(int clientId) = 0;
    // [any] Whether a message of that topic still waits for the client: then the next one has to tell the whole state,
    // since it takes that one's place.
    virtual bool isWaiting(int clientId, CPacketTopic topic) = 0;

    // [any] Handles a message of a client.
    [[nodiscard]] virtual CError* processClientData(const CByteBuffer& bytes);

protected:
    // A client has gone: what it holds in the instance goes too.
    void forgetClient(int clientId);

private:
    CRankedSection m_section{ELockRank::kConnector};
    CParamMessageHandler* m_base BRT_GUARDED_BY(m_section) = nullptr;  // not owned
};

}  // namespace brt
