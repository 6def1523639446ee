// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/MeterRoutines.h"

#include "Modules/ProcessorBuild_p.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace brt {

BRT_TABLE_PER_BUILD(MeterKernel, kMeterKernel, tableOf)

namespace {

// More than any meter asks for, and far from where an integer ends.
constexpr double kLongestSamples = 1e9;

int wholeSamples(double samples, int least) noexcept {
    return std::max(least, static_cast<int>(std::lround(std::min(samples, kLongestSamples))));
}

// The angle of a filter's frequency, and what its bandwidth makes of it. A frequency that the sample rate can't hold
// stands just below the end.
struct Bandwidth {
    Bandwidth(double angularConstant, double bandwidthConstant, double sampleRate) noexcept
        : angle(std::min(angularConstant / sampleRate, 3.0)),
          cosine(std::cos(angle)),
          alpha(std::sin(angle) * std::sinh(bandwidthConstant * angle / std::sin(angle))) {}

    double angle, cosine, alpha;
};

MeterFilter scaled(double b0, double b1, double b2, double a0, double a1, double a2) noexcept {
    return {.b0 = b0 / a0, .b1 = b1 / a0, .b2 = b2 / a0, .a1 = a1 / a0, .a2 = a2 / a0};
}

}  // namespace

double smoothingCoefficient(double seconds, double sampleRate) noexcept {
    // Past half the sample rate the formula would turn back.
    const double angle = std::min(2.0 * std::numbers::pi / sampleRate / (seconds * 1.362), std::numbers::pi);
    // 1 - c + sqrt(c^2 - 1) with c = 2 - cos(angle), written with c - 1, which long times make tiny.
    const double sine = std::sin(angle / 2.0), excess = 2.0 * sine * sine;
    return std::sqrt(excess * (2.0 + excess)) - excess;
}

double releaseCoefficient(double seconds, double sampleRate) noexcept {
    constexpr double kShortestSeconds = 0.0001;
    return seconds < kShortestSeconds ? 1.0 : smoothingCoefficient(seconds, sampleRate);
}

int meterFrameLength(double sampleRate, double fps) noexcept {
    const int length = wholeSamples(sampleRate / fps, 32);
    return length + length % 2;
}

int samplesOf(double seconds, double sampleRate) noexcept { return wholeSamples(seconds * sampleRate, 1); }

MeterFilter loudnessHighPass(double sampleRate) noexcept {
    const Bandwidth f(239.61223106957323, 0.8809075819772038, sampleRate);
    const double half = (1.0 + f.cosine) / 2.0;
    return scaled(half, -2.0 * half, half, 1.0 + f.alpha, -2.0 * f.cosine, 1.0 - f.alpha);
}

MeterFilter loudnessShelf(double sampleRate) noexcept {
    constexpr double A = 1.2588999027632095, kTwoRootsOfA = 2.244014173540987;
    const Bandwidth f(9429.912441572329, 0.6541198751321079, sampleRate);
    const double sum = A + 1.0, gap = A - 1.0, root = kTwoRootsOfA * f.alpha;
    return scaled(A * (sum + gap * f.cosine + root), -2.0 * A * (gap + sum * f.cosine),
                  A * (sum + gap * f.cosine - root), sum - gap * f.cosine + root, 2.0 * (gap - sum * f.cosine),
                  sum - gap * f.cosine - root);
}

const MeterKernel& meterKernel(ProcessorBuild build) noexcept { return tableOf(build); }

}  // namespace brt
