// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/Measurements.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <numeric>

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

double mean(const std::vector<double>& values) {
    return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}

// Microseconds of a call of 64 or 512 frames. The long filters work in blocks of 624 frames, so the costs of calls of
// these lengths repeat after 39 of them; each place of the 39 has its own median, and what else the machine does in
// the meantime falls out.
std::vector<double> callMedians(double hardnessPercent, int callFrames) {
    constexpr int kCallsPerPeriod = 39;
    constexpr int kLeastRounds = 5;
    constexpr int kMostRounds = 25;
    constexpr auto kTimeLimit = std::chrono::milliseconds(500);
    using Clock = std::chrono::steady_clock;

    CProcessor processor(1, {.hardnessPercent = hardnessPercent});
    std::vector<double> input(static_cast<std::size_t>(kCallsPerPeriod * callFrames));
    for (std::size_t i = 0; i < input.size(); ++i) input[i] = 1.6 * std::sin(0.19 * static_cast<double>(i));
    std::vector<double> output(input.size());
    std::vector<std::vector<double>> durations(kCallsPerPeriod);
    const Clock::time_point end = Clock::now() + kTimeLimit;
    for (int round = 0; round < kLeastRounds || (round < kMostRounds && Clock::now() < end); ++round) {
        throwIfInterrupted();
        const double* in = input.data();
        double* out = output.data();
        for (std::vector<double>& atSamePlace : durations) {
            const Clock::time_point start = Clock::now();
            processor.process(&in, &out, callFrames);
            atSamePlace.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
            in += callFrames;
            out += callFrames;
        }
    }
    std::vector<double> medians;
    for (const std::vector<double>& atSamePlace : durations) medians.push_back(median(atSamePlace));
    return medians;
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
    const std::vector<double> blocks = callMedians(hardnessPercent, 512);
    const std::vector<double> calls = callMedians(hardnessPercent, 64);
    return {.hardnessPercent = hardnessPercent,
            .nanosecondsPerSample = 1000 * mean(blocks) / 512,
            .meanCallMicroseconds = mean(calls),
            .worstCallMicroseconds = *std::max_element(calls.begin(), calls.end())};
}

}  // namespace brt
