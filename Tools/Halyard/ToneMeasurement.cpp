// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/ToneMeasurement.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

#include "Tools/Halyard/CSpectrumAnalyser.h"

namespace brt {

namespace {

constexpr int kOrder = 14;
constexpr int kStretchFrames = 1 << kOrder;
constexpr int kSettlingFrames = 4096;  // the chain's answer to anything has ended after 3334

int nearestOddBin(double wishedHz, int rateHz) {
    const double bin = wishedHz / rateHz * kStretchFrames;
    return std::clamp(2 * static_cast<int>(std::floor(bin / 2)) + 1, 1, kStretchFrames / 2 - 1);
}

// Of sin(n phase) in a sine of that amplitude, above 1, clipped at 1; n is odd.
double clippedSineHarmonic(double amplitude, std::int64_t n) {
    const double clipPhase = std::asin(1 / amplitude);
    if (n == 1) return 2 / std::numbers::pi * (amplitude * clipPhase + std::cos(clipPhase));
    const auto order = static_cast<double>(n);
    return 4 / std::numbers::pi *
           (amplitude * (std::sin((order - 1) * clipPhase) / (2 * (order - 1)) -
                         std::sin((order + 1) * clipPhase) / (2 * (order + 1))) +
            std::cos(order * clipPhase) / order);
}

}  // namespace

ToneMeasurement measureTone(const ProcessorSettings& settings, double amplitude, double wishedHz, int rateHz) {
    const int toneBin = nearestOddBin(wishedHz, rateHz);
    std::vector<double> tone(kStretchFrames + 2 * kSettlingFrames);
    for (std::size_t i = 0; i < tone.size(); ++i) {
        // The phase is reduced as an integer, so that the last period is as exact as the first.
        const auto step = static_cast<std::int64_t>(i) * toneBin % kStretchFrames;
        tone[i] = amplitude * std::sin(2 * std::numbers::pi * static_cast<double>(step) / kStretchFrames);
    }
    const std::vector<double> output = processAligned(settings, tone);

    ToneMeasurement result;
    result.lineAmplitudes =
        CSpectrumAnalyser(kOrder, SpectrumWindow::kNone).amplitudes(output.data() + kSettlingFrames);
    const double binHz = result.binHz(rateHz);
    result.frequencyHz = toneBin * binHz;
    result.sineLine = result.lineAmplitudes[static_cast<std::size_t>(toneBin)];
    for (int bin = 0; bin <= kStretchFrames / 2; ++bin) {
        const double line = result.lineAmplitudes[static_cast<std::size_t>(bin)];
        const bool isHarmonic = bin != 0 && bin % toneBin == 0;
        if (isHarmonic || line <= result.worstLine) continue;
        result.worstLine = line;
        result.worstLineHz = bin * binHz;
    }
    return result;
}

double idealWorstRatio(double amplitude, double frequencyHz, int rateHz, double bandHz) {
    if (amplitude <= 1) return 0;
    const double clipRateHz = 128.0 * rateHz;
    double worst = 0;
    // Harmonics fall with the square of their order: behind 64 times the clipping rate none is the worst any more.
    const auto last = static_cast<std::int64_t>(64 * clipRateHz / frequencyHz);
    for (std::int64_t n = 3; n <= last; n += 2) {
        const double harmonicHz = static_cast<double>(n) * frequencyHz;
        const double foldedHz = std::fabs(std::remainder(harmonicHz, clipRateHz));
        if (harmonicHz > clipRateHz / 2 && foldedHz <= bandHz)
            worst = std::max(worst, std::fabs(clippedSineHarmonic(amplitude, n)));
    }
    return worst / clippedSineHarmonic(amplitude, 1);
}

}  // namespace brt
