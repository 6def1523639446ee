// SPDX-License-Identifier: LicenseRef-Halyard
// The two FFT stages against convolution by the book.
#include "Modules/CFFTDownsampler.h"
#include "Modules/CFFTStageKernels.h"
#include "Modules/CFFTUpsampler.h"
#include "Modules/ProcessorBuilds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>
#include <random>
#include <vector>

namespace brt {
namespace {

using Samples = std::vector<double>;

Samples noise(std::size_t count) {
    std::mt19937 generator(7);
    std::uniform_real_distribution<double> value(-1.0, 1.0);
    Samples x(count);
    for (double& v : x) v = value(generator);
    return x;
}

Samples tapsOf(const FftStageDesign& design) {
    Samples taps(static_cast<std::size_t>(kernelHalfOf(design)) + 1);
    designFftStageTaps(taps.data(), design);
    return taps;
}

// Sum of taps at distance n times x at `at` - n, for the samples that exist.
double convolve(const Samples& taps, const Samples& x, int at) {
    const int half = static_cast<int>(taps.size()) - 1, size = static_cast<int>(x.size());
    long double sum = 0;
    for (int n = -half; n <= half; ++n)
        if (at - n >= 0 && at - n < size)
            sum += static_cast<long double>(taps[static_cast<std::size_t>(std::abs(n))]) *
                   x[static_cast<std::size_t>(at - n)];
    return static_cast<double>(sum);
}

// The gain at `frequency`, as a fraction of the Nyquist frequency.
double gainAt(const Samples& taps, double frequency) {
    double sum = taps[0];
    for (std::size_t n = 1; n < taps.size(); ++n)
        sum += 2 * taps[n] * std::cos(std::numbers::pi * frequency * static_cast<double>(n));
    return sum;
}

double db(double gain) { return 20 * std::log10(std::fabs(gain)); }

// Runs `x` through the stage in chunks of the given lengths, used in turn.
template <class Stage>
Samples run(Stage& stage, const Samples& x, std::size_t outLen, const std::vector<int>& chunks) {
    Samples out(outLen + 1, -1.0);
    const bool isUp = std::is_same_v<Stage, CFFTUpsampler>;
    std::size_t in = 0;
    for (std::size_t i = 0; in < x.size(); ++i) {
        const int count = std::min(chunks[i % chunks.size()], static_cast<int>(x.size() - in));
        stage.process(x.data() + in, count, out.data() + (isUp ? 2 * in : in / 2));
        in += static_cast<std::size_t>(count);
    }
    EXPECT_EQ(out.back(), -1.0) << "wrote past the end";
    out.pop_back();
    return out;
}

const std::vector<int> kWhole = {1 << 30};

class FftStagesTest : public ::testing::TestWithParam<ProcessorBuild> {};

TEST_P(FftStagesTest, GeometryFollowsFromTheKernel) {
    const CFFTUpsampler up(GetParam());
    const CFFTDownsampler down(GetParam());
    for (const CFFTStage* stage : {static_cast<const CFFTStage*>(&up), static_cast<const CFFTStage*>(&down)}) {
        EXPECT_TRUE(stage->isReady());
        EXPECT_EQ(stage->geometry().kernelLen, 801);
        EXPECT_EQ(stage->geometry().kernelHalf, 400);
        EXPECT_EQ(stage->geometry().kernelOrder, 10);
        EXPECT_EQ(stage->geometry().blockLen, 2048);
        EXPECT_EQ(stage->geometry().newPerBlock, 1248);
        EXPECT_EQ(stage->latency(), 1648);
        EXPECT_EQ(stage->toGo(), 1248);
    }
    EXPECT_EQ(up.geometry().overlapLen, 400);
    EXPECT_EQ(down.geometry().overlapLen, 800);
}

TEST_P(FftStagesTest, UpsamplerConvolvesTheSignalWithZerosBetween) {
    const Samples x = noise(3000), taps = tapsOf(kFftUpDesign);
    Samples spread(2 * x.size());
    for (std::size_t i = 0; i < x.size(); ++i) spread[2 * i] = x[i];
    CFFTUpsampler stage(GetParam());
    const Samples y = run(stage, x, 2 * x.size(), kWhole);
    for (int i = 0; i < static_cast<int>(y.size()); ++i)
        ASSERT_NEAR(y[static_cast<std::size_t>(i)], convolve(taps, spread, i - 1648), 5e-15) << i;
    EXPECT_TRUE(std::all_of(y.begin(), y.begin() + 1248, [](double v) { return v == 0.0; }));
}

// What the kernel leaves of the upper bins is dropped, not aliased: up to 1.6e-10 of the peak, by the block grid.
TEST_P(FftStagesTest, DownsamplerConvolvesAndKeepsEverySecondSample) {
    const Samples x = noise(6000), taps = tapsOf(kFftDownDesign);
    CFFTDownsampler stage(GetParam());
    const Samples y = run(stage, x, x.size() / 2, kWhole);
    for (int i = 0; i < static_cast<int>(y.size()); ++i)
        ASSERT_NEAR(64 * y[static_cast<std::size_t>(i)], 64 * convolve(taps, x, 2 * i - 1648), 3e-10) << i;
    EXPECT_TRUE(std::all_of(y.begin(), y.begin() + 624, [](double v) { return v == 0.0; }));
}

TEST_P(FftStagesTest, ImpulsePeaksAtTheLatency) {
    Samples x(2000);
    x[0] = 1.0;
    CFFTUpsampler up(GetParam());
    CFFTDownsampler down(GetParam());
    const Samples y = run(up, x, 4000, kWhole), z = run(down, x, 1000, kWhole);
    EXPECT_EQ(std::max_element(y.begin(), y.end()) - y.begin(), 1648);
    EXPECT_NEAR(y[1648], 1.0, 1e-6);
    EXPECT_EQ(std::max_element(z.begin(), z.end()) - z.begin(), 824);
    EXPECT_NEAR(64 * z[824], 0.485, 1e-6);
}

TEST_P(FftStagesTest, AnyBlockingGivesTheSameBits) {
    const Samples x = noise(5000);
    CFFTUpsampler up(GetParam());
    CFFTDownsampler down(GetParam());
    const Samples y = run(up, x, 2 * x.size(), kWhole), z = run(down, x, x.size() / 2, kWhole);
    const std::vector<std::vector<int>> blockings = {{1}, {64}, {623, 1}, {625, 2, 1247}, {512, 3}, {624}, {1248}};
    for (const std::vector<int>& chunks : blockings) {
        SCOPED_TRACE(::testing::PrintToString(chunks));
        up.reset();
        EXPECT_EQ(run(up, x, 2 * x.size(), chunks), y);
        down.reset();
        std::vector<int> evenChunks = chunks;
        for (int& count : evenChunks) count *= 2;
        EXPECT_EQ(run(down, x, x.size() / 2, evenChunks), z);
        EXPECT_EQ(down.toGo(), 2 * 1248 - 5000 % 1248 - 1248);
    }
}

// An odd count ends between two outputs: of an even place's sample the output goes out at once.
TEST_P(FftStagesTest, DownsamplerTakesOddCounts) {
    const Samples x = noise(4001);
    CFFTDownsampler whole(GetParam()), parts(GetParam());
    Samples expected(2001), y;
    whole.process(x.data(), 4001, expected.data());
    for (std::size_t in = 0; in < x.size();) {
        const int count = std::min(37, static_cast<int>(x.size() - in));
        Samples out(20, -1.0);
        parts.process(x.data() + in, count, out.data());
        const std::size_t made = (in + static_cast<std::size_t>(count) + 1) / 2 - (in + 1) / 2;
        EXPECT_EQ(out[made], -1.0);
        y.insert(y.end(), out.begin(), out.begin() + static_cast<std::ptrdiff_t>(made));
        in += static_cast<std::size_t>(count);
    }
    EXPECT_EQ(y, expected);
}

TEST_P(FftStagesTest, ResetForgetsEverythingNaNToo) {
    const Samples x = noise(4000);
    CFFTUpsampler up(GetParam());
    CFFTDownsampler down(GetParam());
    const Samples y = run(up, x, 8000, kWhole), z = run(down, x, 2000, kWhole);
    Samples bad = x;
    bad[1000] = std::numeric_limits<double>::quiet_NaN();
    bad[3500] = std::numeric_limits<double>::infinity();
    run(up, bad, 8000, {100});
    run(down, bad, 2000, {100});
    up.reset();
    down.reset();
    EXPECT_EQ(run(up, x, 8000, {64}), y);
    EXPECT_EQ(run(down, x, 2000, {64}), z);
}

TEST_P(FftStagesTest, BuildsAgree) {
    const Samples x = noise(4000);
    CFFTUpsampler up(GetParam()), upPortable(ProcessorBuild::kPortable);
    CFFTDownsampler down(GetParam()), downPortable(ProcessorBuild::kPortable);
    const Samples y = run(up, x, 8000, kWhole), yPortable = run(upPortable, x, 8000, kWhole);
    const Samples z = run(down, x, 2000, kWhole), zPortable = run(downPortable, x, 2000, kWhole);
    for (std::size_t i = 0; i < y.size(); ++i) ASSERT_NEAR(y[i], yPortable[i], 1e-14);
    for (std::size_t i = 0; i < z.size(); ++i) ASSERT_NEAR(64 * z[i], 64 * zPortable[i], 1e-14);
}

// As after any failure of the constructor.
TEST(FftStagesWithoutTransformsTest, GiveSilence) {
    const auto unknown = static_cast<ProcessorBuild>(9);
    CFFTUpsampler up(unknown);
    CFFTDownsampler down(unknown);
    EXPECT_FALSE(up.isReady() || down.isReady());
    up.reset();
    down.reset();
    const Samples x = noise(3000);
    EXPECT_EQ(run(up, x, 6000, {100}), Samples(6000, 0.0));
    EXPECT_EQ(run(down, x, 1500, {100}), Samples(1500, 0.0));
}

INSTANTIATE_TEST_SUITE_P(Builds, FftStagesTest, ::testing::ValuesIn(supportedBuilds()), buildOfTest);

TEST(FftStageKernelTest, TapsAreAWindowedSinc) {
    for (const FftStageDesign& design : {kFftUpDesign, kFftDownDesign}) {
        const Samples taps = tapsOf(design);
        ASSERT_EQ(taps.size(), 401u);
        EXPECT_NEAR(taps[0] / design.gain, design.cutoff, 1e-15);
        for (std::size_t n = 1; n < taps.size(); ++n) {
            const double x = static_cast<double>(n);
            // The library's own Bessel function, to which the polynomials come within 2e-7.
            const double window =
                std::cyl_bessel_i(0, 19.0 * std::sqrt(1 - x * x / 160000)) / std::cyl_bessel_i(0, 19.0);
            const double sinc = std::sin(design.cutoff * std::numbers::pi * x) / (std::numbers::pi * x);
            EXPECT_NEAR(taps[n] / design.gain, sinc * window, 4e-7 * window + 1e-15) << n;
        }
    }
}

TEST(FftStageKernelTest, ResponseIsFlatThenHalfThenGone) {
    for (const FftStageDesign& design : {kFftUpDesign, kFftDownDesign}) {
        const Samples taps = tapsOf(design);
        EXPECT_NEAR(gainAt(taps, 0) / design.gain, 1.0, 1e-7);
        EXPECT_NEAR(gainAt(taps, design.cutoff - 0.015) / design.gain, 1.0, 1e-7);
        EXPECT_NEAR(db(gainAt(taps, design.cutoff) / design.gain), -6.02, 0.005);
        for (double f = design.cutoff + 0.016; f < 1; f += 0.0031)
            EXPECT_LT(db(gainAt(taps, f) / design.gain), -150) << f;
    }
}

TEST(FftStageKernelTest, SpectrumIsRealDoubledAndShared) {
    CRealFFTRef fft = CRealFFTPool::instance().acquire(11);
    const double* spectrum = CFFTStageKernels::instance().find(kFftUpDesign, *fft.get());
    ASSERT_NE(spectrum, nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(spectrum) % 64, 0u);
    const Samples taps = tapsOf(kFftUpDesign);
    EXPECT_NEAR(spectrum[0], gainAt(taps, 0) / 2048, 1e-17);
    EXPECT_NEAR(spectrum[1], gainAt(taps, 1) / 2048, 1e-17);
    for (int k = 1; k < 1024; ++k) {
        ASSERT_NEAR(spectrum[2 * k], gainAt(taps, k / 1024.0) / 2048, 2e-17) << k;
        ASSERT_EQ(spectrum[2 * k], spectrum[2 * k + 1]);
    }
    CRealFFTRef another = CRealFFTPool::instance().acquire(11);
    EXPECT_EQ(CFFTStageKernels::instance().find(kFftUpDesign, *another.get()), spectrum);
    EXPECT_NE(CFFTStageKernels::instance().find(kFftDownDesign, *another.get()), spectrum);
}

}  // namespace
}  // namespace brt
