// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/VST/AudioEffectX.h"

#include "Audio/VST/VstText.h"

namespace brt {

// The address that a host hands over as a number.
template <class T>
static T* pointerFrom(std::intptr_t value) noexcept {
    return reinterpret_cast<T*>(value);
}

std::intptr_t AudioEffectX::dispatcher(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr,
                                       float opt) {
    if (opcode < effProcessEvents) return AudioEffect::dispatcher(opcode, index, value, ptr, opt);
    switch (opcode) {
    case effProcessEvents: return ptr != nullptr ? processEvents(*static_cast<const VstEvents*>(ptr)) : 0;
    case effCanBeAutomated: return canParameterBeAutomated(index);
    case effGetPlugCategory: return getPlugCategory();
    case effSetSpeakerArrangement: {
        const auto* const input = pointerFrom<VstSpeakerArrangement>(value);
        const auto* const output = static_cast<VstSpeakerArrangement*>(ptr);
        return input != nullptr && output != nullptr && setSpeakerArrangement(*input, *output);
    }
    case effGetSpeakerArrangement: {
        auto* const input = pointerFrom<VstSpeakerArrangement*>(value);
        auto* const output = static_cast<VstSpeakerArrangement**>(ptr);
        return input != nullptr && output != nullptr && getSpeakerArrangement(*input, *output);
    }
    case effGetProgramNameIndexed:
    case effGetEffectName:
    case effGetVendorString:
    case effGetProductString: return dispatchText(opcode, index, ptr);
    case effGetVendorVersion: return getVendorVersion();
    case effVendorSpecific: return vendorSpecific(index, value, ptr, opt);
    case effCanDo: return canDo(readVstText(ptr));
    case effGetVstVersion: return kInterfaceVersion;
    case effGetCurrentMidiProgram: return -1;
    case effSetTotalSampleToProcess: return value;
    case effSetProcessPrecision: return setProcessPrecision(value);
    // Also for the features that this effect lacks: offline work, a bypass of the host's, a tail, key strokes, MIDI
    // programs, shells.
    default: return 0;
    }
}

std::intptr_t AudioEffectX::dispatchText(std::int32_t opcode, std::int32_t index, void* ptr) {
    CString name;
    switch (opcode) {
    case effGetEffectName: return writeVstText(ptr, getEffectName(), kVstMaxEffectNameLen);
    case effGetVendorString: return writeVstText(ptr, getVendorString(), kVstMaxVendorStrLen);
    case effGetProductString: return writeVstText(ptr, getProductString(), kVstMaxProductStrLen);
    default: break;
    }
    const bool exists = getProgramNameIndexed(index, name);
    return writeVstText(ptr, name, kVstMaxProgNameLen) && exists;
}

const VstTimeInfo* AudioEffectX::getTimeInfo(std::int32_t filter) {
    return pointerFrom<const VstTimeInfo>(callHost(audioMasterGetTime, 0, filter));
}

std::int32_t AudioEffectX::getCurrentProcessLevel() {
    return static_cast<std::int32_t>(callHost(audioMasterGetCurrentProcessLevel));
}

// There are hosts that write more than they may.
CString AudioEffectX::getHostText(std::int32_t opcode) {
    char text[512] = {};
    callHost(opcode, 0, 0, text);
    return readVstText(text, kVstMaxVendorStrLen);
}

}  // namespace brt
