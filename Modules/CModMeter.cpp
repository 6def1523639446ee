// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CModMeter.h"

#include <algorithm>

namespace brt {

void CModMeterDef::describeClass(CClassInfo& info) {
    CAudioProcessDefBase::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::flag("is-compression").byDefault("false").help("for signals that are factors: the smallest is held"),
        attr::flag("is-diff").byDefault("false").help("the ratio of the main port to port 1"),
        attr::flag("is-inverted").byDefault("false").help("shows reciprocals"),
    };
    info.addAttributes(kFrameAttributes);
    info.addAttributes(kAttributes);
}

std::unique_ptr<CAudioProcessBase> CModMeterDef::createProcess() const { return std::make_unique<CModMeter>(); }

double* CModMeterModule::CRing::take(CAudioBufferPool& pool, int count) {
    if (count > capacity) {
        buffer.reset();
        buffer = pool.take(count);
        capacity = count;
    }
    return buffer.samples();
}

CModMeterModule::CModMeterModule(CAudioProcessTerminalBase& process)
    : CModStatsModule(process),
      m_isDiff(process.definition().getAttrBool("is-diff")),
      m_isCompression(process.definition().getAttrBool("is-compression")),
      m_isInverted(process.definition().getAttrBool("is-inverted")) {}

void CModMeterModule::bindParams() {
    for (int i = 0; i < kParamCount; ++i) bind(m_params[static_cast<std::size_t>(i)], i);
}

bool CModMeterModule::isAnyTimeChanged() const noexcept {
    for (int i = 0; i < kParamCount; ++i)
        if (i != kGain && i != kPeakGain && m_params[static_cast<std::size_t>(i)].isChanged) return true;
    return false;
}

void CModMeterModule::update() {
    if (isFullUpdate() || isAnyTimeChanged()) {
        m_secondInput = findPartner();
        startOver();
    }
    m_gainFactor = param(kGain, 1.0);
    m_peakGainFactor = param(kPeakGain, 1.0);
}

EMeterRoutine CModMeterModule::routine() const noexcept {
    if (m_isDiff) return EMeterRoutine::kDifference;
    if (m_isCompression) return EMeterRoutine::kCompression;
    return isOn(kUseEbu128) ? EMeterRoutine::kLoudness : EMeterRoutine::kLevel;
}

void CModMeterModule::setupStats() {
    const bool isSecondTime = isOn(kUseTime2);
    const MeterSettings settings = {.routine = routine(),
                                    .isBiased = isOn(kUseBias),
                                    .sampleRate = sampleRate(),
                                    .peakSeconds = param(kPeakTime, 1.0),
                                    .rmsSeconds = param(isSecondTime ? kRmsTime2 : kRmsTime, 0.15),
                                    .releaseSeconds = param(isSecondTime ? kRelease2 : kRelease, 0.0),
                                    .biasSeconds = param(kBiasTime, 1.0)};
    double* const window =
        settings.routine == EMeterRoutine::kLoudness ? m_window.take(pool(), settings.windowLength()) : nullptr;
    m_core.setUp(settings, m_peakRing.take(pool(), settings.peakBlocks()), window);
}

const double* CModMeterModule::secondSamples() {
    if (m_secondInput == nullptr) return inputSamples(inputCount() >= 2 ? 1 : 0);
    CAudioChannel& channel = **m_secondInput;
    if (!channel.buffer) channel.buffer = pool().takeSilent(blockLength());
    return channel.buffer.samples();
}

void CModMeterModule::processChunk() {
    const double* const second = m_isDiff ? secondSamples() + chunkOffset() : nullptr;
    m_core.process(inputSamples(0) + chunkOffset(), second, chunkLength());
}

std::unique_ptr<CAudioVizDataMeter> CModMeterModule::makeFrame() {
    auto frame = std::make_unique<CAudioVizDataMeter>();
    const MeterReading reading = m_core.read(m_gainFactor, m_peakGainFactor);
    frame->level = reading.level;
    frame->peak = reading.peak;
    if (m_isInverted) {
        // Of silence the reciprocal of the smallest that a ratio is held to.
        frame->level = 1.0 / std::max(reading.level, kRatioFloor);
        frame->peak = 1.0 / std::max(reading.peak, kRatioFloor);
    }
    return frame;
}

}  // namespace brt
