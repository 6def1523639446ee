// SPDX-License-Identifier: LicenseRef-Halyard
// One instance of the plug-in and the host that drives it: everything goes through the record that the plug-in gives
// its hosts. Owner: the job that uses it. Threads: those of the interface, see CAudioWrapperVST.h.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Tools/Halyard/CPluginModule.h"

namespace brt {

class CPluginInstance {
public:
    // Throws CToolError.
    explicit CPluginInstance(std::shared_ptr<const CPluginModule> module);
    ~CPluginInstance();
    CPluginInstance(const CPluginInstance&) = delete;
    CPluginInstance& operator=(const CPluginInstance&) = delete;

    const AEffect& effect() const noexcept { return *m_effect; }
    std::intptr_t call(AEffectOpcodes opcode, std::int32_t index = 0, std::intptr_t value = 0, void* ptr = nullptr,
                       float opt = 0.0f) const {
        return m_effect->dispatcher(m_effect, opcode, index, value, ptr, opt);
    }
    // A text of at most `room` bytes, as UTF-8.
    std::string text(AEffectOpcodes opcode, int room, std::int32_t index = 0) const;

    int channelCount() const noexcept { return m_effect->numInputs; }
    int latencySamples() const noexcept { return m_effect->initialDelay; }

    // Asks for that many channels, in and out; false if the plug-in has others.
    bool setChannels(int channelCount) const;
    void resume(double sampleRateHz, int blockFrames) const;
    void suspend() const { call(effMainsChanged, 0, 0); }
    // Ends all fades, and is silent then, as if it had been so for ever.
    void settle(double sampleRateHz, int blockFrames) const;

    // The number of the parameter with that name, -1 if there is none.
    int findParameter(const std::string& name) const;
    // 0 to 1.
    void setParameter(int index, double value) const {
        m_effect->setParameter(m_effect, index, static_cast<float>(value));
    }
    double parameter(int index) const { return static_cast<double>(m_effect->getParameter(m_effect, index)); }

    // Pointers for each channel of the plug-in; null pointers stand for silence, and for what nobody hears.
    void process(double** inputs, double** outputs, int frameCount) const {
        m_effect->processDoubleReplacing(m_effect, inputs, outputs, frameCount);
    }
    void process(float** inputs, float** outputs, int frameCount) const {
        m_effect->processReplacing(m_effect, inputs, outputs, frameCount);
    }

    // What a host stores of it.
    std::vector<std::uint8_t> chunk(bool isPreset) const;
    bool setChunk(std::vector<std::uint8_t> chunk, bool isPreset) const;

private:
    const std::shared_ptr<const CPluginModule> m_module;
    AEffect* m_effect = nullptr;
};

}  // namespace brt
