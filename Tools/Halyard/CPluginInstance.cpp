// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/CPluginInstance.h"

#include <algorithm>
#include <cstring>

#include "Audio/VST/VstText.h"
#include "Core/CString.h"
#include "Tools/Halyard/ToolError.h"

namespace brt {
namespace {

constexpr std::intptr_t kHostVersion = 2400;
constexpr std::intptr_t kRealtimeLevel = 2;
// More than the plug-in ever has.
constexpr int kMostChannels = 16;

std::intptr_t answer(AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void* ptr, float) {
    switch (opcode) {
    case audioMasterVersion: return kHostVersion;
    case audioMasterGetCurrentProcessLevel: return kRealtimeLevel;
    case audioMasterGetProductString: return writeVstText(ptr, "halyard", kVstMaxProductStrLen);
    case audioMasterGetVendorString: return writeVstText(ptr, "Brontel", kVstMaxVendorStrLen);
    default: return 0;
    }
}

}  // namespace

CPluginInstance::CPluginInstance(std::shared_ptr<const CPluginModule> module) : m_module(std::move(module)) {
    m_effect = m_module->entry()(&answer);
    if (m_effect == nullptr || m_effect->magic != kEffectMagic)
        throw CToolError("no instance of " + m_module->name() + " can be made; see above");
    const int channels = std::max(m_effect->numInputs, m_effect->numOutputs);
    const bool isUsable = m_effect->numInputs == m_effect->numOutputs && channels >= 1 && channels <= kMostChannels &&
                          (m_effect->flags & effFlagsCanDoubleReplacing) != 0;
    if (!isUsable) {
        call(effClose);
        throw CToolError(m_module->name() + " has not as many outputs as inputs, or no 64-bit samples: it isn't ours");
    }
    call(effOpen);
}

CPluginInstance::~CPluginInstance() { call(effClose); }

std::string CPluginInstance::text(AEffectOpcodes opcode, int room, std::int32_t index) const {
    std::string bytes(static_cast<std::size_t>(std::max(room, 256)), '\0');
    call(opcode, index, 0, bytes.data());
    bytes.resize(std::strlen(bytes.c_str()));
    return CString(bytes).toUtf8();
}

bool CPluginInstance::setChannels(int channelCount) const {
    VstSpeakerArrangement input{};
    input.numChannels = std::min(channelCount, 8);
    VstSpeakerArrangement output = input;
    return call(effSetSpeakerArrangement, 0, reinterpret_cast<std::intptr_t>(&input), &output) != 0;
}

void CPluginInstance::resume(double sampleRateHz, int blockFrames) const {
    call(effSetSampleRate, 0, 0, nullptr, static_cast<float>(sampleRateHz));
    call(effSetBlockSize, 0, blockFrames);
    call(effSetProcessPrecision, 0, kVstProcessPrecision64);
    call(effMainsChanged, 0, 1);
}

void CPluginInstance::settle(double sampleRateHz, int blockFrames) const {
    // A fade, the latency that it may wait for, and the blocks in which the graph builds itself.
    constexpr double kFadeSeconds = 0.02;
    constexpr int kSpareFrames = 2048;
    double* inputs[kMostChannels] = {};
    double* outputs[kMostChannels] = {};
    const int frames = latencySamples() + static_cast<int>(kFadeSeconds * sampleRateHz) + kSpareFrames;
    for (int done = 0; done < frames; done += blockFrames) process(inputs, outputs, blockFrames);
    suspend();
    resume(sampleRateHz, blockFrames);
}

int CPluginInstance::findParameter(const std::string& name) const {
    for (int i = 0; i < m_effect->numParams; ++i)
        if (text(effGetParamName, kVstMaxParamStrLen, i) == name) return i;
    return -1;
}

std::vector<std::uint8_t> CPluginInstance::chunk(bool isPreset) const {
    void* data = nullptr;
    const std::intptr_t size = call(effGetChunk, isPreset, 0, &data);
    if (data == nullptr || size <= 0) return {};
    const auto* const bytes = static_cast<const std::uint8_t*>(data);
    return {bytes, bytes + size};
}

bool CPluginInstance::setChunk(std::vector<std::uint8_t> chunk, bool isPreset) const {
    return call(effSetChunk, isPreset, std::ssize(chunk), chunk.data()) != 0;
}

}  // namespace brt
