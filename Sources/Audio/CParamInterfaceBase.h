// SPDX-License-Identifier: LicenseRef-Halyard
// The instance's side of what windows see and do: handles the messages of clients, and tells them of every change of
// what they listen to, whoever made it.
//
// A message is an event of this object; its handler reads the fields. Handlers run on the client's thread, one at a
// time, and have done their work when they return. A message about handles that nobody knows does nothing.
// Owner: the instance's tree, behind its connector. Threads: any.
// Locks: that of messages, for what clients hold; then programs, histories with all open records, parameters.
#pragma once

#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamUndo.h"
#include "Audio/CParamMessage.h"
#include "Audio/CParamMessageHandler.h"
#include "Core/CMemoryReader.h"
#include "Core/COrderedMap.h"
#include "Core/CRankedLock.h"

namespace brt {

class CAudioParamRegistry;
class CParamInterfaceBaseConnector;

class CParamInterfaceBase : public CAudioParamUndo, public CParamMessageHandler {
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

    // A user takes hold of a value that the host may know; false if it doesn't. And lets it go. Under the locks of
    // histories and, for the first, of the parameter.
    virtual bool beginEdit(CAudioParam& param, int element, int group);
    virtual void endEdit(CAudioParam& param, int element, int group);

private:
    class CParamListener;
    class CRegistryListener;
    struct COpenRecord;

    // Histories.
    void onHistoryChanged() override;
    void emptyOpenRecords() override;
    CError* onCreateUndoData();
    CError* onRemoveUndoData();
    CError* onSubmitUndoData();
    CError* onRequestUndoHistory();
    CError* onSetUndoHistoryPos();
    void sendUndoHistory(int clientId);
    COpenRecord* findOpenRecord(ParamHandle handle) const;
    // Null if there is none of that handle.
    std::unique_ptr<COpenRecord> takeOpenRecord(ParamHandle handle);
    void beginEdits(COpenRecord& open, CAudioParam& param, const CAudioParamUpdate& update);
    void beginResetEdits(COpenRecord& open, CAudioParam& param, int group, int element);
    void endEdits(COpenRecord& open);
    void dropOpenRecords(int clientId);

    // Presets.
    CError* onListenRegistry();
    CError* onUnlistenRegistry();
    CError* onSetCurrentProgram();
    CError* onRenamePreset();
    CError* onActivateFactoryPreset();
    CError* onActivatePreset();
    CError* onRequestPreset();
    CError* onRequestBank();
    CError* onSetDefaultPreset();
    CError* onActivateDefaultPreset();
    CError* onExchangeShadowPreset();
    CError* onUpdateShadowPreset();
    // The registry of the handle that comes next in the message at hand.
    CError* readRegistry(CAudioParamRegistry*& registry, ParamHandle& handle);
    CError* runOnRegistry(void (CAudioParamRegistry::*operation)());
    void sendRegistry(ParamHandle handle, const CAudioParamRegistry& registry, bool isFactory);

    // Parameters.
    CError* onListenParam();
    CError* onUnlistenParam();
    CError* onChangeParam();
    CError* onResetParam();
    void sendParam(ParamHandle handle, const CAudioParam& param);
    void sendParamInfo(ParamHandle handle, const CAudioParamInfo* info, const CAudioParamUpdate* whole);
    void sendParamUpdate(ParamHandle handle, const CAudioParam& param, const CAudioParamUpdate& update);
    CAudioParam* findListenedParam(ParamHandle handle) const;

    CParamInterfaceBaseConnector* m_connector = nullptr;  // not owned; outlives this object

    CRankedSection m_messageSection{ELockRank::kMessage};
    CMemoryReader m_noMessage{nullptr, 0};
    CMemoryReader* m_message = &m_noMessage;
    COrderedMap<ParamHandle, std::unique_ptr<CParamListener>> m_paramListeners;
    COrderedMap<ParamHandle, std::unique_ptr<CRegistryListener>> m_registryListeners;
    COrderedMap<ParamHandle, std::unique_ptr<COpenRecord>> m_openRecords;  // under the lock of histories
    CRankedSection m_newsSection{ELockRank::kNews};  // from reading the names of presets until they are sent
};

}  // namespace brt
