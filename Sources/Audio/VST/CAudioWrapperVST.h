// SPDX-License-Identifier: LicenseRef-Halyard
// One instance of the plug-in as a VST 2 effect: a host's calls become operations of the instance, and what the
// instance tells its host becomes calls of the host's. It adds no processing of its own.
//
// Owner: the host; effClose deletes it.
// Threads: blocks and events on the host's audio thread; `setParameter` and `getParameter` on any, also during a block;
// `suspend` and `resume` on any, but not during a block; the rest on the host's main thread or any other.
// Lock: none, but for hosts that call activation and blocks at once.
#pragma once

#include "Audio/VST/AudioEffectX.h"
#include "Audio/VST/CHostBehaviour.h"
#include "Audio/VST/CSpeakerArrangement.h"
#include "Audio/Wrapper/CAudioWrapper.h"
#include "Core/CByteBuffer.h"
#include "Core/CProcess.h"

namespace brt {

class CAudioWrapperVST final : private CProcessInstance, public AudioEffectX, public CAudioWrapper {
public:
    explicit CAudioWrapperVST(audioMasterCallback audioMaster);
    ~CAudioWrapperVST() override;

    // [init] After a failure it can only be destroyed.
    [[nodiscard]] CError* init() override;

    // From the host.
    void processReplacing(float** inputs, float** outputs, std::int32_t frames) override;
    void processDoubleReplacing(double** inputs, double** outputs, std::int32_t frames) override;
    void setParameter(std::int32_t index, float value) override;
    float getParameter(std::int32_t index) override;

    // To the host.
    void hostAutomate(int extIndex, double value) override;
    void hostUpdateDisplay() override;
    void hostBeginEdit(int extIndex) override;
    void hostEndEdit(int extIndex) override;

protected:
    void suspend() override;
    void resume() override;
    std::int32_t processEvents(const VstEvents& events) override;
    bool setProcessPrecision(std::intptr_t precision) override;

    void setProgram(std::int32_t program) override;
    std::int32_t getProgram() override;
    void setProgramName(CStringView name) override;
    CString getProgramName() override;
    bool getProgramNameIndexed(std::int32_t index, CString& name) override;

    CString getParameterLabel(std::int32_t index) override;
    CString getParameterDisplay(std::int32_t index) override;
    CString getParameterName(std::int32_t index) override;

    std::int32_t getChunk(void*& data, bool isPreset) override;
    std::int32_t setChunk(const void* data, std::intptr_t size, bool isPreset) override;

    bool setSpeakerArrangement(const VstSpeakerArrangement& input, const VstSpeakerArrangement& output) override;
    bool getSpeakerArrangement(VstSpeakerArrangement*& input, VstSpeakerArrangement*& output) override;

    VstPlugCategory getPlugCategory() override;
    CString getEffectName() override;
    CString getVendorString() override;
    CString getProductString() override;
    std::int32_t getVendorVersion() override;
    std::intptr_t canDo(CStringView feature) override;
    std::intptr_t vendorSpecific(std::int32_t index, std::intptr_t value, void* ptr, float opt) override;

    bool hostSizeWindow(int width, int height) override;

private:
    void readHost();
    void updateChannelNames();
    void applyFormats(bool isDouble, bool isInBlock);
    void readTimeInfo();
    template <class Sample>
    void processBlock(Sample** inputs, Sample** outputs, std::int32_t frames);

    CHostBehaviour m_behaviour;
    std::unique_ptr<CCriticalSection> m_functionLock;  // null for most hosts
    std::int32_t m_timeFilter = 0;                     // what is asked of the host with each block
    int m_channelLimit = 1;                            // of inputs and of outputs

    // As the host has asked for them; channels reach the graph with the next resume.
    CSpeakerArrangement m_inputArrangement;
    CSpeakerArrangement m_outputArrangement;
    std::atomic<int> m_inputCount{1};
    std::atomic<int> m_outputCount{1};
    // What the host has announced, or used last, and the form that blocks are read in. The second belongs to blocks and
    // to resume alone: an announcement during a block must not change how its memory is read.
    std::atomic<bool> m_isDouble{false};
    bool m_isFormatDouble = false;

    CByteBuffer m_chunk;  // what the host was given last
};

// [any] What a host calls first: null if it isn't one of the interface, or if the instance can't be made; then a user
// has been told.
AEffect* makeEffect(audioMasterCallback audioMaster);

}  // namespace brt
