// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CLevelMeterCore.h"

#include <algorithm>
#include <cmath>

namespace brt {
namespace {

MeterKernel::Routine pick(const MeterKernel& kernel, const MeterSettings& settings) noexcept {
    switch (settings.routine) {
    case EMeterRoutine::kDifference: return settings.isBiased ? kernel.biasedDifference : kernel.difference;
    case EMeterRoutine::kCompression: return settings.isBiased ? kernel.biasedCompression : kernel.compression;
    case EMeterRoutine::kLoudness: return nullptr;
    default: return kernel.level;
    }
}

}  // namespace

void CLevelMeterCore::setUp(const MeterSettings& settings, double* peakRing, double* window) noexcept {
    const double rate = settings.sampleRate;
    const bool isRatio =
        settings.routine == EMeterRoutine::kDifference || settings.routine == EMeterRoutine::kCompression;
    const double start = isRatio ? 1.0 : 0.0;
    m_settings = settings;
    m_routine = pick(*m_kernel, settings);
    m_coefficients = {.rms = smoothingCoefficient(settings.rmsSeconds, rate),
                      .release = releaseCoefficient(settings.releaseSeconds, rate),
                      .bias = smoothingCoefficient(settings.biasSeconds, rate)};
    m_values = {.powerA = start, .powerB = start, .envelope = start, .bias = start, .blockPeak = start};
    m_window = {};
    if (settings.routine == EMeterRoutine::kLoudness) {
        m_window.highPass = loudnessHighPass(rate);
        m_window.shelf = loudnessShelf(rate);
        m_window.squares = window;
        m_window.length = settings.windowLength();
    }
    m_soundValues = m_values;
    m_soundWindow = m_window;
    m_peak.setUp(peakRing, settings.peakBlocks(), start, isRatio ? EPeakHold::kSmallest : EPeakHold::kLargest);
    m_blockLeft = m_blockLength = settings.blockLength();
}

void CLevelMeterCore::process(const double* first, const double* second, int count) noexcept {
    while (count > 0) {
        const int stretch = std::min(count, m_blockLeft);
        if (m_routine != nullptr)
            m_routine(m_values, m_coefficients, first, second, stretch);
        else
            m_kernel->loudness(m_values, m_window, first, stretch);
        m_blockLeft -= stretch;
        if (m_blockLeft == 0) endBlock();
        first += stretch;
        if (second != nullptr) second += stretch;
        count -= stretch;
    }
}

void CLevelMeterCore::endBlock() noexcept {
    m_peak.push(m_values.blockPeak);
    if (m_values.largestSquare < kLargestSquare) {
        m_soundValues = m_values;
        m_soundWindow = m_window;
    } else {
        // The ring has new squares in the meantime: its sum begins anew.
        m_values = m_soundValues;
        m_window.highPass = m_soundWindow.highPass;
        m_window.shelf = m_soundWindow.shelf;
        m_window.next = 0;
        m_window.isFull = false;
        m_window.sum = m_window.sumOfTurn = 0.0;
    }
    m_values.largestSquare = 0.0;
    m_values.blockPeak = m_routine != nullptr ? m_values.envelope : 0.0;
    m_blockLeft = m_blockLength;
}

MeterReading CLevelMeterCore::read(double gain, double peakGain) const noexcept {
    const MeterValues& v = m_values;
    switch (m_settings.routine) {
    case EMeterRoutine::kLoudness: {
        // Brings the reading of a sine at 1 kHz in line with the plain level.
        constexpr double kScale = 0.927414538975768;
        return {std::sqrt(std::abs(m_window.sum / m_window.length)) * kScale * gain,
                std::max(v.blockPeak, m_peak.held()) * gain * peakGain};
    }
    case EMeterRoutine::kDifference:
        if (isRatioOnly()) {
            const double level = std::sqrt((v.powerA + kRatioFloor) / (v.powerB + kRatioFloor)) * gain;
            return {level, level * peakGain};
        }
        [[fallthrough]];
    case EMeterRoutine::kCompression:
        return {std::sqrt(std::abs(v.envelope)) * gain,
                std::sqrt(std::min(v.blockPeak, m_peak.held())) * gain * peakGain};
    default:
        return {std::sqrt(std::abs(v.envelope)) * gain,
                std::sqrt(std::max(v.blockPeak, m_peak.held())) * gain * peakGain};
    }
}

}  // namespace brt
