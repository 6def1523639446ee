// SPDX-License-Identifier: LicenseRef-Halyard
#include "Other/CAudioInterfaceClient.h"

#include "Core/CClassInfo.h"
#include "Core/CError.h"
#include "Other/CParamInterfaceClient_p.h"

namespace brt {

void CAudioInterfaceClient::describeClass(CClassInfo& info) {
    CParamInterfaceClient::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::text("group-names-param").help("full name of the parameter with the names of channel groups"),
    };
    using T = CAudioInterfaceClient;
    static constexpr CEventInfo kEvents[] = {
        event<&T::onUpdateInternalChannelCount>(toClient::kUpdateInternalChannelCount),
        event<&T::onUpdateGroupCount>(toClient::kUpdateGroupCount),
        event<&T::onUpdateIoChannelCounts>(toClient::kUpdateIoChannelCounts),
        event<&T::onUpdateSampleRate>(toClient::kUpdateSampleRate),
        event<&T::onStartViz>(toClient::kStartViz),
        event<&T::onStopViz>(toClient::kStopViz),
        event<&T::onClearClient>(toClient::kClearClient),
        event<&T::onVizData>(toClient::kVizData),
        event<&T::onExportSlotNames>(toClient::kExportSlotNames),
    };
    info.addAttributes(kAttributes);
    info.addEvents(kEvents);
}

CError* CAudioInterfaceClient::init() {
    BRT_TRY(getFullName(), CParamInterfaceClient::init());
    send(toBase::kRequestInternalChannelCount, clientId());
    send(toBase::kRequestGroupCount, clientId());
    send(toBase::kRequestIoChannelCounts, clientId());
    send(toBase::kRequestSampleRate, clientId());
    const CStringView groupNames = getAttrString("group-names-param");
    if (!groupNames.isEmpty()) m_groupNamesHandle = addParamListener(groupNames, m_groupNames);
    return nullptr;
}

void CAudioInterfaceClient::releaseLinks() {
    for (const auto& [handle, exportSlot] : m_vizListeners) send(toBase::kUnlistenViz, handle);
    m_vizListeners.clear();
    removeParamListener(m_groupNamesHandle);
    CParamInterfaceClient::releaseLinks();
}

CString CAudioInterfaceClient::getGroupName(int group) const {
    if (m_groupNames.info() != nullptr) return m_groupNames.text(0, group);
    CString number;
    CString::fromInt(number, group + 1);
    return number;
}

void CAudioInterfaceClient::importChannelLabels() { send(toBase::kImportChannelLabels); }

// What the instance tells of itself.

CError* CAudioInterfaceClient::onUpdateInternalChannelCount() {
    BRT_TRY(getFullName(), readFields(message(), m_internalChannelCount));
    return fireEvent(toClient::kUpdateInternalChannelCount);
}

CError* CAudioInterfaceClient::onUpdateGroupCount() {
    BRT_TRY(getFullName(), readFields(message(), m_groupCount));
    return fireEvent(toClient::kUpdateGroupCount);
}

CError* CAudioInterfaceClient::onUpdateIoChannelCounts() {
    BRT_TRY(getFullName(), readFields(message(), m_inputChannelCount, m_outputChannelCount, m_sidechainChannelCount));
    return fireEvent(toClient::kUpdateIoChannelCounts);
}

CError* CAudioInterfaceClient::onUpdateSampleRate() {
    BRT_TRY(getFullName(), readFields(message(), m_sampleRate));
    return fireEvent(toClient::kUpdateSampleRate);
}

// Displays.

ParamHandle CAudioInterfaceClient::addVizListener(int exportSlot, CStringView name) {
    const ParamHandle handle = newHandle(m_lastViz, m_vizListeners);
    if (handle == 0) return 0;
    m_vizListeners.findOrInsert(handle) = exportSlot;
    send(toBase::kListenViz, exportSlot, name, handle);
    return handle;
}

void CAudioInterfaceClient::removeVizListener(ParamHandle handle) {
    if (m_vizListeners.erase(handle)) send(toBase::kUnlistenViz, handle);
}

void CAudioInterfaceClient::requestVizData(double framesPerSecond) {
    send(toBase::kRequestVizData, clientId(), framesPerSecond);
}

void CAudioInterfaceClient::requestExportSlotNames() { send(toBase::kRequestExportSlotNames, clientId()); }

CError* CAudioInterfaceClient::onStartViz() {
    if (m_vizProcessor != nullptr) m_vizProcessor->onStartViz();
    return nullptr;
}

CError* CAudioInterfaceClient::onStopViz() {
    if (m_vizProcessor != nullptr) m_vizProcessor->onStopViz();
    return nullptr;
}

CError* CAudioInterfaceClient::onClearClient() {
    if (m_vizProcessor != nullptr) m_vizProcessor->onClearClient();
    return nullptr;
}

CError* CAudioInterfaceClient::onVizData() {
    return m_vizProcessor != nullptr ? m_vizProcessor->processVizData(message()) : nullptr;
}

CError* CAudioInterfaceClient::onExportSlotNames() {
    return m_vizProcessor != nullptr ? m_vizProcessor->processExportSlots(message()) : nullptr;
}

}  // namespace brt
