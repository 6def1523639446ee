// SPDX-License-Identifier: LicenseRef-Halyard
// What a listener relies on: delay, response and alias lines of the whole chain, measured from outside.
#include <complex>

#include "Modules/CoreRuns.h"
#include "Modules/ProcessorBuilds.h"

#include <gtest/gtest.h>

namespace brt {
namespace {

constexpr int kLatency = 1667;

double db(double amplitude) { return 20.0 * std::log10(amplitude); }

// The Fourier sum of `count` samples from `begin` on, in the widest type there is.
std::complex<long double> fourierSum(const Samples& samples, int begin, int count, long double cyclesPerSample) {
    std::complex<long double> sum = 0;
    for (int i = 0; i < count; ++i) {
        const long double angle = -2.0L * std::numbers::pi_v<long double> * cyclesPerSample * i;
        sum += static_cast<long double>(samples[static_cast<std::size_t>(begin + i)]) * std::polar(1.0L, angle);
    }
    return sum;
}

class ChainSoundTest : public ::testing::TestWithParam<ProcessorBuild> {
protected:
    Samples impulseResponse() const {
        Samples in(4000);
        in[0] = 0.5;
        Samples response = run(GetParam(), in, {512});
        for (double& x : response) x *= 2.0;
        return response;
    }
};

TEST_P(ChainSoundTest, impulsePeaksAtTheLatencyAfterSilence) {
    EXPECT_EQ(CHalyardCore(GetParam()).latencySamples(), kLatency);
    const Samples response = impulseResponse();
    const auto isQuieter = [](double a, double b) { return std::abs(a) < std::abs(b); };
    EXPECT_EQ(std::max_element(response.begin(), response.end(), isQuieter) - response.begin(), kLatency);
    EXPECT_TRUE(std::all_of(response.begin(), response.begin() + 1248, [](double x) { return x == 0.0; }));
}

TEST_P(ChainSoundTest, passesAllBelow047AndTheEdgeLiesAt0485) {
    const Samples response = impulseResponse();
    const auto gainDb = [&](double f) { return db(static_cast<double>(std::abs(fourierSum(response, 0, 4000, f)))); };
    for (double f = 0.0; f < 0.47; f += 0.013) EXPECT_NEAR(gainDb(f), 0.0, 1e-6) << f;
    EXPECT_NEAR(gainDb(0.47), 0.0, 1e-6);
    EXPECT_NEAR(gainDb(0.485), -6.02, 0.005);
    EXPECT_NEAR(gainDb(0.49), -22.7, 0.05);
    EXPECT_NEAR(gainDb(0.495), -60.0, 0.5);
}

// The kernel's 801 taps leave 165 dB at half the rate.
TEST_P(ChainSoundTest, removesHalfTheRate) {
    Samples in(6000);
    for (std::size_t i = 0; i < in.size(); ++i) in[i] = i % 2 == 0 ? 0.5 : -0.5;
    const Samples out = run(GetParam(), in, {512});
    double peak = 0.0;
    for (std::size_t i = 4000; i < out.size(); ++i) peak = std::max(peak, std::abs(out[i]));
    EXPECT_LT(db(peak / 0.5), -165.0);
}

TEST_P(ChainSoundTest, sineBelowClippingIsOnlyDelayed) {
    const Samples in = sine(8000, 0.1234, 0.9), out = run(GetParam(), in, {512});
    double worst = 0.0;
    for (std::size_t i = 4000; i < out.size(); ++i) worst = std::max(worst, std::abs(out[i] - in[i - kLatency]));
    EXPECT_LT(db(worst / 0.9), -180.0);
}

// The worst line that is no harmonic, against that of the sine, in `milliseconds` of a clipped sine of `kHz`. Clipped
// in whole periods of 1 ms, all its lines lie at whole kHz, and those at no odd multiple of its own are folded back.
double worstAliasDb(const Samples& samples, int milliseconds, int kHz) {
    const int count = static_cast<int>(samples.size());
    double worst = 0.0, fundamental = 0.0;
    for (int line = 0; line <= 24; ++line) {
        const long double cyclesPerSample = 1.0L * line * milliseconds / count;
        const auto level = static_cast<double>(std::abs(fourierSum(samples, 0, count, cyclesPerSample)));
        if (line == kHz) fundamental = level;
        if (line % kHz != 0 || line / kHz % 2 == 0) worst = std::max(worst, level);
    }
    return db(worst / fundamental);
}

// What is folded back from half of 128 times the rate is the one thing that the chain cannot remove. It depends by 2 dB
// on where the samples fall on the sine.
TEST_P(ChainSoundTest, aliasLinesLieAtTheFloorOfClippingAt128Times) {
    constexpr double phase = 0.2;
    for (int kHz : {15, 5}) {
        const Samples in = sine(5000, kHz / 48.0, 2.0, phase), out = run(GetParam(), in, {512});
        const double measured = worstAliasDb(Samples(out.end() - 480, out.end()), 10, kHz);
        EXPECT_LT(measured, kHz == 15 ? -99.0 : -118.0);

        Samples ideal = sine(48 * 128, kHz / 48.0 / 128.0, 2.0, phase);
        for (double& x : ideal) x = std::clamp(x, -1.0, 1.0);
        EXPECT_NEAR(measured, worstAliasDb(ideal, 1, kHz), 0.01);
    }
}

INSTANTIATE_TEST_SUITE_P(Builds, ChainSoundTest, ::testing::ValuesIn(supportedBuilds()), buildOfTest);

}  // namespace
}  // namespace brt
