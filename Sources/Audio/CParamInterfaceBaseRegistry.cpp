// SPDX-License-Identifier: LicenseRef-Halyard
// Messages about presets and programs.
#include "Audio/CAudioParamRegistry.h"
#include "Audio/CParamInterfaceBase.h"
#include "Audio/CParamInterfaceBase_p.h"
#include "Core/CError.h"

namespace brt {
namespace {

// What a "registry-data" message holds.
constexpr std::int32_t kBankData = 0;
constexpr std::int32_t kPresetData = 1;

constexpr int kNoProgram = -1;

}  // namespace

CError* CParamInterfaceBase::readRegistry(CAudioParamRegistry*& registry, ParamHandle& handle) {
    BRT_TRY(getFullName(), readFields(message(), handle));
    const std::unique_ptr<CRegistryListener>* const listener = m_registryListeners.find(handle);
    if (listener == nullptr)
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CParamInterfaceBase_getRegistry_NoParamRegistry No param registry object '%1' found.",
                         handle);
    registry = (*listener)->registry();
    if (registry != nullptr) return nullptr;
    return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                     "@brtstr_CParamInterfaceBase_getRegistry_ParamRegistryNULL Param registry object '%1' is NULL.",
                     handle);
}

CError* CParamInterfaceBase::runOnRegistry(void (CAudioParamRegistry::*operation)()) {
    CAudioParamRegistry* registry = nullptr;
    ParamHandle handle = 0;
    BRT_TRY(getFullName(), readRegistry(registry, handle));
    (registry->*operation)();
    return nullptr;
}

// Listening.

CError* CParamInterfaceBase::onListenRegistry() {
    CString name;
    ParamHandle handle = 0;
    BRT_TRY(getFullName(), readFields(message(), name, handle));
    if (!isUsable(handle) || m_registryListeners.contains(handle)) return nullptr;
    auto* const registry = dynamic_cast<CAudioParamRegistry*>(collector()->findRegistry(name));
    auto& listener = m_registryListeners.findOrInsert(handle);
    listener = std::make_unique<CRegistryListener>(*this, registry, handle);
    if (registry == nullptr) return nullptr;
    listener->attach(registry);
    sendRegistry(handle, *registry, false);
    if (registry->isMaster()) sendRegistry(handle, *registry, true);
    return nullptr;
}

CError* CParamInterfaceBase::onUnlistenRegistry() {
    ParamHandle handle = 0;
    BRT_TRY(getFullName(), readFields(message(), handle));
    m_registryListeners.erase(handle);
    return nullptr;
}

void CParamInterfaceBase::sendRegistry(ParamHandle handle, const CAudioParamRegistry& registry, bool isFactory) {
    const CRankedLock lock(m_newsSection);
    CStringList names;
    int current = kNoProgram;
    if (registry.isMaster()) current = registry.listPresetNames(names, isFactory);
    CParamMessage message(toClient::kUpdateRegistry, handle, isFactory, registry.id(), current, names);
    sendOrLog(clientOf(handle), message, CPacketTopic::ofRegistry(handle, isFactory));
}

// Programs and presets.

CError* CParamInterfaceBase::onSetCurrentProgram() {
    CAudioParamRegistry* registry = nullptr;
    ParamHandle handle = 0;
    std::int32_t index = 0;
    BRT_TRY(getFullName(), readRegistry(registry, handle));
    BRT_TRY(getFullName(), readFields(message(), index));
    registry->setCurrentProgram(index, this);
    return nullptr;
}

CError* CParamInterfaceBase::onRenamePreset() {
    CAudioParamRegistry* registry = nullptr;
    ParamHandle handle = 0;
    std::int32_t index = 0;
    CString name;
    BRT_TRY(getFullName(), readRegistry(registry, handle));
    BRT_TRY(getFullName(), readFields(message(), index, name));
    registry->renamePreset(index, name, this);
    return nullptr;
}

CError* CParamInterfaceBase::onActivateFactoryPreset() {
    CAudioParamRegistry* registry = nullptr;
    ParamHandle handle = 0;
    std::int32_t index = 0;
    BRT_TRY(getFullName(), readRegistry(registry, handle));
    BRT_TRY(getFullName(), readFields(message(), index));
    registry->activateFactoryPreset(index);
    return nullptr;
}

CError* CParamInterfaceBase::onActivatePreset() {
    CAudioParamRegistry* registry = nullptr;
    ParamHandle handle = 0;
    std::int32_t group = 0;
    BRT_TRY(getFullName(), readRegistry(registry, handle));
    BRT_TRY(getFullName(), readFields(message(), group));
    BRT_TRY(getFullName(), registry->activatePreset(message(), false, group));
    return nullptr;
}

CError* CParamInterfaceBase::onRequestPreset() {
    CAudioParamRegistry* registry = nullptr;
    ParamHandle handle = 0;
    std::int32_t cookie = 0;
    bool isFactory = false;
    std::int32_t index = 0;
    std::int32_t group = 0;
    BRT_TRY(getFullName(), readRegistry(registry, handle));
    BRT_TRY(getFullName(), readFields(message(), cookie, isFactory, index, group));
    CParamMessage answer(toClient::kRegistryData, handle, cookie, kPresetData);
    answer.keep(registry->acquirePreset(isFactory, index, group, answer.stream()));
    return send(clientOf(handle), answer);
}

CError* CParamInterfaceBase::onRequestBank() {
    CAudioParamRegistry* registry = nullptr;
    ParamHandle handle = 0;
    std::int32_t cookie = 0;
    bool isFactory = false;
    BRT_TRY(getFullName(), readRegistry(registry, handle));
    BRT_TRY(getFullName(), readFields(message(), cookie, isFactory));
    CParamMessage answer(toClient::kRegistryData, handle, cookie, kBankData);
    answer.keep(registry->acquireBank(isFactory, answer.stream()));
    return send(clientOf(handle), answer);
}

CError* CParamInterfaceBase::onSetDefaultPreset() {
    CAudioParamRegistry* registry = nullptr;
    ParamHandle handle = 0;
    BRT_TRY(getFullName(), readRegistry(registry, handle));
    registry->setDefaultPreset(message());
    return nullptr;
}

CError* CParamInterfaceBase::onActivateDefaultPreset() { return runOnRegistry(&CAudioParamRegistry::masterReset); }

// A/B.

CError* CParamInterfaceBase::onExchangeShadowPreset() {
    return runOnRegistry(&CAudioParamRegistry::exchangeShadowPreset);
}

CError* CParamInterfaceBase::onUpdateShadowPreset() { return runOnRegistry(&CAudioParamRegistry::updateShadowPreset); }

}  // namespace brt
