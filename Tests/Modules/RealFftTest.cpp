// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/RealFft.h"

#include "Modules/CAlignedBlock.h"
#include "Modules/ProcessorBuilds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>
#include <random>
#include <vector>

namespace brt {
namespace {

constexpr double kGuard = 12345.678;
constexpr std::size_t kGuardLen = 16;

// A spec with its work buffer, which has guard values behind it.
struct Transform {
    Transform(int order, int flag, ProcessorBuild build) {
        std::size_t specBytes = 0, initBytes = 0;
        EXPECT_EQ(fftGetSize(order, flag, 1, &specBytes, &initBytes, &workBytes, build), kFftDone);
        EXPECT_TRUE(specMemory.allocate(specBytes));
        EXPECT_TRUE(initMemory.allocate(initBytes));
        EXPECT_TRUE(work.allocate(workBytes / sizeof(double) + kGuardLen));
        for (std::size_t i = 0; i < kGuardLen; ++i) work[workBytes / sizeof(double) + i] = kGuard;
        EXPECT_EQ(fftInit(&spec, order, flag, 1, specMemory.data(), initMemory.data(), build), kFftDone);
    }
    ~Transform() {
        for (std::size_t i = 0; i < kGuardLen; ++i) EXPECT_EQ(work[workBytes / sizeof(double) + i], kGuard);
    }
    std::vector<double> forward(const std::vector<double>& x) {
        std::vector<double> y(x.size());
        EXPECT_EQ(fftForward(x.data(), y.data(), spec, work.data()), kFftDone);
        return y;
    }
    std::vector<double> inverse(const std::vector<double>& y) {
        std::vector<double> x(y.size());
        EXPECT_EQ(fftInverse(y.data(), x.data(), spec, work.data()), kFftDone);
        return x;
    }
    CAlignedBlock<std::byte> specMemory, initMemory;
    CAlignedBlock<double> work;
    std::size_t workBytes = 0;
    RealFftSpec* spec = nullptr;
};

std::vector<double> noise(int order) {
    std::mt19937 generator(static_cast<unsigned>(order) + 1);
    std::uniform_real_distribution<double> value(-1.0, 1.0);
    std::vector<double> x(std::size_t{1} << order);
    for (double& v : x) v = value(generator);
    return x;
}

// Bin k by the definition.
std::pair<double, double> binByDefinition(const std::vector<double>& x, std::size_t k) {
    long double re = 0, im = 0;
    for (std::size_t n = 0; n < x.size(); ++n) {
        const long double angle = 2 * std::numbers::pi_v<long double> * static_cast<long double>(n * k % x.size()) /
                                  static_cast<long double>(x.size());
        re += x[n] * std::cos(angle);
        im -= x[n] * std::sin(angle);
    }
    return {static_cast<double>(re), static_cast<double>(im)};
}

class RealFftTest : public ::testing::TestWithParam<ProcessorBuild> {};

TEST_P(RealFftTest, GivesTheSumsOfTheDefinition) {
    for (int order = 0; order <= 13; ++order) {
        SCOPED_TRACE(order);
        const std::vector<double> x = noise(order);
        const std::vector<double> y = Transform(order, kFftScaleNone, GetParam()).forward(x);
        const double tolerance = 4e-16 * order * std::sqrt(static_cast<double>(x.size()));
        // Every bin while that is quick, then some from each part of the spectrum and around the middle.
        const std::size_t half = x.size() / 2, step = order <= 9 ? 1 : half / 37;
        std::vector<std::size_t> bins = {0, half, half / 2, half / 2 + 1, half - 1};
        for (std::size_t k = 1; k < half; k += step) bins.push_back(k);
        for (const std::size_t k : bins) {
            if (k > half || (k == half && order == 0)) continue;
            const auto [re, im] = binByDefinition(x, k);
            ASSERT_NEAR(y[k == half && order > 0 ? 1 : 2 * k], re, tolerance) << "bin " << k;
            if (k == 0 || k == half) continue;
            ASSERT_NEAR(y[2 * k + 1], im, tolerance) << "bin " << k;
        }
    }
}

TEST_P(RealFftTest, InverseAfterForwardGivesTheInputTimesN) {
    for (const int order : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 16, 17}) {
        SCOPED_TRACE(order);
        Transform transform(order, kFftScaleNone, GetParam());
        const std::vector<double> x = noise(order), z = transform.inverse(transform.forward(x));
        const double size = static_cast<double>(x.size());
        for (std::size_t n = 0; n < x.size(); ++n) ASSERT_NEAR(z[n] / size, x[n], 2e-15) << n;
    }
}

TEST_P(RealFftTest, ConstantAlternatingAndImpulse) {
    for (int order = 1; order <= 12; ++order) {
        SCOPED_TRACE(order);
        Transform transform(order, kFftScaleNone, GetParam());
        const std::size_t size = std::size_t{1} << order;
        std::vector<double> x(size, 1.0), expected(size, 0.0);
        expected[0] = static_cast<double>(size);
        EXPECT_EQ(transform.forward(x), expected);

        for (std::size_t n = 1; n < size; n += 2) x[n] = -1.0;
        std::swap(expected[0], expected[1]);
        EXPECT_EQ(transform.forward(x), expected);

        std::fill(x.begin(), x.end(), 0.0);
        x[0] = 1.0;
        for (std::size_t i = 0; i < size; ++i) expected[i] = i == 1 || i % 2 == 0 ? 1.0 : 0.0;
        EXPECT_EQ(transform.forward(x), expected);
    }
}

// Blocks that start anywhere, with guard values on both sides.
TEST_P(RealFftTest, InPlaceGivesTheSameBitsAndStaysInItsBlock) {
    for (int order = 0; order <= 12; ++order) {
        SCOPED_TRACE(order);
        Transform transform(order, kFftScaleNone, GetParam());
        const std::vector<double> x = noise(order), y = transform.forward(x), z = transform.inverse(y);
        for (std::size_t offset = 1; offset <= 8; offset += 7) {
            std::vector<double> block(x.size() + kGuardLen + offset, kGuard);
            double* p = block.data() + offset;
            std::copy(x.begin(), x.end(), p);
            EXPECT_EQ(fftForward(p, p, transform.spec, transform.work.data()), kFftDone);
            EXPECT_EQ(std::memcmp(p, y.data(), y.size() * sizeof(double)), 0);
            EXPECT_EQ(fftInverse(p, p, transform.spec, transform.work.data()), kFftDone);
            EXPECT_EQ(std::memcmp(p, z.data(), z.size() * sizeof(double)), 0);
            EXPECT_TRUE(std::all_of(block.data(), p, [](double v) { return v == kGuard; }));
            EXPECT_TRUE(std::all_of(p + x.size(), block.data() + block.size(), [](double v) { return v == kGuard; }));
        }
    }
}

TEST_P(RealFftTest, FlagsScale) {
    const int order = 6;
    const double size = 64;
    const std::vector<double> x = noise(order), y = Transform(order, kFftScaleNone, GetParam()).forward(x);
    const struct {
        int flag;
        double forward, roundTrip;
    } cases[] = {{kFftScaleForward, 1 / size, 1}, {kFftScaleInverse, 1, 1}, {kFftScaleBoth, 1 / 8.0, 1}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.flag);
        Transform transform(order, c.flag, GetParam());
        const std::vector<double> scaled = transform.forward(x), back = transform.inverse(scaled);
        for (std::size_t i = 0; i < x.size(); ++i) {
            EXPECT_NEAR(scaled[i], c.forward * y[i], 1e-14);
            EXPECT_NEAR(back[i], x[i], 1e-14);
        }
    }
}

TEST_P(RealFftTest, MakesAWorkBufferWhenItGetsNone) {
    Transform transform(10, kFftScaleNone, GetParam());
    const std::vector<double> x = noise(10), expected = transform.forward(x);
    std::vector<double> y(x.size());
    EXPECT_EQ(fftForward(x.data(), y.data(), transform.spec, nullptr), kFftDone);
    EXPECT_EQ(y, expected);
}

INSTANTIATE_TEST_SUITE_P(Builds, RealFftTest, ::testing::ValuesIn(supportedBuilds()), buildOfTest);

TEST(RealFftStatusTest, WrongArgumentsAreToldAndWriteNothing) {
    std::size_t a = 1, b = 2, c = 3;
    EXPECT_EQ(fftGetSize(10, kFftScaleNone, 1, nullptr, &b, &c), -8);
    EXPECT_EQ(fftGetSize(10, kFftScaleNone, 1, &a, nullptr, &c), -8);
    EXPECT_EQ(fftGetSize(10, kFftScaleNone, 1, &a, &b, nullptr), -8);
    EXPECT_EQ(fftGetSize(-1, kFftScaleNone, 1, &a, &b, &c), -15);
    EXPECT_EQ(fftGetSize(kFftMaxOrder + 1, kFftScaleNone, 1, &a, &b, &c), -15);
    for (const int flag : {0, 3, 16, -8}) EXPECT_EQ(fftGetSize(10, flag, 1, &a, &b, &c), -16);
    EXPECT_EQ(a, 1u);
    EXPECT_EQ(b, 2u);
    EXPECT_EQ(c, 3u);
    EXPECT_EQ(fftGetSize(kFftMaxOrder, kFftScaleNone, 1, &a, &b, &c), 0);
    EXPECT_EQ(c, std::size_t{8} << kFftMaxOrder);

    Transform transform(4, kFftScaleNone, processorBuild());
    RealFftSpec* spec = nullptr;
    EXPECT_EQ(fftInit(nullptr, 4, kFftScaleNone, 1, transform.specMemory.data(), nullptr), -8);
    EXPECT_EQ(fftInit(&spec, 4, kFftScaleNone, 1, nullptr, nullptr), -8);
    EXPECT_EQ(fftInit(&spec, 31, kFftScaleNone, 1, transform.specMemory.data(), nullptr), -15);
    EXPECT_EQ(fftInit(&spec, 4, 5, 1, transform.specMemory.data(), nullptr), -16);
    EXPECT_EQ(spec, nullptr);

    std::vector<double> x(16, 1.0), y(16, kGuard);
    EXPECT_EQ(fftForward(nullptr, y.data(), transform.spec, transform.work.data()), -8);
    EXPECT_EQ(fftForward(x.data(), nullptr, transform.spec, transform.work.data()), -8);
    EXPECT_EQ(fftInverse(x.data(), y.data(), nullptr, transform.work.data()), -8);
    CAlignedBlock<std::byte> noSpec;
    ASSERT_TRUE(noSpec.allocate(256));
    EXPECT_EQ(fftInverse(x.data(), y.data(), reinterpret_cast<RealFftSpec*>(noSpec.data()), nullptr), -17);
    EXPECT_EQ(y, std::vector<double>(16, kGuard));
}

}  // namespace
}  // namespace brt
