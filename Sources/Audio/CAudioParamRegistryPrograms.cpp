// SPDX-License-Identifier: LicenseRef-Halyard
// Programs, banks, A/B: presets that are activated and saved as a whole, each with the history that belongs to it.
#include "Audio/CAudioParamRegistry.h"

#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamRegistry_p.h"

namespace brt {

// The history.

std::optional<CRankedLock> CAudioParamRegistry::lockHistory() {
    return m_undo != nullptr ? std::optional<CRankedLock>(std::in_place, m_undo->undoSection())
                             : std::optional<CRankedLock>();
}

std::unique_ptr<CAudioParamUndoRecord> CAudioParamRegistry::makeRecord(CStringView label) const {
    return m_undo != nullptr ? std::make_unique<CAudioParamUndoRecord>(label) : nullptr;
}

void CAudioParamRegistry::submit(std::unique_ptr<CAudioParamUndoRecord> record) {
    if (m_undo != nullptr) m_undo->submit(std::move(record));
}

CString CAudioParamRegistry::activationLabel(int group) const {
    CString label = m_presetNaming;
    label += " activate";
    if (group == CAudioParam::kAllGroups) return label;
    CString groupName;
    if (m_groupNamesParam != nullptr)
        groupName = m_groupNamesParam->getString(0, group);
    else
        CString::fromInt(groupName, std::int64_t{group} + 1);
    return label.append(" (").append(groupName).append(")");
}

// Programs.

int CAudioParamRegistry::getProgramCount() const noexcept {
    if (!m_isMaster) return 0;
    return m_rom.count() > 0 ? m_rom.count() : 1;
}

int CAudioParamRegistry::getCurrentProgram() const {
    const CRankedLock lock(m_nameSection);
    return m_current;
}

void CAudioParamRegistry::setCurrentProgram(int index, const void* source) {
    const CRankedLock lock(m_programSection);
    if (!isProgram(index) || index == m_current) return;
    const std::optional<CRankedLock> historyLock = lockHistory();
    snapshotEntries(currentPreset(), CAudioParam::kAllGroups);
    if (m_undo != nullptr) {
        m_undo->exchangeHistory(m_parked[index].history);
        m_parked[m_current].history.swap(m_parked[index].history);
    }
    {
        const CRankedLock nameLock(m_nameSection);
        m_current = index;
    }
    applyOwnPreset(currentPreset(), {}, false, nullptr);
    if (m_presetNameParam != nullptr) {
        CString id;
        CString name;
        CAudioPreset::splitName(getCurrentProgramName(), id, name);
        m_presetNameParam->setString(0, 0, name, source);
    }
    notifyLater(source);
}

void CAudioParamRegistry::renamePreset(int index, CStringView name, const void* source) {
    const CRankedLock lock(m_programSection);
    if (!isProgram(index)) return;
    const CString presetName = CString(m_id).append(":").append(name);
    if (index != m_current) return nameProgram(index, presetName, source);
    const std::optional<CRankedLock> historyLock = lockHistory();
    std::unique_ptr<CAudioParamUndoRecord> record = makeRecord("Program name change");
    setPresetName(presetName, 0, record.get());
    submit(std::move(record));
}

// Presets.

CError* CAudioParamRegistry::activatePreset(CInputStream& stream, bool includePersistent, int group) {
    CAudioPreset preset;
    BRT_TRY(getFullName(), preset.load(stream));
    if (!isCompatible(preset))
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CAudioParamRegistry_activatePreset_IncompatiblePreset Incompatible preset.");
    if (group < CAudioParam::kAllGroups || group >= kAudioGroupLimit)
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CAudioParamRegistry_activatePreset_GroupError Invalid group %1 specified.", group);
    const CRankedLock lock(m_programSection);
    const std::optional<CRankedLock> historyLock = lockHistory();
    std::unique_ptr<CAudioParamUndoRecord> record = makeRecord(activationLabel(group));
    BRT_TRY(getFullName(), applyPreset(preset, {.group = group}, includePersistent, record.get()));
    setPresetName(preset.name(), group == CAudioParam::kAllGroups ? 0 : group, record.get());
    submit(std::move(record));
    return nullptr;
}

void CAudioParamRegistry::activateFactoryPreset(int index) {
    const CRankedLock lock(m_programSection);
    if (!m_isMaster || index < 0 || index >= m_rom.count()) return;
    const std::optional<CRankedLock> historyLock = lockHistory();
    std::unique_ptr<CAudioParamUndoRecord> record = makeRecord("ROM preset activate");
    applyOwnPreset(m_rom[index], {}, false, record.get());
    setPresetName(m_rom[index].name(), 0, record.get());
    submit(std::move(record));
}

// A program's preset with its present name, which may change at any time.
void CAudioParamRegistry::copyProgram(CAudioPreset& copy, int index) const {
    const CRankedLock lock(m_nameSection);
    copy.assign(m_session[index]);
}

CError* CAudioParamRegistry::acquirePreset(bool isFactory, int index, int group, COutputStream& stream) {
    const CRankedLock lock(m_programSection);
    CAudioPreset preset;
    if (!m_isMaster) {
        snapshot(preset, group);
        BRT_TRY(getFullName(), preset.save(stream));
        return nullptr;
    }
    const int place = index == kCurrent && !isFactory ? m_current : index;
    if (place < 0 || place >= (isFactory ? m_rom.count() : sessionCount()))
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CAudioParamRegistry_acquirePreset_PresetIndexError Invalid preset index %1 "
                         "specified.",
                         index);
    if (!isFactory) {
        if (place == m_current) snapshotEntries(currentPreset(), CAudioParam::kAllGroups);
        copyProgram(preset, place);
    }
    BRT_TRY(getFullName(), (isFactory ? m_rom[place] : preset).save(stream));
    return nullptr;
}

// Banks.

CError* CAudioParamRegistry::acquireBank(bool isFactory, COutputStream& stream) {
    if (!m_isMaster)
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CAudioParamRegistry_acquireBank_NonMasterRegistry Acquiring bank in a non-master "
                         "registry is an error.");
    if (isFactory) {
        BRT_TRY(getFullName(), m_rom.save(stream));
        return nullptr;
    }
    const CRankedLock lock(m_programSection);
    snapshotEntries(currentPreset(), CAudioParam::kAllGroups);
    CAudioPresetBank bank;
    {
        const CRankedLock nameLock(m_nameSection);
        bank.assign(m_session);
    }
    spreadSessionValues(bank);
    BRT_TRY(getFullName(), bank.save(stream));
    return nullptr;
}

// What belongs to the session and to no program stands in all of them: whoever takes the bank back may be at another
// one, and activates that.
void CAudioParamRegistry::spreadSessionValues(CAudioPresetBank& bank) {
    const CAudioPreset& live = bank[m_current];
    const CRankedLock lock(m_paramsSection);
    for (const auto& [key, param] : m_params) {
        const CAudioParamInfo* const info = param->info();
        const CByteBuffer* const block = live.entries().find(key);
        if (info == nullptr || !info->isPersistent || info->isStorable || block == nullptr) continue;
        for (CAudioPreset* const preset : bank.presets())
            if (preset != &live) preset->entries().findOrInsert(key).assign(block->data(), block->size());
    }
}

CError* CAudioParamRegistry::checkBank(const CAudioPresetBank& bank, int count, bool includePersistent) {
    for (int i = 0; i < count; ++i) {
        if (!isCompatible(bank[i]))
            return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                             "@brtstr_CAudioParamRegistry_activateBank_IncompatibleBank Incompatible bank.");
    }
    for (int i = 0; i < count; ++i) BRT_TRY(getFullName(), checkPreset(bank[i], includePersistent));
    return nullptr;
}

CError* CAudioParamRegistry::activateBank(CInputStream& stream, bool includePersistent) {
    CAudioPresetBank bank;
    BRT_TRY(getFullName(), bank.load(stream));
    const CRankedLock lock(m_programSection);
    const int count = bank.count() < sessionCount() ? bank.count() : sessionCount();
    BRT_TRY(getFullName(), checkBank(bank, count, includePersistent));

    const std::optional<CRankedLock> historyLock = lockHistory();
    takeBank(bank, count);
    dropShadow();
    if (m_current >= count) {
        notifyLater(this);
        return nullptr;
    }
    if (m_undo != nullptr) {
        std::unique_ptr<CAudioParamUndoHistory> dropped;
        m_undo->exchangeHistory(dropped);
    }
    applyOwnPreset(currentPreset(), {}, includePersistent, nullptr);
    setPresetName(getCurrentProgramName(), 0, nullptr);
    return nullptr;
}

void CAudioParamRegistry::takeBank(const CAudioPresetBank& bank, int count) {
    const CRankedLock lock(m_nameSection);
    for (int i = 0; i < count; ++i) {
        m_session[i].assign(bank[i]);
        m_parked[i].history.reset();
    }
}

// A/B.

// The other side must never bring back the state of another song.
void CAudioParamRegistry::dropShadow() {
    m_shadowPreset.reset();
    m_shadowHistory.reset();
    if (CAudioParam* const side = m_collector->findParam(fullName("ab-state"))) side->setFloat(0.0, 0, this);
}

void CAudioParamRegistry::refreshShadow() {
    m_shadowPreset = std::make_unique<CAudioPreset>();
    snapshot(*m_shadowPreset, CAudioParam::kAllGroups);
    m_shadowHistory = m_undo != nullptr ? m_undo->cloneHistory() : nullptr;
}

void CAudioParamRegistry::exchangeShadowPreset() {
    if (!m_isMaster) return;
    const CRankedLock lock(m_programSection);
    const std::optional<CRankedLock> historyLock = lockHistory();
    if (!m_shadowPreset) refreshShadow();
    auto live = std::make_unique<CAudioPreset>();
    snapshot(*live, CAudioParam::kAllGroups);
    applyOwnPreset(*m_shadowPreset, {}, false, nullptr);
    setPresetName(m_shadowPreset->name(), 0, nullptr);
    if (m_undo != nullptr) m_undo->exchangeHistory(m_shadowHistory);
    m_shadowPreset = std::move(live);
}

void CAudioParamRegistry::updateShadowPreset() {
    if (!m_isMaster) return;
    const CRankedLock lock(m_programSection);
    const std::optional<CRankedLock> historyLock = lockHistory();
    refreshShadow();
}

}  // namespace brt
