// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/VST/AudioEffect.h"

#include "Audio/VST/VstText.h"

namespace brt {

AudioEffect::AudioEffect(audioMasterCallback audioMaster, std::int32_t programCount, std::int32_t paramCount)
    : m_audioMaster(audioMaster), m_numPrograms(programCount), m_numParams(paramCount) {
    m_cEffect.magic = kEffectMagic;
    m_cEffect.dispatcher = &AudioEffect::onDispatch;
    m_cEffect.process = &AudioEffect::onProcess;
    m_cEffect.setParameter = &AudioEffect::onSetParameter;
    m_cEffect.getParameter = &AudioEffect::onGetParameter;
    m_cEffect.numPrograms = programCount;
    m_cEffect.numParams = paramCount;
    m_cEffect.numInputs = 1;
    m_cEffect.numOutputs = 2;
    m_cEffect.flags = effFlagsCanReplacing;
    m_cEffect.ioRatio = 1.0f;
    m_cEffect.object = this;
    m_cEffect.uniqueID = fourCharacters("NoEf");
    m_cEffect.version = 1;
    m_cEffect.processReplacing = &AudioEffect::onProcessReplacing;
    m_cEffect.processDoubleReplacing = &AudioEffect::onProcessDoubleReplacing;
}

AudioEffect::~AudioEffect() = default;

void AudioEffect::setFlag(std::int32_t flag, bool isSet) noexcept {
    m_cEffect.flags = isSet ? m_cEffect.flags | flag : m_cEffect.flags & ~flag;
}

void AudioEffect::setEditor(std::unique_ptr<AEffEditor> editor) {
    m_editor = std::move(editor);
    setFlag(effFlagsHasEditor, m_editor != nullptr);
}

std::intptr_t AudioEffect::callHost(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr,
                                    float opt) {
    return m_audioMaster != nullptr ? m_audioMaster(&m_cEffect, opcode, index, value, ptr, opt) : 0;
}

std::intptr_t AudioEffect::dispatcher(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr,
                                      float opt) {
    switch (opcode) {
    case effOpen: return open(), 0;
    case effClose: return close(), 0;
    case effSetProgram:
        if (value >= 0 && value < m_numPrograms) setProgram(static_cast<std::int32_t>(value));
        return 0;
    case effGetProgram: return getProgram();
    case effSetProgramName:
        if (ptr != nullptr) setProgramName(readVstText(ptr));
        return 0;
    case effGetProgramName: return writeVstText(ptr, getProgramName(), kVstMaxProgNameLen), 0;
    case effGetParamLabel: return writeVstText(ptr, getParameterLabel(index), kVstMaxParamStrLen), 0;
    case effGetParamDisplay: return writeVstText(ptr, getParameterDisplay(index), kVstMaxParamStrLen), 0;
    case effGetParamName: return writeVstText(ptr, getParameterName(index), kVstMaxParamStrLen), 0;
    case effSetSampleRate: return setSampleRate(opt), 0;
    case effSetBlockSize: return setBlockSize(static_cast<std::int32_t>(value)), 0;
    case effMainsChanged: return value != 0 ? resume() : suspend(), 0;
    case effEditGetRect:
    case effEditOpen:
    case effEditClose:
    case effEditIdle: return m_editor != nullptr ? dispatchEditor(opcode, ptr) : 0;
    case effIdentify: return kIdentifyMagic;
    case effGetChunk: return ptr != nullptr ? getChunk(*static_cast<void**>(ptr), index != 0) : 0;
    case effSetChunk: return ptr != nullptr ? setChunk(ptr, value, index != 0) : 0;
    default: return 0;
    }
}

std::intptr_t AudioEffect::dispatchEditor(std::int32_t opcode, void* ptr) {
    switch (opcode) {
    case effEditGetRect: return ptr != nullptr && m_editor->getRect(*static_cast<ERect**>(ptr));
    case effEditOpen: return m_editor->open(ptr);
    case effEditClose: return m_editor->close(), 0;
    default: return m_editor->idle(), 0;
    }
}

void AudioEffect::process(float**, float**, std::int32_t) {}

// What the record points at.

AudioEffect* AudioEffect::objectOf(const AEffect* effect) noexcept {
    return effect != nullptr ? static_cast<AudioEffect*>(effect->object) : nullptr;
}

std::intptr_t AudioEffect::onDispatch(AEffect* effect, std::int32_t opcode, std::int32_t index, std::intptr_t value,
                                      void* ptr, float opt) {
    AudioEffect* const object = objectOf(effect);
    if (object == nullptr) return 0;
    const std::intptr_t result = object->dispatcher(opcode, index, value, ptr, opt);
    if (opcode != effClose) return result;
    delete object;
    return 1;
}

void AudioEffect::onProcess(AEffect* effect, float** inputs, float** outputs, std::int32_t frames) {
    if (AudioEffect* const object = objectOf(effect)) object->process(inputs, outputs, frames);
}

void AudioEffect::onProcessReplacing(AEffect* effect, float** inputs, float** outputs, std::int32_t frames) {
    if (AudioEffect* const object = objectOf(effect)) object->processReplacing(inputs, outputs, frames);
}

void AudioEffect::onProcessDoubleReplacing(AEffect* effect, double** inputs, double** outputs, std::int32_t frames) {
    if (AudioEffect* const object = objectOf(effect)) object->processDoubleReplacing(inputs, outputs, frames);
}

void AudioEffect::onSetParameter(AEffect* effect, std::int32_t index, float value) {
    if (AudioEffect* const object = objectOf(effect)) object->setParameter(index, value);
}

float AudioEffect::onGetParameter(AEffect* effect, std::int32_t index) {
    AudioEffect* const object = objectOf(effect);
    return object != nullptr ? object->getParameter(index) : 0.0f;
}

}  // namespace brt
