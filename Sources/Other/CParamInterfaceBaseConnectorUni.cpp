// SPDX-License-Identifier: LicenseRef-Halyard
#include "Other/CParamInterfaceBaseConnectorUni.h"

namespace brt {

// It goes to the end also where it takes another one's place: what stands between may be about the same thing.
void CParamInterfaceBaseConnectorUni::CClientQueue::append(std::unique_ptr<CParamPacket> packet,
                                                           CPacketList& replaced) {
    const CPacketTopic topic = packet->topic;
    if (!topic.isNone()) {
        auto place = byTopic.lowerBound(topic.first);
        while (place && place->key <= topic.last) {
            replaced.append(packets.take(place->value));
            --count;
            if (place->key == topic.last) break;  // stays, for the new one
            place = byTopic.erase(place);
        }
        byTopic.findOrInsert(topic.last) = packet.get();
    }
    packets.append(std::move(packet));
    ++count;
}

CParamInterfaceBaseConnectorUni::CClientQueue* CParamInterfaceBaseConnectorUni::findQueue(int clientId) {
    const std::unique_ptr<CClientQueue>* const queue = m_queues.find(clientId);
    return queue != nullptr ? queue->get() : nullptr;
}

void CParamInterfaceBaseConnectorUni::sendToClient(int clientId, std::unique_ptr<CParamPacket> packet) {
    CPacketList replaced;  // goes after the lock
    const CRankedLock lock(m_clientSection);
    if (packet->bytes.isEmpty()) return;
    if (clientId != kAllClients) {
        CClientQueue* const queue = findQueue(clientId);
        if (queue != nullptr) queue->append(std::move(packet), replaced);
        return;
    }
    for (auto place = m_queues.begin(); place;) {
        CClientQueue& queue = *place->value;
        queue.append(++place ? packet->clone() : std::move(packet), replaced);
    }
}

bool CParamInterfaceBaseConnectorUni::isConnected(int clientId) {
    const CRankedLock lock(m_clientSection);
    return findQueue(clientId) != nullptr;
}

bool CParamInterfaceBaseConnectorUni::isWaiting(int clientId, CPacketTopic topic) {
    const CRankedLock lock(m_clientSection);
    const CClientQueue* const queue = findQueue(clientId);
    return queue != nullptr && queue->byTopic.contains(topic.last);
}

int CParamInterfaceBaseConnectorUni::addClient() {
    auto queue = std::make_unique<CClientQueue>();
    const CRankedLock lock(m_clientSection);
    // What the lambda needs is held here; the compiler's analysis of locks takes it for a function that anybody calls.
    const auto isTaken = [this](int id) BRT_NO_THREAD_SAFETY_ANALYSIS { return m_queues.contains(id); };
    const int clientId = nextFreeNumber(m_lastClientId, isTaken);
    if (clientId != 0) m_queues.findOrInsert(clientId) = std::move(queue);
    return clientId;
}

void CParamInterfaceBaseConnectorUni::removeClient(int clientId) {
    std::unique_ptr<CClientQueue> queue;  // goes after the lock
    {
        const CRankedLock lock(m_clientSection);
        const auto place = m_queues.locate(clientId);
        if (!place) return;
        queue = std::move(place->value);
        m_queues.erase(place);
    }
    forgetClient(clientId);
}

void CParamInterfaceBaseConnectorUni::takeMessages(int clientId, CPacketList& packets) {
    auto taken = std::make_unique<CClientQueue>();
    {
        const CRankedLock lock(m_clientSection);
        const auto place = m_queues.locate(clientId);
        if (!place || place->value->packets.isEmpty()) return;
        std::swap(place->value, taken);
    }
    packets.appendAll(taken->packets);
}

int CParamInterfaceBaseConnectorUni::waitingCount(int clientId) {
    const CRankedLock lock(m_clientSection);
    const CClientQueue* const queue = findQueue(clientId);
    return queue != nullptr ? queue->count : 0;
}

}  // namespace brt
