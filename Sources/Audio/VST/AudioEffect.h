// SPDX-License-Identifier: LicenseRef-Halyard
// The record that a host gets, and what the oldest part of the interface asks: opcodes up to 24 and blocks. Each call
// arrives in a static function, which finds the object in the record and calls the virtual operation of that name.
//
// Owner: the host, which deletes it by effClose. Threads: the host's; told where they are narrower. Bad numbers and
// null pointers of a host do nothing.
#pragma once

#include <atomic>
#include <memory>

#include "Audio/VST/AEffEditor.h"
#include "Core/CString.h"

namespace brt {

class AudioEffect {
public:
    AudioEffect(audioMasterCallback audioMaster, std::int32_t programCount, std::int32_t paramCount);
    virtual ~AudioEffect();
    AudioEffect(const AudioEffect&) = delete;
    AudioEffect& operator=(const AudioEffect&) = delete;

    AEffect* getAeffect() noexcept { return &m_cEffect; }

    virtual std::intptr_t dispatcher(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr,
                                     float opt);

    // [audio] `outputs` are written, or for the accumulating form added to, which nothing does any more.
    virtual void process(float** inputs, float** outputs, std::int32_t frames);
    virtual void processReplacing(float** inputs, float** outputs, std::int32_t frames) = 0;
    virtual void processDoubleReplacing(double** inputs, double** outputs, std::int32_t frames) = 0;
    // [any] 0 to 1.
    virtual void setParameter(std::int32_t index, float value) = 0;
    virtual float getParameter(std::int32_t index) = 0;

protected:
    virtual void open() {}
    virtual void close() {}
    virtual void setProgram(std::int32_t program) { m_curProgram = program; }
    virtual std::int32_t getProgram() { return m_curProgram; }
    virtual void setProgramName(CStringView name) = 0;
    virtual CString getProgramName() = 0;
    virtual CString getParameterLabel(std::int32_t index) = 0;
    virtual CString getParameterDisplay(std::int32_t index) = 0;
    virtual CString getParameterName(std::int32_t index) = 0;
    virtual void setSampleRate(float sampleRateHz) { m_sampleRate.store(sampleRateHz, std::memory_order_relaxed); }
    virtual void setBlockSize(std::int32_t frames) { m_blockSize.store(frames, std::memory_order_relaxed); }
    virtual void suspend() = 0;
    virtual void resume() = 0;
    // The bytes stay valid until the next call. Returns how many.
    virtual std::int32_t getChunk(void*& data, bool isPreset) = 0;
    virtual std::int32_t setChunk(const void* data, std::intptr_t size, bool isPreset) = 0;

    void setUniqueID(std::uint32_t id) noexcept { m_cEffect.uniqueID = static_cast<std::int32_t>(id); }
    void setNumPrograms(std::int32_t count) noexcept { m_cEffect.numPrograms = m_numPrograms = count; }
    void setNumParams(std::int32_t count) noexcept { m_cEffect.numParams = m_numParams = count; }
    void setNumInputs(std::int32_t count) noexcept { m_cEffect.numInputs = count; }
    void setNumOutputs(std::int32_t count) noexcept { m_cEffect.numOutputs = count; }
    void setInitialDelay(std::int32_t samples) noexcept { m_cEffect.initialDelay = samples; }
    void canProcessReplacing(bool can = true) noexcept { setFlag(effFlagsCanReplacing, can); }
    void canDoubleReplacing(bool can = true) noexcept { setFlag(effFlagsCanDoubleReplacing, can); }
    void programsAreChunks(bool are = true) noexcept { setFlag(effFlagsProgramChunks, are); }
    void setEditor(std::unique_ptr<AEffEditor> editor);

    // 0 without a host.
    std::intptr_t callHost(std::int32_t opcode, std::int32_t index = 0, std::intptr_t value = 0, void* ptr = nullptr,
                           float opt = 0.0f);

    const audioMasterCallback m_audioMaster;
    std::unique_ptr<AEffEditor> m_editor;  // null: there is none
    // As the host has said them last.
    std::atomic<float> m_sampleRate{44100.0f};
    std::atomic<std::int32_t> m_blockSize{1024};
    std::int32_t m_numPrograms;
    std::int32_t m_numParams;
    std::int32_t m_curProgram = 0;
    AEffect m_cEffect{};

private:
    void setFlag(std::int32_t flag, bool isSet) noexcept;
    std::intptr_t dispatchEditor(std::int32_t opcode, void* ptr);

    // What the record points at.
    static AudioEffect* objectOf(const AEffect* effect) noexcept;
    static std::intptr_t onDispatch(AEffect* effect, std::int32_t opcode, std::int32_t index, std::intptr_t value,
                                    void* ptr, float opt);
    static void onProcess(AEffect* effect, float** inputs, float** outputs, std::int32_t frames);
    static void onProcessReplacing(AEffect* effect, float** inputs, float** outputs, std::int32_t frames);
    static void onProcessDoubleReplacing(AEffect* effect, double** inputs, double** outputs, std::int32_t frames);
    static void onSetParameter(AEffect* effect, std::int32_t index, float value);
    static float onGetParameter(AEffect* effect, std::int32_t index);
};

}  // namespace brt
