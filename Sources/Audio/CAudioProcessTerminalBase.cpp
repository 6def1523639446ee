// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioProcessTerminalBase.h"

#include <algorithm>
#include <cmath>

#include "Audio/CAudioParamAllocDef.h"
#include "Audio/CAudioProcessDefBase.h"
#include "Core/CError.h"

namespace brt {
namespace {

bool isSameTable(std::span<const CAudioChannel> a, std::span<const CAudioChannel> b) noexcept {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const CAudioChannel& x, const CAudioChannel& y) {
        return x.number == y.number && x.group == y.group && x.latencySamples == y.latencySamples && x.port == y.port;
    });
}

}  // namespace

CAudioProcessTerminalBase::~CAudioProcessTerminalBase() = default;

CError* CAudioProcessTerminalBase::init() {
    BRT_TRY(path(), CAudioProcessBase::init());
    for (const auto& [index, allocation] : definition().paramAllocs()) {
        CParam& param = m_params.findOrInsert(index);
        param.isSmoothUpdate = allocation->isSmoothUpdate();
        param.useAllGroups = allocation->useAllGroups();
        param.binding = &bindParam(allocation->paramName(), param.useAllGroups, allocation->useAllElements());
    }
    constexpr double kShortestFadeSeconds = 0.0001;
    m_fadeSeconds = std::max(definition().getAttrDouble("xfade-length"), kShortestFadeSeconds);
    return nullptr;
}

const CAudioParamStorage* CAudioProcessTerminalBase::paramValues(int index) const noexcept {
    const CParam* const param = m_params.find(index);
    return param != nullptr ? param->binding->values : nullptr;
}

void CAudioProcessTerminalBase::reset() {
    CAudioProcessBase::reset();
    removeAllTimedEvents();
    while (!m_fades.isEmpty()) {
        // What a fade still had to bring must not be lost with it.
        CCrossfade& fade = m_fades[m_fades.count() - 1];
        const bool isValueMissing = fade.isRestartWanted;
        CAudioModule& module = *fade.to;
        endFade(m_fades.count() - 1);
        if (isValueMissing) updateNow(module);
    }
    for (CAudioModule* const module : m_modules) module->reset();
    rebuildOutputs();
}

void CAudioProcessTerminalBase::update() {
    if (isUpdateInProgress())
        updateLayout();
    else
        updateModules();
    finishFades();
    if (std::exchange(m_isTableStale, false) || isUpdateInProgress()) rebuildOutputs();
}

// Channels, latency or rate have changed: all fades are over, every module starts from what is there now.
void CAudioProcessTerminalBase::updateLayout() {
    while (!m_fades.isEmpty()) endFade(m_fades.count() - 1);
    m_fadeSamples = std::max(1, static_cast<int>(std::lround(sampleRate() * m_fadeSeconds)));
    listModules();
    for (CAudioModule* const module : m_modules) updateNow(*module);
}

void CAudioProcessTerminalBase::updateModules() {
    const bool isSmooth = flagModules();
    for (int i = 0; i < m_modules.count(); ++i) {
        CAudioModule& module = m_modules[i];
        if (!module.m_needsUpdate) continue;
        if (!isSmooth) {
            module.update();
        } else if (CCrossfade* const fade = findFade(module)) {
            fade->isRestartWanted = true;
        } else {
            startFade(i);
        }
    }
    for (CAudioModule* const module : m_modules) {
        module->m_needsUpdate = false;
        for (CAudioModule::CParamSlot* const slot : module->m_slots)
            if (slot != nullptr) slot->isChanged = false;
    }
}

// Marks what has changed for each module; true if a fade is asked for.
bool CAudioProcessTerminalBase::flagModules() {
    bool isSmooth = definition().isSmoothUpdate();
    for (const auto& [index, param] : m_params) {
        if (param.binding->changedGroups == 0) continue;
        isSmooth = isSmooth || param.isSmoothUpdate;
        for (CAudioModule* const module : m_modules) {
            if (index >= module->m_slots.count() || module->m_slots[index] == nullptr) continue;
            const int group = param.binding->values->format().isSingleGroup ? 0 : module->m_group;
            if (!param.useAllGroups && (param.binding->changedGroups >> group & 1U) == 0) continue;
            module->m_slots[index]->isChanged = true;
            module->m_needsUpdate = true;
        }
    }
    return isSmooth;
}

void CAudioProcessTerminalBase::updateNow(CAudioModule& module) {
    module.m_allParamsChanged = true;
    for (CAudioModule::CParamSlot* const slot : module.m_slots)
        if (slot != nullptr) slot->isChanged = true;
    module.update();
    for (CAudioModule::CParamSlot* const slot : module.m_slots)
        if (slot != nullptr) slot->isChanged = false;
    module.m_allParamsChanged = module.m_needsUpdate = false;
}

void CAudioProcessTerminalBase::finishFades() {
    for (int i = m_fades.count() - 1; i >= 0; --i) {
        if (!m_fades[i].isFinished) continue;
        const bool isRestartWanted = m_fades[i].isRestartWanted;
        const int module = m_modules.find(m_fades[i].to);
        endFade(i);
        if (isRestartWanted) startFade(module);
        m_isTableStale = true;
    }
}

void CAudioProcessTerminalBase::rebuildOutputs() {
    std::array<CAudioChannel, kAudioTableLimit> table{};
    std::size_t count = 0;
    m_running.clear();
    for (CAudioModule* const module : m_modules) {
        for (int i = 0; i < module->m_outputCount && count < table.size(); ++i) {
            CAudioChannel& row = table[count++];
            row.number = module->output(i).number;
            row.group = module->output(i).group;
            row.latencySamples = module->output(i).latencySamples;
            row.port = module->output(i).port;
        }
        m_running.append(module);
        if (const CCrossfade* const fade = findFade(*module)) m_running.append(fade->from.get());
    }
    if (isUpdateInProgress() || !isSameTable(outputTable(), {table.data(), count}))
        setOutputTable({table.data(), count}, sampleRate());
}

}  // namespace brt
