// SPDX-License-Identifier: LicenseRef-Halyard
#include "Other/CParamInterfaceClient.h"

#include "Core/CClassInfo.h"
#include "Core/CError.h"
#include "Core/CObjectWatch.h"
#include "Other/CParamInterfaceClientConnector.h"
#include "Other/CParamInterfaceClient_p.h"

namespace brt {

void CParamInterfaceClient::describeClass(CClassInfo& info) {
    CObject::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::object("client-connector").required().help("carries messages; stands ahead of this object"),
    };
    static constexpr CEventInfo kEvents[] = {
        event<&CParamInterfaceClient::onUpdateParamInfo>(toClient::kUpdateParamInfo),
        event<&CParamInterfaceClient::onUpdateParam>(toClient::kUpdateParam),
        event<&CParamInterfaceClient::onUpdateUndoHistory>(toClient::kUpdateUndoHistory),
        event<&CParamInterfaceClient::onUpdateRegistry>(toClient::kUpdateRegistry),
        event<&CParamInterfaceClient::onRegistryData>(toClient::kRegistryData),
    };
    info.addAttributes(kAttributes);
    info.addEvents(kEvents);
}

CError* CParamInterfaceClient::init() {
    BRT_TRY(getFullName(), CObject::init());
    BRT_TRY(getFullName(), findObjectByAttr("client-connector", m_connector));
    m_connector->setClient(this);
    m_clientId = m_connector->clientId();
    send(toBase::kRequestUndoHistory, m_clientId);
    return nullptr;
}

void CParamInterfaceClient::releaseLinks() {
    for (const auto& [handle, listener] : m_paramListeners) send(toBase::kUnlistenParam, handle);
    m_paramListeners.clear();
    for (const auto& [handle, listener] : m_registryListeners) send(toBase::kUnlistenRegistry, handle);
    m_registryListeners.clear();
    for (const ParamHandle handle : m_openUndoData) send(toBase::kRemoveUndoData, handle);
    m_openUndoData.clear();
    if (m_connector != nullptr) m_connector->setClient(nullptr);
    m_connector = nullptr;
    CObject::releaseLinks();
}

void CParamInterfaceClient::send(CParamMessage& message) {
    if (m_connector == nullptr) return;
    std::unique_ptr<CParamPacket> packet;
    CError* const error = message.finish(packet);
    if (error == nullptr) {
        m_connector->sendToBase(packet->bytes);
    } else {
        logError(error);
        discardError(error);  // logged: a text that is too long for any message
    }
}

// A handler may make another message be handled, and may end this object.
CError* CParamInterfaceClient::handleMessage(const CByteBuffer& bytes) {
    CMemoryReader reader(bytes.data(), bytes.size());
    const CObjectWatch watch(*this);
    CMemoryReader* const outer = std::exchange(m_message, &reader);
    CString name;
    CError* error = reader.readString(name);
    if (error == nullptr) error = runEvent(name);
    if (watch.isAlive()) m_message = outer;
    return error != nullptr ? makeError(error, __FILE__, __LINE__, watch.fullName(), "") : nullptr;
}

// Parameters.

ParamHandle CParamInterfaceClient::addParamListener(CStringView name, CParamInterfaceParamListener& listener) {
    const ParamHandle handle = newHandle(m_lastParam, m_paramListeners);
    if (handle == 0) return 0;
    m_paramListeners.findOrInsert(handle) = &listener;
    send(toBase::kListenParam, name, handle);
    return handle;
}

void CParamInterfaceClient::removeParamListener(ParamHandle handle) {
    if (!m_paramListeners.erase(handle)) return;
    send(toBase::kUnlistenParam, handle);
}

void CParamInterfaceClient::changeParam(ParamHandle handle, const CAudioParamUpdate& update, ParamHandle undoHandle) {
    send(toBase::kChangeParam, handle, undoHandle, update);
}

void CParamInterfaceClient::resetParam(ParamHandle handle, int group, int element, ParamHandle undoHandle,
                                       bool useFirstDefault) {
    send(toBase::kResetParam, handle, group, element, undoHandle, useFirstDefault);
}

CParamInterfaceParamListener* CParamInterfaceClient::findParamListener(ParamHandle handle) const {
    CParamInterfaceParamListener* const* const found = m_paramListeners.find(handle);
    return found != nullptr ? *found : nullptr;
}

CError* CParamInterfaceClient::onUpdateParamInfo() {
    ParamHandle handle = 0;
    bool hasInfo = false;
    bool hasUpdate = false;
    std::unique_ptr<CAudioParamInfo> info;
    CAudioParamUpdateCopy update;
    BRT_TRY(getFullName(), readFields(message(), handle, hasInfo));
    if (hasInfo) {
        info = std::make_unique<CAudioParamInfo>();
        BRT_TRY(getFullName(), info->load(message(), *this));
    }
    BRT_TRY(getFullName(), readFields(message(), hasUpdate));
    if (hasUpdate) BRT_TRY(getFullName(), update.load(message(), EUpdateScope::kGroupOrWhole));

    const CObjectWatch watch(*this);
    CParamInterfaceParamListener* listener = findParamListener(handle);
    if (listener == nullptr) return nullptr;
    listener->onParamInfo(std::move(info));
    if (!hasUpdate || !watch.isAlive()) return nullptr;
    listener = findParamListener(handle);
    if (listener != nullptr) listener->onParamUpdate(update.update());
    return nullptr;
}

CError* CParamInterfaceClient::onUpdateParam() {
    ParamHandle handle = 0;
    CAudioParamUpdateCopy update;
    BRT_TRY(getFullName(), readFields(message(), handle, update));
    CParamInterfaceParamListener* const listener = findParamListener(handle);
    if (listener != nullptr) listener->onParamUpdate(update.update());
    return nullptr;
}

}  // namespace brt
