// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/ClipCurve.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

namespace brt {
namespace {

// The curve from its formula, in the widest type there is.
long double softFormula(long double x) {
    const long double a = std::fabs(x), q = x * x;
    const long double numerator =
        (2.423509618411691L * a + 2.395631787739572L + (0.8785524976458703L * a + 0.9403501925936697L) * q) * x;
    const long double denominator =
        (q + 2.3636579090766805L) * std::fabs(x + a * 0.8766349762624457L * x) + 2.397102514234356L;
    return numerator / denominator;
}

std::vector<double> manyLevels() {
    std::vector<double> levels = {0.0, 1.0, -1.0, 1.0 + 1e-15, -1.0 - 1e-15, 1e-30, 1e12};
    for (double x = 1e-6; x < 100.0; x *= 1.01) levels.insert(levels.end(), {x, -x});
    return levels;
}

double clipped(double x, double hardness, bool residue) {
    clip(&x, 1, {hardness, residue});
    return x;
}

TEST(ClipCurve, softFollowsItsFormula) {
    for (double x : manyLevels()) {
        const double expected = static_cast<double>(softFormula(x));
        ASSERT_NEAR(softClip(x), expected, 1e-15 * std::abs(expected)) << x;
    }
}

TEST(ClipCurve, softIsOddAndCloseToTanh) {
    for (double x : manyLevels()) {
        EXPECT_EQ(softClip(-x), -softClip(x));
        if (std::abs(x) <= 40.0) {
            EXPECT_NEAR(softClip(x), std::tanh(x), 0.00076) << x;
        }
    }
    EXPECT_NEAR(softClip(1e-9) / 1e-9, 0.99938646, 1e-8);
    EXPECT_NEAR(softClip(4.67), 1.00044, 5e-6);
    EXPECT_NEAR(softClip(10.7), 0.99925, 5e-6);
    EXPECT_NEAR(softClip(1e9), 1.0021873658, 1e-8);
}

TEST(ClipCurve, hardLimitsToOne) {
    for (double x : manyLevels()) EXPECT_EQ(hardClip(x), x > 1.0 ? 1.0 : x < -1.0 ? -1.0 : x);
}

// 99.8% is the hard limit alone, 99.7% still a mixture weighed by the square.
TEST(ClipCurve, hardnessWeighsBySquareUpToItsThreshold) {
    for (double x : manyLevels()) {
        EXPECT_EQ(clipped(x, 1.0, false), hardClip(x));
        EXPECT_EQ(clipped(x, 0.998, false), hardClip(x));
        EXPECT_NEAR(clipped(x, 0.997, false), 0.994009 * hardClip(x) + 0.005991 * softClip(x), 3e-16);
        EXPECT_EQ(clipped(x, 0.0, false), softClip(x));
    }
}

TEST(ClipCurve, residueIsWhatClippingTakesAway) {
    EXPECT_EQ(clipped(1.5, 1.0, true), -0.5);
    EXPECT_EQ(clipped(-3.0, 1.0, true), 2.0);
    for (double x : manyLevels()) {
        if (std::abs(x) <= 1.0) {
            EXPECT_EQ(clipped(x, 1.0, true), 0.0);
        }
        EXPECT_NEAR(clipped(x, 0.3, true), clipped(x, 0.3, false) - x, 1e-15 * std::abs(x)) << x;
    }
}

}  // namespace
}  // namespace brt
