// SPDX-License-Identifier: LicenseRef-Halyard
// How presets become values, and values presets.
#include "Audio/CAudioParamRegistry.h"

#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamLocks.h"
#include "Audio/CAudioParamRegistry_p.h"
#include "Audio/CAudioRoutingInfoProvider.h"
#include "Core/CMemoryReader.h"
#include "Core/CWriteSeqBuffer.h"

namespace brt {
namespace {

CError* readBlock(CAudioParamBlock& block, const CByteBuffer& bytes, const CAudioParamInfo& info) {
    CMemoryReader reader(bytes.data(), bytes.size());
    BRT_TRY("", block.load(reader, info));
    if (reader.getBytesLeft() == 0) return nullptr;
    return makeError(nullptr, __FILE__, __LINE__, "",
                     "@brtstr_CAudioParamRegistry_readBlock_BytesLeft The preset's value is damaged: %1 bytes are left "
                     "behind it.",
                     reader.getBytesLeft());
}

// What filters write comes behind what they follow: the preset has the last word.
constexpr ELockRank kWriteOrder[] = {ELockRank::kParam, ELockRank::kDependentParam};

CAudioParamLocks lockAll(const CSmallArray<CAudioParam*>& params) {
    return CAudioParamLocks({params.begin(), static_cast<std::size_t>(params.count())});
}

}  // namespace

// Reads all blocks that concern this registry. On failure the plan has those that could be read.
CError* CAudioParamRegistry::readPreset(CPresetPlan& plan, const CAudioPreset& preset, bool includePersistent) {
    mergePending();
    CError* failure = nullptr;
    for (const auto& [key, bytes] : preset.entries()) {
        CAudioParam* const* const param = m_params.find(key);
        // A key that nobody knows makes no parameter, unless there is a definition for it.
        const CAudioParamInfo* const info = param != nullptr ? findInfo(**param) : findDefinition(fullName(key));
        if (!isStored(info, includePersistent)) continue;
        auto write = std::make_unique<CPresetWrite>();
        write->key = key;
        write->param = param != nullptr ? *param : nullptr;
        write->info = info;
        CError* const error = readBlock(write->block, bytes, *info);
        if (error == nullptr)
            plan.writes.append(std::move(write));
        else if (failure == nullptr)
            failure = makeError(error, __FILE__, __LINE__, fullName(key), "");
        else
            discardError(error);  // the first one tells enough
    }
    return failure;
}

void CAudioParamRegistry::findRest(CPresetPlan& plan, const CAudioPreset& preset, int group, bool includePersistent) {
    for (const auto& [key, param] : m_params) {
        const CAudioParamInfo* const info = preset.entries().contains(key) ? nullptr : findInfo(*param);
        if (!isStored(info, includePersistent)) continue;
        // What all groups share stands in presets of the first one alone.
        if (group > 0 && info->format.isSingleGroup) continue;
        CPresetRest& rest = *plan.rest.append(new CPresetRest);
        rest.param = param;
        rest.info = info;
    }
}

// Parameters with a definition that nobody has named before. The name of one that lives on under another name stays
// without, as that one has a key of its own.
void CAudioParamRegistry::makeParams(CPresetPlan& plan) {
    for (int i = plan.writes.count() - 1; i >= 0; --i) {
        CPresetWrite& write = plan.writes[i];
        if (write.param != nullptr) continue;
        const CString name = fullName(write.key);
        if (!m_collector->isAliased(name)) static_cast<void>(m_collector->getParam(name));
        mergePending();
        CAudioParam* const* const made = m_params.find(write.key);
        if (made == nullptr)
            plan.writes.removeAt(i);
        else
            write.param = *made;
    }
}

void CAudioParamRegistry::writePreset(CPresetPlan& plan, const CPresetPlace& place, CAudioParamUndoData* undo) {
    makeParams(plan);
    CSmallArray<CAudioParam*> params;
    for (const CPresetWrite* const write : plan.writes) params.append(write->param);
    for (const CPresetRest* const rest : plan.rest) params.append(rest->param);
    if (m_routingProvider != nullptr) m_routingProvider->listRoutingParams(params);

    const CAudioParamLocks locks = lockAll(params);
    CAudioParamQueue batch;
    writeLocked(plan, place, {.undo = undo, .batch = &batch, .source = this});
    m_collector->handOver(batch);
}

void CAudioParamRegistry::writeLocked(const CPresetPlan& plan, const CPresetPlace& place,
                                      const CAudioParamChangeContext& context) {
    CAudioParamChangeContext attaching = context;
    attaching.undo = nullptr;
    for (const ELockRank rank : kWriteOrder) {
        for (const CPresetWrite* const write : plan.writes) {
            CAudioParam& param = *write->param;
            if (param.section().rank() != rank) continue;
            if (param.info() == nullptr) param.setInfo(*write->info, attaching);
            param.loadBlock(write->block, place.toDefaults, context, place.group, place.element, place.isLastElement);
        }
        for (const CPresetRest* const rest : plan.rest) {
            CAudioParam& param = *rest->param;
            if (param.section().rank() != rank) continue;
            if (param.info() == nullptr) param.setInfo(*rest->info, attaching);
            param.resetToDefinition(place.group, place.element, place.isLastElement, context);
        }
    }
    if (m_routingProvider != nullptr) m_routingProvider->updateRouting(context);
}

CError* CAudioParamRegistry::applyPreset(const CAudioPreset& preset, const CPresetPlace& place, bool includePersistent,
                                         CAudioParamUndoData* undo) {
    const CRankedLock lock(m_paramsSection);
    CPresetPlan plan;
    BRT_TRY(preset.name(), readPreset(plan, preset, includePersistent));
    if (!place.toDefaults) findRest(plan, preset, place.group, includePersistent);
    writePreset(plan, place, undo);
    return nullptr;
}

void CAudioParamRegistry::applyOwnPreset(const CAudioPreset& preset, const CPresetPlace& place, bool includePersistent,
                                         CAudioParamUndoData* undo) {
    const CRankedLock lock(m_paramsSection);
    CPresetPlan plan;
    CError* const error = readPreset(plan, preset, includePersistent);
    logError(error);
    discardError(error);  // logged; what could be read is applied
    if (!place.toDefaults) findRest(plan, preset, place.group, includePersistent);
    writePreset(plan, place, undo);
}

CError* CAudioParamRegistry::checkPreset(const CAudioPreset& preset, bool includePersistent) {
    const CRankedLock lock(m_paramsSection);
    CPresetPlan plan;
    BRT_TRY(preset.name(), readPreset(plan, preset, includePersistent));
    return nullptr;
}

// The live values of all parameters at one time. A group that nobody has set is left out.
void CAudioParamRegistry::snapshotEntries(CAudioPreset& preset, int group) {
    preset.clear();
    const CRankedLock lock(m_paramsSection);
    mergePending();
    CSmallArray<CAudioParam*> params;
    for (const auto& [key, param] : m_params)
        if (isStored(param->info(), true)) params.append(param);
    const CAudioParamLocks locks = lockAll(params);

    for (const auto& [key, param] : m_params) {
        if (!isStored(param->info(), true) || !param->section().isHeld()) continue;
        if (group != CAudioParam::kAllGroups && param->control().elementCount(group) == 0) continue;
        CWriteSeqBuffer stream(CWriteSeqBuffer::kStringBlockBytes);
        CError* const error = param->saveToStream(stream, group);
        logError(error);
        if (discardError(error)) continue;  // logged: the others are worth saving
        stream.moveTo(preset.entries().findOrInsert(key));
    }
}

void CAudioParamRegistry::snapshot(CAudioPreset& preset, int group) {
    snapshotEntries(preset, group);
    if (m_isMaster) return preset.setName(getCurrentProgramName());
    CString name = m_id;
    name += ":";
    if (m_presetNameParam != nullptr) name += m_presetNameParam->getString(group < 0 ? 0 : group, 0);
    preset.setName(name);
}

void CAudioParamRegistry::masterReset() {
    if (!m_isMaster) return;
    const CRankedLock programLock(m_programSection);
    const std::optional<CRankedLock> historyLock = lockHistory();
    std::unique_ptr<CAudioParamUndoRecord> record = makeRecord("Master reset");
    {
        const CRankedLock lock(m_paramsSection);
        mergePending();
        CSmallArray<CAudioParam*> params;
        for (const auto& [key, param] : m_params)
            if (param->info() != nullptr && param->info()->isStorable) params.append(param);
        const int resetCount = params.count();
        if (m_routingProvider != nullptr) m_routingProvider->listRoutingParams(params);

        const CAudioParamLocks locks = lockAll(params);
        CAudioParamQueue batch;
        const CAudioParamChangeContext context{.undo = record.get(), .batch = &batch};
        for (const ELockRank rank : kWriteOrder)
            for (int i = 0; i < resetCount; ++i)
                if (params[i]->section().rank() == rank)
                    params[i]->resetToDefault(CAudioParam::kAllGroups, CAudioParam::kAllElements, context);
        if (m_routingProvider != nullptr) m_routingProvider->updateRouting(context);
        m_collector->handOver(batch);
    }
    submit(std::move(record));
}

void CAudioParamRegistry::setDefaultPreset(CInputStream& stream) {
    if (!m_isMaster) return;
    CAudioPreset preset;
    if (discardError(preset.load(stream)) || !isCompatible(preset)) return;  // what a reset means stays
    const CRankedLock lock(m_programSection);
    CError* const error = applyPreset(preset, {.toDefaults = true}, false, nullptr);
    logError(error);
    discardError(error);  // logged: what a reset means stays
}

}  // namespace brt
