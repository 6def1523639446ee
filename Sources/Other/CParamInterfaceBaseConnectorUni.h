// SPDX-License-Identifier: LicenseRef-Halyard
// The instance's end of the way to windows in the same process. A client's message is a call; what goes to a client
// waits in its queue until it polls.
//
// A queue keeps one message of each topic, so one that nobody polls doesn't grow beyond what there is to tell.
// Owner: the instance's tree; clients go before it. Threads: any. Lock: of the clients and their queues, a leaf, for a
// few instructions.
#pragma once

#include "Audio/CParamInterfaceBaseConnector.h"
#include "Core/COrderedMap.h"

namespace brt {

class CParamInterfaceBaseConnectorUni final : public CParamInterfaceBaseConnector {
public:
    static void describeClass(CClassInfo& info) { CParamInterfaceBaseConnector::describeClass(info); }

    void sendToClient(int clientId, std::unique_ptr<CParamPacket> packet) override;
    bool isConnected(int clientId) override;
    bool isWaiting(int clientId, CPacketTopic topic) override;

    // A number for a new client, with a queue; 0 if there are as many as there can be.
    int addClient();
    // Drops the queue, and what the client holds in the instance.
    void removeClient(int clientId);
    // Moves what waits for the client behind what is in `packets`.
    void takeMessages(int clientId, CPacketList& packets);
    // Messages that wait; for tests and reports.
    int waitingCount(int clientId);

private:
    // What waits for one client.
    struct CClientQueue : CBrtMemAllocator {
        void append(std::unique_ptr<CParamPacket> packet, CPacketList& replaced);

        CPacketList packets;
        COrderedMap<std::uint64_t, CParamPacket*> byTopic;
        int count = 0;
    };

    CClientQueue* findQueue(int clientId) BRT_REQUIRES(m_clientSection);

    CRankedSection m_clientSection{ELockRank::kLeaf};
    int m_lastClientId BRT_GUARDED_BY(m_clientSection) = 0;
    COrderedMap<int, std::unique_ptr<CClientQueue>> m_queues BRT_GUARDED_BY(m_clientSection);
};

}  // namespace brt
