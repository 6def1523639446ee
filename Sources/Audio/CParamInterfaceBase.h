// SPDX-License-Identifier: LicenseRef-Halyard
// The instance's side of what windows see and do: handles the messages of clients, and tells them of every change of
// what they listen to, whoever made it.
//
// A message is an event of this object; its handler reads the fields. Handlers run on the client's thread, one at a
// time, and have done their work when they return. A message about handles that nobody knows does nothing.
// Owner: the instance's tree, behind its connector. Threads: any.
// Locks: that of messages, for what clients hold; then parameters.
#pragma once

#include "Audio/CAudioParamCollector.h"
#include "Audio/CParamMessage.h"
#include "Audio/CParamMessageHandler.h"
#include "Core/CMemoryReader.h"
#include "Core/COrderedMap.h"
#include "Core/CRankedLock.h"

namespace brt {

class CParamInterfaceBaseConnector;

class CParamInterfaceBase : public CObject, public CParamMessageHandler {
public:
    static void describeClass(CClassInfo& info);
    CParamInterfaceBase();
    ~CParamInterfaceBase() override;

    [[nodiscard]] CError* init() override;
    void releaseLinks() override;

    // Under the connector's lock.
    [[nodiscard]] CError* handleMessage(const CByteBuffer& bytes) override;
    void onClientGone(int clientId) override;

protected:
    // Of the message at hand.
    CInputStream& message() noexcept { return *m_message; }
    // Whether the handle may come to stand for something: its client is there.
    bool isUsable(ParamHandle handle) const;
    // [any] Takes the message over.
    [[nodiscard]] CError* send(int clientId, CParamMessage& message, CPacketTopic topic = {});
    // For messages that nobody waits for.
    void sendOrLog(int clientId, CParamMessage& message, CPacketTopic topic = {});

    CRankedSection& messageSection() noexcept BRT_RETURN_CAPABILITY(m_messageSection) { return m_messageSection; }

private:
    class CParamListener;

    CError* onListenParam();
    CError* onUnlistenParam();
    CError* onChangeParam();
    CError* onResetParam();
    void sendParam(ParamHandle handle, const CAudioParam& param);
    void sendParamInfo(ParamHandle handle, const CAudioParamInfo* info, const CAudioParamUpdate* whole);
    void sendParamUpdate(ParamHandle handle, const CAudioParam& param, const CAudioParamUpdate& update);
    CAudioParam* findListenedParam(ParamHandle handle) const;

    CAudioParamCollector* m_collector = nullptr;          // not owned
    CParamInterfaceBaseConnector* m_connector = nullptr;  // not owned; outlives this object

    CRankedSection m_messageSection{ELockRank::kMessage};
    CMemoryReader m_noMessage{nullptr, 0};
    CMemoryReader* m_message = &m_noMessage;
    COrderedMap<ParamHandle, std::unique_ptr<CParamListener>> m_paramListeners;
};

}  // namespace brt
