// SPDX-License-Identifier: LicenseRef-Halyard
// Which modules a terminal process has, and how one takes over from another.
#include <algorithm>

#include "Audio/CAudioProcessDefBase.h"
#include "Audio/CAudioProcessTerminalBase.h"

namespace brt {

int CAudioProcessTerminalBase::findModule(int channelNumber) const noexcept {
    for (int i = 0; i < m_modules.count(); ++i)
        if (m_modules[i].m_channelNumber == channelNumber) return i;
    return -1;
}

// A spare one, or a new one; its history is that of silence once it has been prepared and updated.
std::unique_ptr<CAudioModule> CAudioProcessTerminalBase::obtainModule() {
    if (!m_spares.isEmpty()) return m_spares.take(m_spares.count() - 1);
    std::unique_ptr<CAudioModule> module = createModule();
    module->m_stackIndex = stackIndex();
    module->bindParams();
    return module;
}

// Brings the list of modules up to the channels of the main port.
void CAudioProcessTerminalBase::listModules() {
    const CAudioPort& port = mainPort();
    const bool isWhole = definition().isTerminalWhole();
    const int wantedCount = isWhole ? 1 : port.channelCount();
    // Modules of channels that have gone are spares before others are looked for.
    for (int i = m_modules.count() - 1; i >= 0; --i) {
        const int number = m_modules[i].m_channelNumber;
        const auto isOfModule = [number](const CAudioChannel& channel) { return channel.number == number; };
        if (!isWhole && std::none_of(port.table().begin(), port.table().end(), isOfModule))
            m_spares.append(m_modules.take(i));
    }
    COwnedArray<CAudioModule> kept;
    for (int i = 0; i < wantedCount; ++i) {
        const int number = isWhole ? CAudioModule::kWholePort : port.channel(i).number;
        const int index = findModule(number);
        const bool isNew = index < 0;
        CAudioModule* const module = kept.append(isNew ? obtainModule() : m_modules.take(index));
        module->m_channelNumber = number;
        if (isWhole)
            connectModule(*module, 0, port.channelCount());
        else
            connectModule(*module, i, 1);
        if (isNew) module->prepare();
    }
    while (!kept.isEmpty()) m_modules.insertAt(0, kept.take(kept.count() - 1).release());
}

// Inputs are `count` channels of the main port.
void CAudioProcessTerminalBase::connectModule(CAudioModule& module, int firstPosition, int count) {
    const CAudioPort& port = mainPort();
    module.m_inputCount = count;
    module.m_outputCount = hasOutputs() ? count : 0;
    for (int i = 0; i < count; ++i) {
        const CAudioChannel& channel = port.channel(firstPosition + i);
        module.m_inputs[static_cast<std::size_t>(i)] = port.slot(firstPosition + i);
        CAudioChannel& output = module.output(i);
        output.number = channel.number;
        output.group = channel.group;
        output.latencySamples = largestLatencySamples();
        output.buffer.reset();
    }
    module.m_group = count > 0 ? port.channel(firstPosition).group : group();
    module.m_sampleRate = sampleRate();
    module.m_latencyBase = largestLatencySamples();
}

CAudioProcessTerminalBase::CCrossfade* CAudioProcessTerminalBase::findFade(const CAudioModule& module) const noexcept {
    for (CCrossfade* const fade : m_fades)
        if (fade->to == &module) return fade;
    return nullptr;
}

void CAudioProcessTerminalBase::startFade(int moduleIndex) {
    const CAudioModule& old = m_modules[moduleIndex];
    std::unique_ptr<CAudioModule> fresh = obtainModule();
    fresh->m_channelNumber = old.m_channelNumber;
    fresh->m_group = old.m_group;
    fresh->m_inputs = old.m_inputs;
    fresh->m_inputCount = old.m_inputCount;
    fresh->m_outputCount = old.m_outputCount;
    for (int i = 0; i < old.m_outputCount; ++i) {
        fresh->output(i) = old.m_outputs[static_cast<std::size_t>(i)];
        fresh->output(i).latencySamples = old.m_latencyBase;
        fresh->output(i).buffer.reset();
    }
    fresh->m_sampleRate = old.m_sampleRate;
    fresh->m_latencyBase = old.m_latencyBase;
    fresh->m_blockLength = old.m_blockLength;
    fresh->prepare();
    updateNow(*fresh);

    int latency = largestLatencySamples();
    for (int i = 0; i < fresh->m_outputCount; ++i) latency = std::max(latency, fresh->output(i).latencySamples);
    const bool isSameForm = fresh->m_outputCount == old.m_outputCount;
    CAudioModule* const module = fresh.get();
    std::unique_ptr<CAudioModule> replaced = m_modules.take(moduleIndex);
    m_modules.insertAt(moduleIndex, fresh.release());
    m_isTableStale = true;
    if (!isSameForm) {
        m_spares.append(std::move(replaced));
        return;
    }
    CCrossfade* const fade = m_fades.append(new CCrossfade(std::move(replaced), module, m_fadeSamples));
    fade->waitLeft = latency - largestLatencySamples();
    addTimedEvent((fade->waitLeft + m_fadeSamples) / sampleRate(), &fade->isFinished);
}

// The fresh module stays.
void CAudioProcessTerminalBase::endFade(int fadeIndex) {
    CCrossfade& fade = m_fades[fadeIndex];
    removeTimedEvents(&fade.isFinished);
    for (int i = 0; i < fade.from->m_outputCount; ++i) fade.from->output(i).buffer.reset();
    m_spares.append(std::move(fade.from));
    m_fades.removeAt(fadeIndex);
}

void CAudioProcessTerminalBase::runFade(CCrossfade& fade) {
    const int count = blockLength();
    const int wait = std::min(fade.waitLeft, count);
    const int fadeEnd = wait + std::min(fade.fadeLeft, count - wait);
    if (fadeEnd == 0) return;
    for (int i = 0; i < fade.to->m_outputCount; ++i) {
        const double* const old = fade.from->output(i).buffer.samples();
        const double* const fresh = fade.to->output(i).buffer.samples();
        CAudioBufferRef mixed = pool().takeBlock(count);
        double* const out = mixed.samples();
        CRaisedCosine& curve = fade.curves[i];
        std::copy_n(old, wait, out);
        for (int n = wait; n < fadeEnd; ++n) {
            const double weight = curve.next();
            out[n] = weight * old[n] + (1.0 - weight) * fresh[n];
        }
        std::copy_n(fresh + fadeEnd, count - fadeEnd, out + fadeEnd);
        fade.to->output(i).buffer = std::move(mixed);
    }
    fade.waitLeft -= wait;
    fade.fadeLeft -= fadeEnd - wait;
}

void CAudioProcessTerminalBase::finishBlock() {
    for (CCrossfade* const fade : m_fades) runFade(*fade);
    beginDelivery();
    for (CAudioModule* const module : m_modules) {
        for (int i = 0; i < module->m_outputCount; ++i) {
            CAudioChannel& channel = module->output(i);
            deliver(channel.port, channel.number, std::move(channel.buffer));
        }
    }
    for (CCrossfade* const fade : m_fades)
        for (int i = 0; i < fade->from->m_outputCount; ++i) fade->from->output(i).buffer.reset();
    releaseInputs();
}

}  // namespace brt
