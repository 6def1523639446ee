// SPDX-License-Identifier: LicenseRef-Halyard
// Start and end; activation and blocks; what the host hears.
#include "Audio/VST/CAudioWrapperVST.h"

#include <algorithm>
#include <array>

#include "Audio/CAudioExtParam.h"
#include "Core/CAppData.h"
#include "Core/CError.h"
#include "Core/Log.h"
#include "Core/TimeBase.h"
#include "Documents/Product.h"
#include "Other/FocusOnClick.h"

namespace brt {
namespace {

// Holds a lock that there may not be.
class COptionalLock {
public:
    explicit COptionalLock(CCriticalSection* section) noexcept BRT_NO_THREAD_SAFETY_ANALYSIS : m_section(section) {
        if (m_section != nullptr) m_section->enter();
    }
    ~COptionalLock() BRT_NO_THREAD_SAFETY_ANALYSIS {
        if (m_section != nullptr) m_section->leave();
    }
    COptionalLock(const COptionalLock&) = delete;
    COptionalLock& operator=(const COptionalLock&) = delete;

private:
    CCriticalSection* const m_section;
};

bool isLockAsked() {
    CString text;
    CAppData::group().getString(text, "vst-func-sync", "0");
    return text == "1" || text == "true";
}

}  // namespace

CAudioWrapperVST::CAudioWrapperVST(audioMasterCallback audioMaster) : AudioEffectX(audioMaster, 1, 1) {}

CAudioWrapperVST::~CAudioWrapperVST() { setEditor(nullptr); }

CError* CAudioWrapperVST::init() {
    BRT_TRY("", CAudioWrapper::init());
    readHost();
    if (!m_behaviour.isMultichannelAllowed) limitChannels(2);
    setUniqueID(product().pluginCode);
    setNumPrograms(registry().getProgramCount());
    setNumParams(extParamCount());
    programsAreChunks();
    canProcessReplacing();
    canDoubleReplacing();
    m_channelLimit = internalChannelCount();
    setNumInputs(m_channelLimit);
    setNumOutputs(m_channelLimit);
    m_inputCount = m_channelLimit;
    m_outputCount = m_channelLimit;
    updateChannelNames();
    // Hosts may process before they have resumed.
    applyFormats(false, false);
    initConnections();
    setInitialDelay(latencySamples());
    setLatencyReported();
    return nullptr;
}

void CAudioWrapperVST::readHost() {
    const std::int32_t version = getMasterVersion();
    const CString productName = getHostProductString();
    const CString vendorName = getHostVendorString();
    m_behaviour = CHostBehaviour::find(version, productName, vendorName, isForced2ch(), isLockAsked());
    if (m_behaviour.needsFunctionLock) m_functionLock = std::make_unique<CCriticalSection>();
    setFocusOnClick(m_behaviour.focusesOnClick);
    if (product().usesHostBpm) m_timeFilter |= kVstTempoValid;
    if (product().usesHostRecording)
        m_timeFilter |= kVstTransportPlaying | kVstTransportCycleActive | kVstTransportRecording;
}

// Activation.

void CAudioWrapperVST::applyFormats(bool isDouble, bool isInBlock) {
    m_isFormatDouble = isDouble;
    setInputFormat({m_inputCount.load(std::memory_order_relaxed), isDouble, false}, isInBlock);
    setOutputFormat({m_outputCount.load(std::memory_order_relaxed), isDouble, false}, isInBlock);
}

void CAudioWrapperVST::resume() {
    const COptionalLock lock(m_functionLock.get());
    setEnvSampleRate(m_sampleRate.load(std::memory_order_relaxed));
    setHostOffline(getCurrentProcessLevel() == kVstProcessLevelOffline);
    applyFormats(m_isDouble.load(std::memory_order_relaxed), false);
    activate();
    setInitialDelay(latencySamples());
    setLatencyReported();
}

void CAudioWrapperVST::suspend() {
    const COptionalLock lock(m_functionLock.get());
    deactivate();
}

bool CAudioWrapperVST::setProcessPrecision(std::intptr_t precision) {
    if (precision != kVstProcessPrecision32 && precision != kVstProcessPrecision64) return false;
    m_isDouble.store(precision == kVstProcessPrecision64, std::memory_order_relaxed);
    return true;
}

// Blocks.

void CAudioWrapperVST::processReplacing(float** inputs, float** outputs, std::int32_t frames) {
    processBlock(inputs, outputs, frames);
}

void CAudioWrapperVST::processDoubleReplacing(double** inputs, double** outputs, std::int32_t frames) {
    processBlock(inputs, outputs, frames);
}

template <class Sample>
void CAudioWrapperVST::processBlock(Sample** inputs, Sample** outputs, std::int32_t frames) {
    constexpr bool kIsDouble = std::is_same_v<Sample, double>;
    const COptionalLock lock(m_functionLock.get());
    // Hosts change the rate of an instance that runs, and tell it nothing else.
    setEnvSampleRate(m_sampleRate.load(std::memory_order_relaxed), true);
    m_isDouble.store(kIsDouble, std::memory_order_relaxed);
    if (m_isFormatDouble != kIsDouble) applyFormats(kIsDouble, true);
    setHostOffline(getCurrentProcessLevel() == kVstProcessLevelOffline);
    readTimeInfo();

    std::array<const void*, kAudioChannelLimit> in{};
    std::array<void*, kAudioChannelLimit> out{};
    // As many pointers as the format that holds has channels: a host of one channel may hand in one.
    if (inputs != nullptr) std::copy_n(inputs, inputChannelCount(), in.begin());
    if (outputs != nullptr) std::copy_n(outputs, outputChannelCount(), out.begin());
    CAudioWrapper::process(in.data(), out.data(), std::max(frames, 0));
    if (takeLatencyChange()) ioChanged();
}

void CAudioWrapperVST::readTimeInfo() {
    if (m_timeFilter == 0) return;
    const VstTimeInfo* const time = getTimeInfo(m_timeFilter);
    if (time == nullptr) return;
    if ((time->flags & kVstTempoValid) != 0) setHostBpm(time->tempo);
    setHostRecording((time->flags & kVstTransportRecording) != 0);
}

std::int32_t CAudioWrapperVST::processEvents(const VstEvents& events) {
    constexpr int kDataBits = 0x7f;
    for (std::int32_t i = 0; i < events.numEvents; ++i) {
        const VstEvent* const event = (&events.events[0])[i];
        if (event == nullptr || event->type != kVstMidiType) continue;
        const unsigned char* const midi = reinterpret_cast<const VstMidiEvent*>(event)->midiData;
        queueEvent({event->deltaFrames,
                    CHostEvent::EKind::kMidi,
                    {midi[0] >> 4 & kDataBits, midi[0] & 0xf, midi[1] & kDataBits, midi[2] & kDataBits}});
    }
    return 1;
}

// Parameters.

void CAudioWrapperVST::setParameter(std::int32_t index, float value) { setExtParam(index, static_cast<double>(value)); }

float CAudioWrapperVST::getParameter(std::int32_t index) {
    const CAudioExtParam* const found = extParam(index);
    return found != nullptr ? static_cast<float>(found->getNormal()) : 0.0f;
}

// What the host hears.

void CAudioWrapperVST::hostAutomate(int extIndex, double value) {
    if (isConnected()) callHost(audioMasterAutomate, extIndex, 0, nullptr, static_cast<float>(value));
}

void CAudioWrapperVST::hostUpdateDisplay() {
    if (isConnected()) updateDisplay();
}

void CAudioWrapperVST::hostBeginEdit(int extIndex) { AudioEffectX::beginEdit(extIndex); }

void CAudioWrapperVST::hostEndEdit(int extIndex) { AudioEffectX::endEdit(extIndex); }

// Without a window there is nothing that could be in the way.
bool CAudioWrapperVST::hostSizeWindow(int width, int height) {
    return m_editor == nullptr || sizeWindow(width, height);
}

// The entry.

AEffect* makeEffect(audioMasterCallback audioMaster) {
    const double startSeconds = secondsSinceOrigin();
    if (!canRunHere() || audioMaster == nullptr) return nullptr;
    if (audioMaster(nullptr, audioMasterVersion, 0, 0, nullptr, 0.0f) == 0) return nullptr;
    startProduct();
    auto effect = std::make_unique<CAudioWrapperVST>(audioMaster);
    if (CError* error = effect->init()) return showError(error), nullptr;
    logLine("VST entry time: %.4f s @ %.4f s", secondsSinceOrigin() - startSeconds, secondsSinceOrigin());
    return effect.release()->getAeffect();
}

}  // namespace brt
