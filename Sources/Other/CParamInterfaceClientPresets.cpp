// SPDX-License-Identifier: LicenseRef-Halyard
// What a client asks and hears of the history and of presets.
#include "Core/CClassInfo.h"
#include "Core/CError.h"
#include "Core/CObjectWatch.h"
#include "Other/CParamInterfaceClient_p.h"

namespace brt {
namespace {

constexpr CStringView kUndoHistoryChanged = "undo-history-changed";

}  // namespace

// The history.

ParamHandle CParamInterfaceClient::createUndoData(CStringView label, bool isMergeable, int mergeId) {
    const ParamHandle handle = newHandle(m_lastUndo, m_openUndoData);
    if (handle == 0) return 0;
    m_openUndoData.insert(handle);
    send(toBase::kCreateUndoData, handle, label, isMergeable, mergeId);
    return handle;
}

void CParamInterfaceClient::removeUndoData(ParamHandle handle) {
    if (m_openUndoData.erase(handle)) send(toBase::kRemoveUndoData, handle);
}

void CParamInterfaceClient::submitUndoData(ParamHandle handle, CStringView label) {
    if (m_openUndoData.erase(handle)) send(toBase::kSubmitUndoData, handle, label);
}

void CParamInterfaceClient::setUndoHistoryPos(int position) { send(toBase::kSetUndoHistoryPos, position); }

CError* CParamInterfaceClient::onUpdateUndoHistory() {
    std::int32_t position = 0;
    CStringList labels;
    BRT_TRY(getFullName(), readFields(message(), position, labels));
    m_undoPosition = position;
    m_undoLabels.clear();
    for (const CString* const label : labels) m_undoLabels.append(label->view());
    return fireEvent(kUndoHistoryChanged);
}

// Registries.

ParamHandle CParamInterfaceClient::addRegistryListener(CStringView name, CParamInterfaceRegistryListener& listener) {
    const ParamHandle handle = newHandle(m_lastRegistry, m_registryListeners);
    if (handle == 0) return 0;
    m_registryListeners.findOrInsert(handle) = &listener;
    send(toBase::kListenRegistry, name, handle);
    return handle;
}

void CParamInterfaceClient::removeRegistryListener(ParamHandle handle) {
    if (m_registryListeners.erase(handle)) send(toBase::kUnlistenRegistry, handle);
}

CParamInterfaceRegistryListener* CParamInterfaceClient::findRegistryListener(ParamHandle handle) const {
    CParamInterfaceRegistryListener* const* const found = m_registryListeners.find(handle);
    return found != nullptr ? *found : nullptr;
}

CError* CParamInterfaceClient::onUpdateRegistry() {
    ParamHandle handle = 0;
    bool isFactory = false;
    CString id;
    std::int32_t current = 0;
    CStringList names;
    BRT_TRY(getFullName(), readFields(message(), handle, isFactory, id, current, names));
    CParamInterfaceRegistryListener* const listener = findRegistryListener(handle);
    if (listener != nullptr) listener->onRegistryUpdate(isFactory, id, names, current);
    return nullptr;
}

CError* CParamInterfaceClient::onRegistryData() {
    ParamHandle handle = 0;
    std::int32_t cookie = 0;
    bool isPreset = false;
    BRT_TRY(getFullName(), readFields(message(), handle, cookie, isPreset));
    CParamInterfaceRegistryListener* const listener = findRegistryListener(handle);
    if (listener == nullptr) return nullptr;
    if (isPreset) {
        auto preset = std::make_unique<CAudioPreset>();
        BRT_TRY(getFullName(), preset->load(message()));
        listener->onPresetData(cookie, std::move(preset));
    } else {
        auto bank = std::make_unique<CAudioPresetBank>();
        BRT_TRY(getFullName(), bank->load(message()));
        listener->onBankData(cookie, std::move(bank));
    }
    return nullptr;
}

// Programs.

void CParamInterfaceClient::setCurrentProgram(ParamHandle registry, int index) {
    send(toBase::kSetCurrentProgram, registry, index);
}

void CParamInterfaceClient::renamePreset(ParamHandle registry, int index, CStringView name) {
    send(toBase::kRenamePreset, registry, index, name);
}

void CParamInterfaceClient::activateFactoryPreset(ParamHandle registry, int index) {
    send(toBase::kActivateFactoryPreset, registry, index);
}

void CParamInterfaceClient::activateDefaultPreset(ParamHandle registry) {
    send(toBase::kActivateDefaultPreset, registry);
}

void CParamInterfaceClient::exchangeShadowPreset(ParamHandle registry) {
    send(toBase::kExchangeShadowPreset, registry);
}

void CParamInterfaceClient::updateShadowPreset(ParamHandle registry) { send(toBase::kUpdateShadowPreset, registry); }

// Presets.

void CParamInterfaceClient::sendPreset(CParamMessage& message, const CAudioPreset& preset) {
    message.keep(preset.save(message.stream()));
    send(message);
}

void CParamInterfaceClient::setDefaultPreset(ParamHandle registry, const CAudioPreset& preset) {
    CParamMessage message(toBase::kSetDefaultPreset, registry);
    sendPreset(message, preset);
}

void CParamInterfaceClient::activatePreset(ParamHandle registry, int group, const CAudioPreset& preset) {
    CParamMessage message(toBase::kActivatePreset, registry, group);
    sendPreset(message, preset);
}

void CParamInterfaceClient::requestPreset(ParamHandle registry, int cookie, bool isFactory, int index, int group) {
    send(toBase::kRequestPreset, registry, cookie, isFactory, index, group);
}

void CParamInterfaceClient::requestBank(ParamHandle registry, int cookie, bool isFactory) {
    send(toBase::kRequestBank, registry, cookie, isFactory);
}

}  // namespace brt
