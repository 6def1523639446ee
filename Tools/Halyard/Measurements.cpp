// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/Measurements.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>

#include "Tools/Halyard/Decibels.h"
#include "Tools/Halyard/Interrupt.h"

namespace brt {

namespace {

constexpr int kSettlingFrames = 4096;  // the chain's answer to anything has ended after 3334
constexpr int kStretchFrames = 16384;
constexpr double kBelowClipping = 0.9;

std::vector<double> sine(double amplitude, double fraction) {
    std::vector<double> samples(kStretchFrames + 2 * kSettlingFrames);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = amplitude * std::sin(2 * std::numbers::pi * fraction * static_cast<double>(i));
    return samples;
}

// Never louder than `amplitude`, however the phases fall.
std::vector<double> multitone(double amplitude) {
    constexpr int kCount = 48;
    constexpr double kFrom = 0.005;
    constexpr double kTo = 0.465;
    std::vector<double> sum(kStretchFrames + 2 * kSettlingFrames);
    for (int tone = 0; tone < kCount; ++tone) {
        const std::vector<double> one = sine(amplitude / kCount, kFrom + (kTo - kFrom) * tone / (kCount - 1));
        for (std::size_t i = 0; i < sum.size(); ++i) sum[i] += one[i];
    }
    return sum;
}

// The largest |value(i)| in the settled stretch.
template <class Value>
double largest(Value value) {
    double result = 0;
    for (std::size_t i = kSettlingFrames; i < kSettlingFrames + kStretchFrames; ++i)
        result = std::max(result, std::fabs(value(i)));
    return result;
}

double nullError(const std::vector<double>& input) {
    const std::vector<double> output = processAligned({}, input);
    return largest([&](std::size_t i) { return output[i] - input[i]; });
}

double residueSumError() {
    // Scaling by a power of two is exact, so the quiet chain, which never clips, tells what the loud one would have
    // been.
    constexpr double kScale = 1.0 / 16;
    const std::vector<double> loud = multitone(16);
    std::vector<double> quiet = loud;
    for (double& sample : quiet) sample *= kScale;
    const std::vector<double> output = processAligned({}, loud);
    const std::vector<double> residue = processAligned({.residue = true}, loud);
    const std::vector<double> unclipped = processAligned({}, quiet);
    return largest([&](std::size_t i) { return output[i] - residue[i] - unclipped[i] / kScale; });
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

}  // namespace

CImpulseResponse::CImpulseResponse() {
    constexpr double kLevel = 0.5;
    CProcessor processor(1, {});
    std::vector<double> impulse(2 * kSettlingFrames);
    impulse[0] = kLevel;
    m_response.resize(impulse.size());
    const double* input = impulse.data();
    double* output = m_response.data();
    processor.process(&input, &output, static_cast<int>(impulse.size()));
    for (double& sample : m_response) sample /= kLevel;
    const auto isQuieter = [](double a, double b) { return std::fabs(a) < std::fabs(b); };
    m_peakSample =
        static_cast<int>(std::max_element(m_response.begin(), m_response.end(), isQuieter) - m_response.begin());
}

double CImpulseResponse::peakLevel() const { return m_response[static_cast<std::size_t>(m_peakSample)]; }

int CImpulseResponse::leadingZeroCount() const {
    const auto first = std::find_if(m_response.begin(), m_response.end(), [](double s) { return s != 0; });
    return static_cast<int>(first - m_response.begin());
}

double CImpulseResponse::gainAt(double fraction) const {
    std::complex<double> sum = 0;
    for (std::size_t i = 0; i < m_response.size(); ++i)
        if (m_response[i] != 0)
            sum += m_response[i] *
                   std::polar(1.0, -2 * std::numbers::pi * fraction * (static_cast<double>(i) - m_peakSample));
    return std::abs(sum);
}

double CImpulseResponse::passBandErrorDb() const {
    constexpr int kPoints = 200;
    double worst = 0;
    for (int i = 0; i <= kPoints; ++i)
        worst = std::max(worst, std::fabs(factorToDb(gainAt(kPassBandEnd * i / kPoints))));
    return worst;
}

double CImpulseResponse::halfGainFraction() const {
    double low = kPassBandEnd;
    double high = 0.5;
    while (high - low > 1e-9) {
        const double middle = (low + high) / 2;
        (gainAt(middle) > 0.5 ? low : high) = middle;
    }
    return low;
}

NullMeasurements measureNulls() {
    const std::vector<double> tones = multitone(kBelowClipping);
    const std::vector<double> residue = processAligned({.residue = true}, tones);
    return {.toneError = nullError(sine(kBelowClipping, 0.1234)),
            .multitoneError = nullError(tones),
            .silentResidue = largest([&](std::size_t i) { return residue[i]; }),
            .unclippedLine = measureTone({}, 0.5, 5000, 48000).worstLine,
            .residueSumError = residueSumError()};
}

std::vector<AliasRow> measureAliases(int rateHz) {
    struct Wish {
        double hertz;
        double amplitude;
        double hardnessPercent;
    };
    constexpr Wish kWishes[] = {{1000, 2, 100},  {5000, 2, 100},   {10000, 2, 100}, {15000, 2, 100}, {5000, 4, 100},
                                {15000, 4, 100}, {5000, 1.1, 100}, {5000, 2, 50},   {15000, 2, 50},  {5000, 2, 0}};
    // Images in the last stretch below half the rate are weakened by the filters; the comparison ends before.
    const double bandHz = 0.485 * rateHz;
    std::vector<AliasRow> rows;
    for (const Wish& wish : kWishes) {
        throwIfInterrupted();
        if (wish.hertz > kPassBandEnd * rateHz) continue;
        AliasRow row{
            .amplitude = wish.amplitude, .hardnessPercent = wish.hardnessPercent, .tone = {}, .idealWorstRatio = 0};
        row.tone = measureTone({.hardnessPercent = wish.hardnessPercent}, wish.amplitude, wish.hertz, rateHz);
        if (wish.hardnessPercent == 100)
            row.idealWorstRatio = idealWorstRatio(wish.amplitude, row.tone.frequencyHz, rateHz, bandHz);
        rows.push_back(std::move(row));
    }
    return rows;
}

CostMeasurement measureCost(double hardnessPercent) {
    // The long filters work in blocks of 624 frames, so the calls' costs repeat after four of them.
    constexpr int kCallFrames = 64;
    constexpr int kCallsPerPeriod = 39;
    constexpr int kPeriodFrames = kCallFrames * kCallsPerPeriod;
    static_assert(kPeriodFrames % 624 == 0);
    constexpr int kRounds = 60;
    using Clock = std::chrono::steady_clock;

    CProcessor processor(1, {.hardnessPercent = hardnessPercent});
    std::vector<double> input(kPeriodFrames);
    for (std::size_t i = 0; i < input.size(); ++i) input[i] = 1.6 * std::sin(0.19 * static_cast<double>(i));
    std::vector<double> output(kPeriodFrames);
    const auto microsecondsFor = [&](int first, int count) {
        const double* in = input.data() + first;
        double* out = output.data() + first;
        const Clock::time_point start = Clock::now();
        processor.process(&in, &out, count);
        return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
    };

    std::vector<double> periods;
    std::vector<std::vector<double>> calls(kCallsPerPeriod);
    for (int round = 0; round < kRounds; ++round) {
        throwIfInterrupted();
        periods.push_back(microsecondsFor(0, kPeriodFrames));
        for (int call = 0; call < kCallsPerPeriod; ++call)
            calls[static_cast<std::size_t>(call)].push_back(microsecondsFor(call * kCallFrames, kCallFrames));
    }
    CostMeasurement cost{.hardnessPercent = hardnessPercent,
                         .nanosecondsPerSample = 1000 * median(periods) / kPeriodFrames,
                         .meanCallMicroseconds = 0,
                         .worstCallMicroseconds = 0};
    for (const std::vector<double>& atSamePlace : calls) {
        const double microseconds = median(atSamePlace);
        cost.meanCallMicroseconds += microseconds / kCallsPerPeriod;
        cost.worstCallMicroseconds = std::max(cost.worstCallMicroseconds, microseconds);
    }
    return cost;
}

}  // namespace brt
