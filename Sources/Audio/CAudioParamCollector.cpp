// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioParamCollector.h"

#include "Audio/CSharedParam.h"
#include "Core/CClassInfo.h"
#include "Core/CError.h"

namespace brt {

void CAudioParamCollector::describeClass(CClassInfo& info) {
    CObject::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::object("env").required().ofClass<CAudioEnv>().help("what the instance's audio side shares with the rest"),
    };
    info.addAttributes(kAttributes);
}

CAudioParamCollector::CAudioParamCollector() = default;
// Those who follow stores go before the parameters that they write.
CAudioParamCollector::~CAudioParamCollector() { m_shared.clear(); }

CError* CAudioParamCollector::init() {
    BRT_TRY(getFullName(), CObject::init());
    BRT_TRY(getFullName(), findObjectByAttr("env", m_env));
    return nullptr;
}

CStringView CAudioParamCollector::resolveAlias(CStringView name) const {
    while (const CString* const target = m_aliases.find(name)) name = *target;
    return name;
}

CAudioParam& CAudioParamCollector::getParam(CStringView name) {
    CAudioParam* param = nullptr;
    bool isNew = false;
    {
        const CRankedLock lock(m_mapSection);
        const CStringView target = resolveAlias(name);
        std::unique_ptr<CAudioParam>& place = m_params.findOrInsert(target, isNew);
        if (isNew) place = std::make_unique<CAudioParam>(*this, target);
        param = place.get();
        isNew = isNew && m_isStarted;
    }
    if (isNew) offer(*param);
    return *param;
}

CAudioParam* CAudioParamCollector::findParam(CStringView name) {
    const CRankedLock lock(m_mapSection);
    const std::unique_ptr<CAudioParam>* const param = m_params.find(resolveAlias(name));
    return param != nullptr ? param->get() : nullptr;
}

void CAudioParamCollector::listParams(CSmallArray<CAudioParam*>& params) {
    const CRankedLock lock(m_mapSection);
    params.clear();
    for (const auto& [name, param] : m_params) params.append(param.get());
}

CError* CAudioParamCollector::addAlias(CStringView name, CStringView target) {
    const CRankedLock lock(m_mapSection);
    if (name == target) return m_aliases.erase(name), nullptr;
    bool isCycle = false;
    for (const CString* step = m_aliases.find(target); step != nullptr && !isCycle; step = m_aliases.find(*step))
        isCycle = *step == name;
    if (isCycle)
        return makeError(
            nullptr, __FILE__, __LINE__, getFullName(),
            "@brtstr_CAudioParamCollector_addAlias_Cycle The parameter name '%1' can't stand for '%2': that "
            "stands for the former.",
            name, target);
    m_aliases.findOrInsert(name) = target;
    return nullptr;
}

void CAudioParamCollector::removeAlias(CStringView name) {
    const CRankedLock lock(m_mapSection);
    m_aliases.erase(name);
}

bool CAudioParamCollector::isAliased(CStringView name) {
    const CRankedLock lock(m_mapSection);
    const CString* const target = m_aliases.find(name);
    return target != nullptr && *target != name;
}

void CAudioParamCollector::addShared(CStringView name, CAppData& store, CStringView dataName) {
    CAudioParam& param = getParam(name);
    CString key = param.name();
    key += "=";
    key += dataName;
    std::unique_ptr<CSharedParam>& shared = m_shared.findOrInsert(key);
    if (!shared) shared = std::make_unique<CSharedParam>(param, store, dataName);
}

void CAudioParamCollector::start() {
    CSmallArray<CAudioParam*> params;
    CSmallArray<CAudioParamRegistryBase*> registries;
    listParams(params);
    {
        const CRankedLock lock(m_mapSection);
        if (m_isStarted) return;
        m_isStarted = true;
        registries.assign(m_registries);
    }
    for (CAudioParam* const param : params) offer(*param);
    for (CAudioParamRegistryBase* const registry : registries) registry->finish();
}

// To those with presets that follow a value first: such a registry has its parameters alone.
void CAudioParamCollector::offer(CAudioParam& param) {
    CSmallArray<CAudioParamRegistryBase*> registries;
    {
        const CRankedLock lock(m_mapSection);
        registries.assign(m_registries);
    }
    for (CAudioParamRegistryBase* const registry : registries)
        if (registry->isEnumerated() && registry->offerParam(param.name(), param)) return;
    for (CAudioParamRegistryBase* const registry : registries)
        if (!registry->isEnumerated()) registry->offerParam(param.name(), param);
}

void CAudioParamCollector::addRegistry(CAudioParamRegistryBase& registry) {
    const CRankedLock lock(m_mapSection);
    int place = 0;
    while (place < m_registries.count() && m_registries[place]->hierarchy().length() >= registry.hierarchy().length())
        ++place;
    m_registries.insertAt(place, &registry);
}

void CAudioParamCollector::removeRegistry(CAudioParamRegistryBase& registry) {
    const CRankedLock lock(m_mapSection);
    const int index = m_registries.find(&registry);
    if (index >= 0) m_registries.removeAt(index);
}

CAudioParamRegistryBase* CAudioParamCollector::findRegistry(CStringView name) {
    const CRankedLock lock(m_mapSection);
    for (CAudioParamRegistryBase* const registry : m_registries)
        if (registry->registryName() == name) return registry;
    return nullptr;
}

CAudioParamUser* CAudioParamCollector::addUser(CAudioParam& param, std::uint8_t* updateNeeded,
                                               std::uint32_t* changedGroups, int group, int element) {
    const CRankedLock lock(m_userSection);
    if (m_freeUsers == nullptr) {
        CUserPage* const page = m_userPages.append(new CUserPage);
        for (CAudioParamUser& user : page->users) user.next = std::exchange(m_freeUsers, &user);
    }
    CAudioParamUser* const user = std::exchange(m_freeUsers, m_freeUsers->next);
    *user = {&param, updateNeeded, changedGroups, group, element, nullptr, param.m_firstUser};
    if (param.m_firstUser != nullptr) param.m_firstUser->previous = user;
    param.m_firstUser = user;
    return user;
}

void CAudioParamCollector::removeUser(CAudioParamUser* user) {
    const CRankedLock lock(m_userSection);
    (user->previous != nullptr ? user->previous->next : user->param->m_firstUser) = user->next;
    if (user->next != nullptr) user->next->previous = user->previous;
    *user = {};
    user->next = std::exchange(m_freeUsers, user);
}

}  // namespace brt
