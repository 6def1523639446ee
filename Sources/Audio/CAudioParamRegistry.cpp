// SPDX-License-Identifier: LicenseRef-Halyard
// Which parameters a registry covers, where their definitions are, and the name of the preset that they show.
#include "Audio/CAudioParamRegistry.h"

#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamDef.h"
#include "Audio/CAudioParamRegistry_p.h"
#include "Core/CApplication.h"

namespace brt {

// Runs once the thread holds no lock: listeners may do what they like.
class CAudioParamRegistry::CNotice final : public CDeferredCall {
public:
    CNotice(CAudioParamRegistry& registry, const void* source) noexcept : m_registry(registry), m_source(source) {}

    void run() override {
        CUpdateData data;
        data.sender = m_source;
        m_registry.notify(&data);
    }
    bool absorb(const CDeferredCall& later) override {
        const auto* const notice = dynamic_cast<const CNotice*>(&later);
        return notice != nullptr && &notice->m_registry == &m_registry && notice->m_source == m_source;
    }

private:
    CAudioParamRegistry& m_registry;
    const void* const m_source;
};

bool CAudioParamRegistry::isCompatible(const CAudioPreset& preset) const {
    CString id;
    CString name;
    CAudioPreset::splitName(preset.name(), id, name);
    return id == m_id;
}

bool CAudioParamRegistry::isStored(const CAudioParamInfo* info, bool includePersistent) const noexcept {
    if (info == nullptr) return false;
    return info->isStorable || (includePersistent && info->isPersistent) || (m_isGlobalParamStorable && info->isGlobal);
}

bool CAudioParamRegistry::offerParam(CStringView fullName, CAudioParam& param) {
    if (fullName.length() <= m_hierarchy.length() || !fullName.startsWith(m_hierarchy)) return false;
    if (!m_isMaster && !m_isEnumerated && m_presetNameParam != nullptr && &param != m_presetNameParam)
        param.addRegistry(*this);
    auto* const pending = new CPendingParam;
    pending->param = &param;
    pending->key = fullName.slice(m_hierarchy.length());
    const CRankedLock lock(m_pendingSection);
    m_pending.append(pending);
    return true;
}

void CAudioParamRegistry::mergePending() {
    const CRankedLock lock(m_pendingSection);
    for (const CPendingParam* const pending : m_pending) m_params.findOrInsert(pending->key) = pending->param;
    m_pending.clear();
}

// Names from a preset are anybody's: only one that spells a definition's own full name counts.
const CAudioParamInfo* CAudioParamRegistry::findDefinition(CStringView paramName) const {
    const CObject* const shared = CApplication::sharedObject();
    if (shared == nullptr) return nullptr;
    for (const CNameRemap* const remap : m_nameRemap) {
        if (!paramName.startsWith(remap->from)) continue;
        const CString path = CString(remap->to).append(paramName.slice(remap->from.length()));
        const auto* const definition = dynamic_cast<const CAudioParamDef*>(shared->findObject(path));
        if (definition != nullptr && definition->info().name == path) return &definition->info();
    }
    return nullptr;
}

const CAudioParamInfo* CAudioParamRegistry::findInfo(const CAudioParam& param) const {
    const CAudioParamInfo* const own = param.info();
    return own != nullptr ? own : findDefinition(param.name());
}

// A user's change makes a preset the user's own.
void CAudioParamRegistry::onUserChange(CAudioParam& param, int group, const CAudioParamChangeContext& context) {
    constexpr CStringView kUserName = "User";
    if (!isStored(param.info(), false)) return;
    CAudioParam& nameParam = *m_presetNameParam;
    const CRankedLock lock(nameParam.section());
    if (nameParam.info() == nullptr || nameParam.getString(group, 0) == kUserName) return;
    nameParam.setString(group, 0, kUserName, &param, context);
}

// The program's name.

CString CAudioParamRegistry::getCurrentProgramName() const {
    const CRankedLock lock(m_nameSection);
    return m_isMaster ? m_session[m_current].name() : CString();
}

CString CAudioParamRegistry::getProgramName(int index) const {
    const CRankedLock lock(m_nameSection);
    return isProgram(index) ? m_session[index].name() : CString();
}

int CAudioParamRegistry::listPresetNames(CStringList& names, bool isFactory) const {
    names.clear();
    const CRankedLock lock(m_nameSection);
    for (const CAudioPreset* const preset : (isFactory ? m_rom : m_session).presets()) names.append(preset->name());
    return m_current;
}

void CAudioParamRegistry::notifyLater(const void* source) {
    deferCall(std::unique_ptr<CDeferredCall>(new CNotice(*this, source)));
}

void CAudioParamRegistry::nameProgram(int index, CStringView fullName, const void* source) {
    {
        const CRankedLock lock(m_nameSection);
        m_session[index == kCurrent ? m_current : index].setName(fullName);
    }
    notifyLater(source);
}

// What is shown and what the program is called: together, so that a name that comes meanwhile becomes both.
void CAudioParamRegistry::setPresetName(CStringView presetName, int group, CAudioParamUndoData* undo) {
    std::optional<CRankedLock> lock;
    if (m_presetNameParam != nullptr) lock.emplace(m_presetNameParam->section());
    if (m_isMaster) nameProgram(kCurrent, presetName, this);
    if (m_presetNameParam == nullptr) return;
    CString id;
    CString name;
    CAudioPreset::splitName(presetName, id, name);
    m_presetNameParam->setString(group, 0, name, this, {.undo = undo});
}

void CAudioParamRegistryNameListener::update(const CUpdateData* data) {
    m_registry.onPresetNameChanged(*static_cast<const CAudioParamUpdateData*>(data));
}

// Under the parameter's lock: takes that of names alone.
void CAudioParamRegistry::onPresetNameChanged(const CAudioParamUpdateData& change) {
    if (!m_isMaster || change.update.group != 0 || change.sender == this) return;
    const CAudioParamStorage& shown = change.param.control();
    if (shown.format().dataType != EAudioDataType::kString) return;
    nameProgram(kCurrent, CString(m_id).append(":").append(shown.data().text(shown.value(0, 0, 0.0))), nullptr);
}

}  // namespace brt
