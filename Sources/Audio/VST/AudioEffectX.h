// SPDX-License-Identifier: LicenseRef-Halyard
// What later versions of the interface added: opcodes from 25 on, and questions to the host. What is not overridden
// answers as an effect that lacks the feature.
// Owner and threads: as AudioEffect's.
#pragma once

#include "Audio/VST/AudioEffect.h"

namespace brt {

class AudioEffectX : public AudioEffect {
public:
    using AudioEffect::AudioEffect;

    std::intptr_t dispatcher(std::int32_t opcode, std::int32_t index, std::intptr_t value, void* ptr,
                             float opt) override;

protected:
    static constexpr std::int32_t kInterfaceVersion = 2400;

    // [audio] For the next block.
    virtual std::int32_t processEvents(const VstEvents& events) { return static_cast<void>(events), 0; }
    virtual bool canParameterBeAutomated(std::int32_t index) { return static_cast<void>(index), true; }
    // False, with an empty name, for an index that is none.
    virtual bool getProgramNameIndexed(std::int32_t index, CString& name) = 0;
    virtual VstPlugCategory getPlugCategory() { return kPlugCategEffect; }
    virtual bool setSpeakerArrangement(const VstSpeakerArrangement& input, const VstSpeakerArrangement& output) = 0;
    // Those that hold, or null; the effect's own.
    virtual bool getSpeakerArrangement(VstSpeakerArrangement*& input, VstSpeakerArrangement*& output) = 0;
    virtual CString getEffectName() = 0;
    virtual CString getVendorString() = 0;
    virtual CString getProductString() = 0;
    virtual std::int32_t getVendorVersion() = 0;
    virtual std::intptr_t vendorSpecific(std::int32_t index, std::intptr_t value, void* ptr, float opt) = 0;
    virtual std::intptr_t canDo(CStringView feature) { return static_cast<void>(feature), 0; }
    virtual bool setProcessPrecision(std::intptr_t precision) { return static_cast<void>(precision), false; }

    // Questions to the host.
    std::int32_t getMasterVersion() { return static_cast<std::int32_t>(callHost(audioMasterVersion)); }
    // [audio] `filter`: which fields are wanted. Null if the host doesn't tell.
    const VstTimeInfo* getTimeInfo(std::int32_t filter);
    bool ioChanged() { return callHost(audioMasterIOChanged) != 0; }
    bool sizeWindow(int width, int height) { return callHost(audioMasterSizeWindow, width, height) != 0; }
    std::int32_t getCurrentProcessLevel();
    CString getHostVendorString() { return getHostText(audioMasterGetVendorString); }
    CString getHostProductString() { return getHostText(audioMasterGetProductString); }
    bool updateDisplay() { return callHost(audioMasterUpdateDisplay) != 0; }
    bool beginEdit(std::int32_t index) { return callHost(audioMasterBeginEdit, index) != 0; }
    bool endEdit(std::int32_t index) { return callHost(audioMasterEndEdit, index) != 0; }

private:
    CString getHostText(std::int32_t opcode);
    std::intptr_t dispatchText(std::int32_t opcode, std::int32_t index, void* ptr);
};

}  // namespace brt
