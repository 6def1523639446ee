// SPDX-License-Identifier: LicenseRef-Halyard
// Programs, texts, state, channels; what hosts ask and tell beside blocks.
#include <limits>

#include "Audio/CAudioExtParam.h"
#include "Audio/CAudioPreset.h"
#include "Audio/VST/CAudioWrapperVST.h"
#include "Audio/VST/VstText.h"
#include "Core/CError.h"
#include "Core/Log.h"
#include "Core/NumberText.h"
#include "Core/TimeBase.h"

namespace brt {
namespace {

// Calls that one host's makers have agreed on with makers of effects.
constexpr std::int32_t kWheelIndex = fourCharacters("stCA");
constexpr std::int32_t kLetterCaseBit = 0x20;
constexpr std::intptr_t kWheelValue = fourCharacters("Whee");
constexpr std::intptr_t kExtensionsFeature = 0xbeef0000;
constexpr std::intptr_t kExtensionDone = 0xbeef;

struct CCategory {
    CStringView name;
    VstPlugCategory category;
};

constexpr CCategory kCategories[] = {
    {"kPlugCategUnknown", kPlugCategUnknown},
    {"kPlugCategEffect", kPlugCategEffect},
    {"kPlugCategSynth", kPlugCategSynth},
    {"kPlugCategAnalysis", kPlugCategAnalysis},
    {"kPlugCategMastering", kPlugCategMastering},
    {"kPlugCategSpacializer", kPlugCategSpacializer},
    {"kPlugCategRoomFx", kPlugCategRoomFx},
    {"kPlugSurroundFx", kPlugSurroundFx},
    {"kPlugCategRestoration", kPlugCategRestoration},
    {"kPlugCategOfflineProcess", kPlugCategOfflineProcess},
    {"kPlugCategShell", kPlugCategShell},
    {"kPlugCategGenerator", kPlugCategGenerator},
};

CString defaultChannelName(int channel) {
    if (channel < 2) return channel == 0 ? "L" : "R";
    return CString("IN").append(integerText(channel + 1));
}

// Programs carry the registry's id in front, which says nothing to users.
CString withoutId(CStringView fullName) {
    CString id;
    CString name;
    CAudioPreset::splitName(fullName, id, name);
    return name;
}

EStateKind stateKind(bool isPreset) noexcept { return isPreset ? EStateKind::kPreset : EStateKind::kBank; }

}  // namespace

// Programs.

void CAudioWrapperVST::setProgram(std::int32_t program) {
    m_curProgram = program;
    registry().setCurrentProgram(program, this);
}

std::int32_t CAudioWrapperVST::getProgram() { return registry().getCurrentProgram(); }

void CAudioWrapperVST::setProgramName(CStringView name) {
    registry().renamePreset(registry().getCurrentProgram(), name, this);
}

CString CAudioWrapperVST::getProgramName() { return withoutId(registry().getCurrentProgramName()); }

bool CAudioWrapperVST::getProgramNameIndexed(std::int32_t index, CString& name) {
    if (index < 0 || index >= registry().getProgramCount()) return false;
    name = withoutId(registry().getProgramName(index));
    return true;
}

// Parameters as texts.

CString CAudioWrapperVST::getParameterLabel(std::int32_t index) {
    const CAudioExtParam* const found = extParam(index);
    return found != nullptr ? found->getLabel() : CStringView();
}

CString CAudioWrapperVST::getParameterDisplay(std::int32_t index) {
    const CAudioExtParam* const found = extParam(index);
    return found != nullptr ? found->getText() : CString();
}

CString CAudioWrapperVST::getParameterName(std::int32_t index) {
    const CAudioExtParam* const found = extParam(index);
    return found != nullptr ? found->getName() : CString();
}

// State.

std::int32_t CAudioWrapperVST::getChunk(void*& data, bool isPreset) {
    const double startSeconds = secondsSinceOrigin();
    data = nullptr;
    if (CError* error = getState(m_chunk, stateKind(isPreset), true)) return showError(error), 0;
    logLine("VST get chunk time (isPreset=%i): %.4f s @ %.4f s", isPreset ? 1 : 0, secondsSinceOrigin() - startSeconds,
            secondsSinceOrigin());
    data = m_chunk.data();
    return m_chunk.size();
}

std::int32_t CAudioWrapperVST::setChunk(const void* data, std::intptr_t size, bool isPreset) {
    const double startSeconds = secondsSinceOrigin();
    if (size <= kStatePrefixBytes || size > std::numeric_limits<std::int32_t>::max()) return 0;
    if (CError* error = setState(data, static_cast<int>(size), stateKind(isPreset), true)) return showError(error), 0;
    logLine("VST set chunk time (isPreset=%i): %.4f s @ %.4f s", isPreset ? 1 : 0, secondsSinceOrigin() - startSeconds,
            secondsSinceOrigin());
    return 1;
}

// Channels.

void CAudioWrapperVST::updateChannelNames() {
    CStringList names;
    for (int i = 0; i < m_channelLimit; ++i) {
        const CString name = m_inputArrangement.channelName(i);
        names.append(name.isEmpty() ? defaultChannelName(i) : name);
    }
    setHostChannels(m_inputCount.load(std::memory_order_relaxed), names);
    if (m_behaviour.hasAutoRouting) updateDefaultRouting(true);
}

bool CAudioWrapperVST::setSpeakerArrangement(const VstSpeakerArrangement& input, const VstSpeakerArrangement& output) {
    const int inputs = input.numChannels;
    const int outputs = output.numChannels;
    if (inputs < 1 || inputs > m_channelLimit || outputs > m_channelLimit) return false;
    if (inputs != outputs && (product().isSymmetricIo || (outputs != 1 && outputs != 2))) return false;
    m_inputArrangement.assign(input);
    m_outputArrangement.assign(output);
    m_inputCount.store(inputs, std::memory_order_relaxed);
    m_outputCount.store(outputs, std::memory_order_relaxed);
    updateChannelNames();
    return true;
}

bool CAudioWrapperVST::getSpeakerArrangement(VstSpeakerArrangement*& input, VstSpeakerArrangement*& output) {
    input = m_inputArrangement.record();
    output = m_outputArrangement.record();
    return input != nullptr && output != nullptr;
}

// What the plug-in is.

VstPlugCategory CAudioWrapperVST::getPlugCategory() {
    const CObject* const project = root().findObject("shared::project");
    const CStringView name = project != nullptr ? project->getAttrString("plugin-category-vst") : CStringView();
    for (const CCategory& row : kCategories)
        if (row.name == name) return row.category;
    return kPlugCategEffect;
}

CString CAudioWrapperVST::getEffectName() { return product().appName; }

CString CAudioWrapperVST::getVendorString() { return product().vendorName; }

CString CAudioWrapperVST::getProductString() {
    return CString(product().vendorName).append(" ").append(product().appName);
}

std::int32_t CAudioWrapperVST::getVendorVersion() {
    const auto [major, minor, patch] = product().version;
    return major << 16 | minor << 8 | patch;
}

std::intptr_t CAudioWrapperVST::canDo(CStringView feature) {
    if (feature == "hasCockosExtensions") return kExtensionsFeature;
    return feature == "receiveVstMidiEvent" || feature == "receiveVstTimeInfo";
}

std::intptr_t CAudioWrapperVST::vendorSpecific(std::int32_t index, std::intptr_t value, void* ptr, float opt) {
    if ((index & ~kLetterCaseBit) == kWheelIndex) {
        if (value != kWheelValue) return 0;
        if (m_editor != nullptr) m_editor->onWheel(opt);
        return 1;
    }
    if ((index != effString2Parameter && index != effGetParamDisplay) || ptr == nullptr) return 0;
    const CAudioExtParam* const found =
        value >= 0 && value < extParamCount() ? extParam(static_cast<int>(value)) : nullptr;
    CString text;
    if (found != nullptr && index == effString2Parameter)
        text = fixedText(found->textToNormal(readVstText(ptr)), 6);
    else if (found != nullptr)
        text = found->normalToText(static_cast<double>(opt));
    writeVstText(ptr, text, kVstMaxParamStrLen);
    return kExtensionDone;
}

}  // namespace brt
