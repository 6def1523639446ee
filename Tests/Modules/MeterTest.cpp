// SPDX-License-Identifier: LicenseRef-Halyard
// The meters' arithmetic against slow forms of the same measurements, in every processor build.
#include <algorithm>
#include <cmath>
#include <deque>
#include <limits>
#include <numbers>
#include <random>

#include <gtest/gtest.h>

#include "Modules/CGainReductionCore.h"
#include "Modules/CLevelMeterCore.h"
#include "Modules/ClipCurve.h"
#include "ProcessorBuilds.h"

namespace brt {
namespace {

using Signal = std::vector<double>;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

Signal noise(int count, double amplitude, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> value(-amplitude, amplitude);
    Signal signal(static_cast<std::size_t>(count));
    for (double& x : signal) x = value(random);
    return signal;
}

Signal sine(int count, double amplitude, double hz, double rate) {
    Signal signal(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < signal.size(); ++i)
        signal[i] = amplitude * std::sin(2.0 * std::numbers::pi * hz / rate * static_cast<double>(i));
    return signal;
}

// Bursts, silence and a slow fall: whatever makes attack, release and hold differ.
Signal bursts(int count, unsigned seed) {
    Signal signal = noise(count, 1.0, seed);
    for (std::size_t i = 0; i < signal.size(); ++i) {
        const std::size_t part = i / 4000 % 4;
        signal[i] *= part == 0 ? 0.9 : part == 1 ? 0.01 : part == 2 ? 0.0 : 0.4;
    }
    return signal;
}

// A meter with the memory that it asks for.
struct Meter {
    Meter(const MeterSettings& settings, ProcessorBuild build)
        : core(build),
          peaks(static_cast<std::size_t>(settings.peakBlocks())),
          window(static_cast<std::size_t>(settings.windowLength())) {
        core.setUp(settings, peaks.data(), window.data());
    }
    void process(const Signal& first, const Signal& second) {
        core.process(first.data(), second.empty() ? nullptr : second.data(), static_cast<int>(first.size()));
    }

    CLevelMeterCore core;
    Signal peaks, window;
};

// The wide, slow form: one sample at a time, all block peaks kept in a list.
class Reference {
public:
    explicit Reference(const MeterSettings& settings)
        : m_settings(settings),
          m_rms(coefficient(settings.rmsSeconds)),
          m_release(settings.releaseSeconds < 0.0001 ? 1.0L : coefficient(settings.releaseSeconds)),
          m_biasing(coefficient(settings.biasSeconds)),
          m_start(settings.routine == EMeterRoutine::kLevel ? 0.0L : 1.0L),
          m_a(m_start),
          m_b(m_start),
          m_envelope(m_start),
          m_bias(m_start),
          m_peak(m_start),
          m_peaks(static_cast<std::size_t>(settings.peakBlocks()), m_start) {}

    void add(double first, double second) {
        const long double s = 1.0L * first * first;
        if (m_settings.routine == EMeterRoutine::kDifference) {
            m_a += (s - m_a) * m_rms;
            m_b += (1.0L * second * second - m_b) * m_rms;
            const long double r = (m_a + 1e-15L) / (m_b + 1e-15L);
            m_bias += (r - m_bias) * m_biasing;
            m_envelope = m_settings.isBiased ? r / m_bias : r;
            m_peak = m_settings.isBiased ? std::min(m_peak, m_envelope) : r;
        } else {
            const bool isUp = m_settings.routine == EMeterRoutine::kLevel;
            const long double x = m_settings.isBiased && !isUp ? (s + 1e-15L) / (m_bias + 1e-15L) : s;
            m_bias += (s - m_bias) * m_biasing;
            m_a += (x - m_a) * m_rms;
            if (isUp ? m_a > m_envelope : m_a < m_envelope)
                m_envelope = m_a;
            else
                m_envelope += (m_a - m_envelope) * m_release;
            m_peak = isUp ? std::max({m_peak, x, m_envelope}) : std::min({m_peak, x, m_envelope});
        }
        if (++m_inBlock < std::lround(m_settings.sampleRate / 40.0)) return;
        m_inBlock = 0;
        m_peaks.pop_front();
        m_peaks.push_back(m_peak);
        m_peak = m_envelope;
    }

    double level() const { return static_cast<double>(std::sqrt(m_envelope)); }
    double peak() const {
        long double peak = m_peak;
        const bool isRatio = m_settings.routine == EMeterRoutine::kDifference && !m_settings.isBiased;
        for (const long double held : m_peaks)
            if (!isRatio)
                peak = m_settings.routine == EMeterRoutine::kLevel ? std::max(peak, held) : std::min(peak, held);
        return static_cast<double>(std::sqrt(peak));
    }

private:
    long double coefficient(double seconds) const {
        const long double w = 2.0L * std::numbers::pi_v<long double> / m_settings.sampleRate / (seconds * 1.362L);
        const long double c = 2.0L - std::cos(w);
        return 1.0L - c + std::sqrt(c * c - 1.0L);
    }

    const MeterSettings m_settings;
    const long double m_rms, m_release, m_biasing, m_start;
    long double m_a, m_b, m_envelope, m_bias, m_peak;
    std::deque<long double> m_peaks;
    int m_inBlock = 0;
};

class MeterTest : public ::testing::TestWithParam<ProcessorBuild> {};

TEST_P(MeterTest, routinesFollowTheSlowForm) {
    constexpr double kRate = 8000.0;
    const Signal first = bursts(24000, 1), second = bursts(24000, 2);
    for (const EMeterRoutine routine :
         {EMeterRoutine::kLevel, EMeterRoutine::kDifference, EMeterRoutine::kCompression}) {
        for (const bool isBiased : {false, true}) {
            for (const double releaseSeconds : {0.0, 0.00009, 0.5}) {
                // The second peak time is shorter than a measuring block: the block before is held, no other.
                for (const double peakSeconds : {1.0, 0.001}) {
                    const MeterSettings settings = {routine, isBiased, kRate, peakSeconds, 0.05, releaseSeconds, 2.0};
                    ASSERT_EQ(settings.peakBlocks(), peakSeconds == 1.0 ? 40 : 1);
                    Meter meter(settings, GetParam());
                    Reference reference(settings);
                    for (std::size_t i = 0, length = 1; i < first.size(); i += length, length = length % 500 + 1) {
                        const std::size_t end = std::min(i + length, first.size());
                        meter.core.process(&first[i], &second[i], static_cast<int>(end - i));
                        for (std::size_t k = i; k < end; ++k) reference.add(first[k], second[k]);
                        const MeterReading reading = meter.core.read(2.0, 0.5);
                        ASSERT_NEAR(reading.level, 2.0 * reference.level(), 1e-9 * reference.level())
                            << static_cast<int>(routine) << isBiased << releaseSeconds << " at " << end;
                        ASSERT_NEAR(reading.peak, reference.peak(), 1e-9 * reference.peak())
                            << static_cast<int>(routine) << isBiased << releaseSeconds << " at " << end;
                    }
                }
            }
        }
    }
}

TEST_P(MeterTest, silenceOnBothSidesIsNoDifference) {
    Meter meter({.routine = EMeterRoutine::kDifference, .rmsSeconds = 3.0}, GetParam());
    const Signal silence(100000, 0.0);
    meter.process(silence, silence);
    EXPECT_EQ(meter.core.read(0.7, 1.0).level, 0.7);
}

// The filters by their transfer functions, the window by a plain sum.
TEST_P(MeterTest, loudnessIsTheMeanOfTheWindow) {
    constexpr double kRate = 48000.0;
    const MeterSettings settings = {
        .routine = EMeterRoutine::kLoudness, .sampleRate = kRate, .peakSeconds = 0.1, .rmsSeconds = 0.1};
    // Close to the plain level in the middle; the shelf adds 4 dB above, the high-pass takes the low end. The window
    // holds whole periods.
    const std::pair<double, double> gains[] = {{1000.0, 0.0}, {10000.0, 3.34394}, {20.0, -13.97317}};
    for (const auto& [hz, gainDb] : gains) {
        Meter meter(settings, GetParam());
        meter.process(sine(96000, 0.5, hz, kRate), {});
        EXPECT_NEAR(20.0 * std::log10(meter.core.read(1.0, 1.0).level / (0.5 / std::numbers::sqrt2)), gainDb, 1e-4)
            << hz;
        EXPECT_NEAR(meter.core.read(1.0, 2.0).peak, 1.0, 1e-3);
    }
    // Something loud leaves nothing behind once the window has gone past it, whatever it did to the running sum.
    Meter after(settings, GetParam()), never(settings, GetParam());
    after.process(noise(7000, 1e6, 1), {});
    const Signal quiet = noise(48000, 1e-3, 2);
    after.process(quiet, {});
    never.process(quiet, {});
    EXPECT_NEAR(after.core.read(1.0, 1.0).level / never.core.read(1.0, 1.0).level, 1.0, 1e-6);
}

TEST_P(MeterTest, samplesThatAreNoNumbersAreForgotten) {
    constexpr double kRate = 48000.0;
    constexpr double kReleaseSeconds = 0.5;
    const Signal tone = sine(static_cast<int>(2.0 * kReleaseSeconds * kRate), 0.5, 997.0, kRate);
    const Signal reference = sine(static_cast<int>(tone.size()), 0.25, 997.0, kRate);
    for (const EMeterRoutine routine :
         {EMeterRoutine::kLevel, EMeterRoutine::kDifference, EMeterRoutine::kCompression, EMeterRoutine::kLoudness}) {
        for (const double bad : {kNan, kInfinity, -kInfinity, 1e200}) {
            const MeterSettings settings = {routine, false, kRate, 0.2, 0.1, kReleaseSeconds, 0.2};
            Meter meter(settings, GetParam()), sound(settings, GetParam());
            for (int i = 0; i < 3; ++i) meter.process(tone, reference);
            meter.process(Signal(10, bad), Signal(10, 0.1));
            EXPECT_TRUE(std::isfinite(meter.core.read(1.0, 1.0).level));
            if (routine == EMeterRoutine::kLevel) {
                EXPECT_GE(meter.core.read(1.0, 1.0).peak, 1e15);
            }
            meter.process(tone, reference);
            for (int i = 0; i < 4; ++i) sound.process(tone, reference);
            EXPECT_NEAR(meter.core.read(1.0, 1.0).level / sound.core.read(1.0, 1.0).level, 1.0, 1e-3)
                << static_cast<int>(routine) << " " << bad;
            EXPECT_NEAR(meter.core.read(1.0, 1.0).peak / sound.core.read(1.0, 1.0).peak, 1.0, 1e-3);
        }
    }
    CGainReductionCore reduction(GetParam());
    reduction.setUp(kRate, kReleaseSeconds);
    reduction.process(Signal(10, kNan).data(), 10);
    EXPECT_LT(reduction.factor(), 1e-14);
    reduction.process(tone.data(), static_cast<int>(tone.size()));
    EXPECT_NEAR(reduction.factor(), 1.0, 1e-3);
}

TEST_P(MeterTest, gainReductionIsWhatTheCurveTakesAway) {
    const auto factorOf = [&](double x, double hardness) {
        CGainReductionCore core(GetParam());
        core.setUp(48000.0, 0.0);
        core.setHardness(hardness);
        core.process(&x, 1);
        return core.factor();
    };
    EXPECT_NEAR(factorOf(2.0, 1.0), 0.5, 1e-15);
    EXPECT_EQ(factorOf(-0.7, 1.0), 1.0);
    EXPECT_EQ(factorOf(0.0, 0.0), 1.0);
    EXPECT_NEAR(factorOf(1e-6, 0.0), 0.99938646, 1e-6);
    for (const double hardness : {0.0, 0.3, 0.9}) {
        for (int i = -12; i < 26; ++i) {
            const double x = std::pow(1.7, i);
            double clipped = -x;
            clip(&clipped, 1, {hardness, false});
            EXPECT_NEAR(factorOf(-x, hardness), std::min(1.0, -clipped / x), 1e-11) << x << " " << hardness;
        }
    }

    // Down at once, back by the release; the same wherever the blocks are cut.
    const Signal signal = noise(5000, 3.0, 3);
    CGainReductionCore whole(GetParam()), cut(GetParam());
    for (CGainReductionCore* const core : {&whole, &cut}) {
        core->setUp(48000.0, 0.01);
        core->setHardness(0.6);
    }
    whole.process(signal.data(), 5000);
    for (int i = 0, length = 1; i < 5000; i += length, length = length % 21 + 1)
        cut.process(&signal[static_cast<std::size_t>(i)], std::min(length, 5000 - i));
    EXPECT_EQ(whole.factor(), cut.factor());
    const double pulse = 4.0;
    const Signal silence(480, 0.0);  // 10 ms: 99% of the way
    whole.process(&pulse, 1);
    const double power = whole.factor() * whole.factor();
    whole.process(silence.data(), 480);
    EXPECT_NEAR(whole.factor() * whole.factor(), 1.0 - (1.0 - power) * 0.01, 0.001);
}

INSTANTIATE_TEST_SUITE_P(Builds, MeterTest, ::testing::ValuesIn(supportedBuilds()), buildOfTest);

TEST(CPeakHold, holdsTheExtremeOfTheLastSoManyBlocks) {
    std::mt19937 random(7);
    for (const int count : {1, 2, 3, 40}) {
        for (const EPeakHold which : {EPeakHold::kLargest, EPeakHold::kSmallest}) {
            Signal ring(static_cast<std::size_t>(count));
            CPeakHold hold;
            hold.setUp(ring.data(), count, 5.0, which);
            std::deque<double> last(static_cast<std::size_t>(count), 5.0);
            for (int i = 0; i < 2000; ++i) {
                last.pop_front();
                last.push_back(static_cast<double>(random() % 10));  // with many that are equal
                hold.push(last.back());
                const auto [least, most] = std::minmax_element(last.begin(), last.end());
                // The first values after the start are held a block longer.
                if (i > count) {
                    ASSERT_EQ(hold.held(), which == EPeakHold::kLargest ? *most : *least) << i;
                }
            }
        }
    }
}

TEST(MeterRoutines, framesAndTimesHaveTheirLimits) {
    EXPECT_EQ(meterFrameLength(44100.0, 40.0), 1104);
    EXPECT_EQ(meterFrameLength(44100.0, 6.0), 7350);
    EXPECT_EQ(meterFrameLength(44100.0, 5000.0), 32);
    EXPECT_EQ(meterFrameLength(1000.0, 1e-300), 1000000000);
    for (const double seconds : {0.0, 1e-5, 1e-4, 0.1, 5.0}) {
        for (const double rate : {1000.0, 44100.0, 1536000.0}) {
            const double coefficient = smoothingCoefficient(seconds, rate);
            EXPECT_GT(coefficient, 0.0);
            EXPECT_LT(coefficient, 1.0);
        }
    }
    // 99% of a step within the time, at rates where a sample is short against it.
    EXPECT_NEAR(std::pow(1.0 - smoothingCoefficient(5.0, 1536000.0), 5.0 * 1536000.0), 0.0099, 0.0001);
    EXPECT_EQ(releaseCoefficient(0.00009, 44100.0), 1.0);
    for (const double rate : {1000.0, 3000.0, 44100.0}) {
        // Stable: the poles lie within the unit circle.
        for (const MeterFilter& filter : {loudnessHighPass(rate), loudnessShelf(rate)}) {
            EXPECT_LT(std::abs(filter.a2), 1.0);
            EXPECT_LT(std::abs(filter.a1), 1.0 + filter.a2);
        }
    }
}

}  // namespace
}  // namespace brt
