// SPDX-License-Identifier: LicenseRef-Halyard
// Messages about parameters; what clients hold.
#include "Audio/CParamInterfaceBase.h"

#include <algorithm>

#include "Audio/CParamInterfaceBaseConnector.h"
#include "Audio/CParamInterfaceBase_p.h"
#include "Core/CClassInfo.h"
#include "Core/CError.h"

namespace brt {
namespace {

// Where a reset may point, from outside.
bool isPlaceOrAll(int index, int limit) { return index >= -1 && index < limit; }

}  // namespace

void CParamInterfaceBase::describeClass(CClassInfo& info) {
    CAudioParamUndo::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::object("base-connector").required().help("carries messages; stands ahead of this object"),
    };
    using T = CParamInterfaceBase;
    static constexpr CEventInfo kEvents[] = {
        event<&T::onCreateUndoData>(toBase::kCreateUndoData),
        event<&T::onRemoveUndoData>(toBase::kRemoveUndoData),
        event<&T::onSubmitUndoData>(toBase::kSubmitUndoData),
        event<&T::onRequestUndoHistory>(toBase::kRequestUndoHistory),
        event<&T::onSetUndoHistoryPos>(toBase::kSetUndoHistoryPos),
        event<&T::onListenParam>(toBase::kListenParam),
        event<&T::onUnlistenParam>(toBase::kUnlistenParam),
        event<&T::onChangeParam>(toBase::kChangeParam),
        event<&T::onResetParam>(toBase::kResetParam),
        event<&T::onListenRegistry>(toBase::kListenRegistry),
        event<&T::onUnlistenRegistry>(toBase::kUnlistenRegistry),
        event<&T::onSetCurrentProgram>(toBase::kSetCurrentProgram),
        event<&T::onRenamePreset>(toBase::kRenamePreset),
        event<&T::onActivateFactoryPreset>(toBase::kActivateFactoryPreset),
        event<&T::onActivatePreset>(toBase::kActivatePreset),
        event<&T::onRequestPreset>(toBase::kRequestPreset),
        event<&T::onRequestBank>(toBase::kRequestBank),
        event<&T::onSetDefaultPreset>(toBase::kSetDefaultPreset),
        event<&T::onActivateDefaultPreset>(toBase::kActivateDefaultPreset),
        event<&T::onExchangeShadowPreset>(toBase::kExchangeShadowPreset),
        event<&T::onUpdateShadowPreset>(toBase::kUpdateShadowPreset),
    };
    info.addAttributes(kAttributes);
    info.addEvents(kEvents);
}

CParamInterfaceBase::CParamInterfaceBase() = default;
CParamInterfaceBase::~CParamInterfaceBase() = default;

CError* CParamInterfaceBase::init() {
    BRT_TRY(getFullName(), CAudioParamUndo::init());
    BRT_TRY(getFullName(), findObjectByAttr("base-connector", m_connector));
    m_connector->setBase(this);
    return nullptr;
}

void CParamInterfaceBase::releaseLinks() {
    if (m_connector != nullptr) m_connector->setBase(nullptr);
    {
        const CRankedLock lock(m_messageSection);
        m_paramListeners.clear();
        m_registryListeners.clear();
    }
    dropOpenRecords(kAllClients);
    CAudioParamUndo::releaseLinks();
}

CError* CParamInterfaceBase::handleMessage(const CByteBuffer& bytes) {
    const CRankedLock lock(m_messageSection);
    CMemoryReader reader(bytes.data(), bytes.size());
    CString name;
    BRT_TRY(getFullName(), reader.readString(name));
    m_message = &reader;
    CError* const error = runEvent(name);
    m_message = &m_noMessage;
    return error != nullptr ? makeError(error, __FILE__, __LINE__, getFullName(), "") : nullptr;
}

void CParamInterfaceBase::onClientGone(int clientId) {
    const CRankedLock lock(m_messageSection);
    eraseClient(m_paramListeners, clientId);
    eraseClient(m_registryListeners, clientId);
    dropOpenRecords(clientId);
}

bool CParamInterfaceBase::isUsable(ParamHandle handle) const {
    return handle != 0 && m_connector->isConnected(clientOf(handle));
}

CError* CParamInterfaceBase::send(int clientId, CParamMessage& message, CPacketTopic topic) {
    std::unique_ptr<CParamPacket> packet;
    BRT_TRY(getFullName(), message.finish(packet, topic));
    m_connector->sendToClient(clientId, std::move(packet));
    return nullptr;
}

void CParamInterfaceBase::sendOrLog(int clientId, CParamMessage& message, CPacketTopic topic) {
    CError* const error = send(clientId, message, topic);
    logError(error);
    discardError(error);  // logged: whoever made the change has nothing to do with it
}

// Listening.

CError* CParamInterfaceBase::onListenParam() {
    CString name;
    ParamHandle handle = 0;
    BRT_TRY(getFullName(), readFields(message(), name, handle));
    if (!isUsable(handle) || m_paramListeners.contains(handle)) return nullptr;
    CAudioParam& param = collector()->getParam(name);
    auto listener = std::make_unique<CParamListener>(*this, param, handle);
    {
        // No change comes between what is sent here and the first that the listener hears.
        const CRankedLock lock(param.section());
        listener->attach(collector(), CUpdateFilter(&param));
        sendParam(handle, param);
    }
    m_paramListeners.findOrInsert(handle) = std::move(listener);
    return nullptr;
}

CError* CParamInterfaceBase::onUnlistenParam() {
    ParamHandle handle = 0;
    BRT_TRY(getFullName(), readFields(message(), handle));
    m_paramListeners.erase(handle);
    return nullptr;
}

// On the thread of the change, under the parameter's lock.
void CParamInterfaceBase::CParamListener::update(const CUpdateData* data) {
    const CAudioParamUpdate& change = static_cast<const CAudioParamUpdateData&>(*data).update;
    if (change.group == kWholeParam)
        m_base.sendParamInfo(m_handle, m_param.info(), &change);
    else
        m_base.sendParamUpdate(m_handle, m_param, change);
}

void CParamInterfaceBase::sendParam(ParamHandle handle, const CAudioParam& param) {
    const CAudioParamStorage& control = param.control();
    if (param.info() == nullptr || !control.isValid()) return sendParamInfo(handle, nullptr, nullptr);
    CAudioParamUpdate whole = control.describe(kWholeParam);
    whole.source = this;
    sendParamInfo(handle, param.info(), &whole);
    for (int group = 0; group < control.groupCount(); ++group) sendParamUpdate(handle, param, control.describe(group));
}

void CParamInterfaceBase::sendParamInfo(ParamHandle handle, const CAudioParamInfo* info,
                                        const CAudioParamUpdate* whole) {
    CParamMessage message(toClient::kUpdateParamInfo, handle, info != nullptr);
    if (info != nullptr) message.keep(info->save(message.stream()));
    message.add(whole != nullptr);
    if (whole != nullptr) message.add(*whole);
    sendOrLog(clientOf(handle), message, CPacketTopic::ofParam(handle));
}

// A message that takes another one's place tells of the whole group.
void CParamInterfaceBase::sendParamUpdate(ParamHandle handle, const CAudioParam& param,
                                          const CAudioParamUpdate& update) {
    const CPacketTopic topic = CPacketTopic::ofGroup(handle, update.group);
    const bool isWaiting = m_connector->isWaiting(clientOf(handle), topic);
    CParamMessage message(toClient::kUpdateParam, handle, isWaiting ? param.control().describe(update.group) : update);
    sendOrLog(clientOf(handle), message, topic);
}

CAudioParam* CParamInterfaceBase::findListenedParam(ParamHandle handle) const {
    const std::unique_ptr<CParamListener>* const listener = m_paramListeners.find(handle);
    return listener != nullptr ? &(*listener)->param() : nullptr;
}

// Changing.

CError* CParamInterfaceBase::onChangeParam() {
    ParamHandle handle = 0;
    ParamHandle undoHandle = 0;
    CAudioParamUpdateCopy change;
    BRT_TRY(getFullName(), readFields(message(), handle, undoHandle, change));
    CAudioParam* const param = findListenedParam(handle);
    if (param == nullptr) return nullptr;

    const CRankedLock undoLock(undoSection());
    COpenRecord* const open = findOpenRecord(undoHandle);
    const CRankedLock paramLock(param->section());
    const CAudioParamUpdate& update = change.update();
    if (param->info() == nullptr || update.format != param->info()->format) return nullptr;
    if (open != nullptr) beginEdits(*open, *param, update);
    const CAudioParamChangeContext context{.undo = open != nullptr ? open->record.get() : nullptr};
    param->tellRegistries(update.group, context);
    param->update(update, context);
    return nullptr;
}

CError* CParamInterfaceBase::onResetParam() {
    ParamHandle handle = 0;
    ParamHandle undoHandle = 0;
    std::int32_t group = 0;
    std::int32_t element = 0;
    bool useFirstDefault = false;
    BRT_TRY(getFullName(), readFields(message(), handle, group, element, undoHandle, useFirstDefault));
    CAudioParam* const param = findListenedParam(handle);
    if (param == nullptr || !isPlaceOrAll(group, kAudioGroupLimit) || !isPlaceOrAll(element, kAudioElementLimit))
        return nullptr;

    const CRankedLock undoLock(undoSection());
    COpenRecord* const open = findOpenRecord(undoHandle);
    const CRankedLock paramLock(param->section());
    if (param->info() == nullptr) return nullptr;
    if (open != nullptr) beginResetEdits(*open, *param, group, element);
    const CAudioParamChangeContext context{.undo = open != nullptr ? open->record.get() : nullptr};
    param->tellRegistries(std::max(group, 0), context);
    param->resetToDefault(group, element, context, useFirstDefault);
    return nullptr;
}

}  // namespace brt
