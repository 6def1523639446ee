// SPDX-License-Identifier: LicenseRef-Halyard
// A small piece of signal processing inside a terminal process: one for each channel, or one for the whole port.
//
// The process gives it its channels, has it `update` when a parameter or the layout has changed, and runs it. It reads
// parameters at its own group and stack index.
// Owner: the process. Threads: audio; before there is one, the thread that builds the graph.
#pragma once

#include <array>

#include "Audio/CAudioProcessBase.h"

namespace brt {

class CAudioProcessTerminalBase;

class CAudioModule : public CCheckedObject, public CBrtMemAllocator {
public:
    static constexpr int kWholePort = -1;      // in place of a channel number
    static constexpr bool kHasOutputs = true;  // a class without outputs says so

    // One parameter of a module, by the index of its allocation.
    struct CParamSlot {
        const CAudioParamStorage* values = nullptr;  // null: the definition allocates none
        bool isChanged = false;
    };

    explicit CAudioModule(CAudioProcessTerminalBase& process);

    // Once, when channels, sample rate and latency base are known.
    virtual void prepare() {}
    // Forgets all history.
    virtual void reset() {}
    // Reads parameters; on a full update also reports latency.
    virtual void update() {}
    // Once after creation: `bind` for each parameter.
    virtual void bindParams() {}

    int channelNumber() const noexcept { return m_channelNumber; }
    int group() const noexcept { return m_group; }
    int stackIndex() const noexcept { return m_stackIndex; }
    double sampleRate() const noexcept { return m_sampleRate; }
    int latencyBaseSamples() const noexcept { return m_latencyBase; }
    int blockLength() const noexcept { return m_blockLength; }

    int inputCount() const noexcept { return m_inputCount; }
    // A channel that delivers nothing in this block is silent.
    const CAudioChannel& input(int index) const noexcept { return **m_inputs[static_cast<std::size_t>(index)]; }
    int outputCount() const noexcept { return m_outputCount; }
    CAudioChannel& output(int index) noexcept { return m_outputs[static_cast<std::size_t>(index)]; }

protected:
    CAudioProcessTerminalBase& process() const noexcept { return m_process; }
    const CAudioProcessContext& context() const noexcept;
    CAudioBufferPool& pool() const noexcept;

    // Ties a slot to the parameter that the definition allocates at `index`; without one it logs that.
    void bind(CParamSlot& slot, int index);
    // The value at this module's group and stack index; `fallback` if the parameter is not in effect.
    double value(const CParamSlot& slot, double fallback) const noexcept {
        return slot.values != nullptr ? slot.values->value(m_group, m_stackIndex, fallback) : fallback;
    }
    // Everything has changed: channels, latency, rate, or the module is new.
    bool isFullUpdate() const noexcept { return m_allParamsChanged; }

    // The samples of an input, silence included. Good for this block.
    const double* inputSamples(int index);
    CAudioBufferRef inputBuffer(int index);
    // What an output delivers beyond the latency base. Full updates only.
    void setLatency(int output, int samples);
    // The channel of port 1 that belongs to this module's: of the same number and group, else the last one of the
    // group; null if there is none.
    const CAudioPort::CSlot* findPartner() const noexcept;

private:
    friend class CAudioProcessTerminalBase;

    CAudioProcessTerminalBase& m_process;
    int m_group = 0;
    int m_channelNumber = kWholePort;
    int m_stackIndex = 0;
    CSmallArray<CParamSlot*> m_slots;  // by allocation index; null where the module has none
    bool m_allParamsChanged = true;
    bool m_needsUpdate = true;
    std::array<const CAudioPort::CSlot*, kAudioChannelLimit> m_inputs{};
    int m_inputCount = 0;
    std::array<CAudioChannel, kAudioChannelLimit> m_outputs{};
    int m_outputCount = 0;
    double m_sampleRate = 1.0;
    int m_latencyBase = 0;
    int m_blockLength = 0;
};

// Noise of plus or minus 1e-11, about -220 dB, in place of zeros: it keeps later stages from numbers so small that
// processors work on them slowly. No two generators run in step.
class CGuardSignal {
public:
    // Takes the next seed of the process. [any]
    void seed() noexcept;
    void fill(double* samples, int count) noexcept;

private:
    std::uint32_t m_state = 0;
};

}  // namespace brt
