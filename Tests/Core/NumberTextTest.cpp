// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/NumberText.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include "Core/CommaLocale.h"
#include "Core/Log.h"
#include "Core/PrintText.h"

namespace brt {
namespace {

TEST(NumberText, integersAreTheWholeText) {
    std::int64_t value = 77;
    for (const char* text : {"", "-", "+5", " 5", "5 ", "5.0", "0x10", "5a", "9223372036854775808", "1e3"})
        EXPECT_FALSE(parseInteger(text, value)) << text;
    EXPECT_FALSE(parseInteger(u"\u0665", value));  // a digit, but not one of ours
    EXPECT_EQ(value, 77);
    EXPECT_TRUE(parseInteger("007", value));
    EXPECT_EQ(value, 7);
    EXPECT_TRUE(parseInteger(u"-9223372036854775808", value));
    EXPECT_EQ(value, INT64_MIN);
    EXPECT_EQ(integerText(INT64_MIN), "-9223372036854775808");
}

TEST(NumberText, decimalsAreTheWholeTextAndFinite) {
    double value = 77;
    for (const char* text : {"", "-", ".", "-.", "+0.5", "0,5", " 1", "1 ", "1.5x", "inf", "-inf", "nan", "-nan",
                             "INFINITY", "0x10", "1e", "1e999", "--1"})
        EXPECT_FALSE(parseDouble(text, value)) << text;
    EXPECT_FALSE(parseDouble(u"1\u0416", value));
    EXPECT_FALSE(parseDouble("1\xB2", value));
    EXPECT_EQ(value, 77);
    const struct {
        CStringView text;
        double value;
    } cases[] = {{"0.5", 0.5}, {"-.5", -0.5}, {"5.", 5}, {"007", 7}, {"1e-3", 1e-3}, {u"-2.25E2", -225}, {"-0", 0}};
    for (const auto& expected : cases) {
        EXPECT_TRUE(parseDouble(expected.text, value));
        EXPECT_EQ(value, expected.value);
    }
}

TEST(NumberText, whatRoundsToZeroHasNoMinusSign) {
    EXPECT_EQ(fixedText(-0.00004, 4), "0.0000");
    EXPECT_EQ(fixedText(-0.0, 0), "0");
    EXPECT_EQ(fixedText(-0.4, 0), "0");
    EXPECT_EQ(fixedText(-0.6, 0), "-1");
    EXPECT_EQ(fixedText(-0.25, 4), "-0.2500");
    EXPECT_EQ(shortestText(-0.0), "0");
    EXPECT_EQ(shortestText(-0.1), "-0.1");
    EXPECT_EQ(fixedText(std::numeric_limits<double>::lowest(), 40).length(), 1 + 309 + 1 + 40);
    EXPECT_EQ(fixedText(1, 1000).length(), 42);
}

TEST(NumberText, shortestTextReadsBackTheSame) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 2000; ++i) {
        const double value = std::bit_cast<double>(random());
        double back = 0;
        if (!std::isnormal(value)) continue;
        ASSERT_TRUE(parseDouble(shortestText(value), back)) << value;
        ASSERT_EQ(back, value);
    }
}

// A host may set any locale for its own purposes.
TEST(NumberText, isTheSameUnderALocaleWithADecimalComma) {
    const CommaLocale locale;
    if (!locale.isSet()) GTEST_SKIP() << "no locale with a decimal comma can be had on this system";
    double value = 0;
    EXPECT_TRUE(parseDouble("0.5", value));
    EXPECT_EQ(value, 0.5);
    EXPECT_FALSE(parseDouble("0,5", value));
    EXPECT_EQ(fixedText(1234.5, 2), "1234.50");
    EXPECT_EQ(shortestText(0.5), "0.5");
    char room[32];
    const CFormatArgument arguments[] = {0.25};
    EXPECT_EQ(formatText(room, "%.2f", arguments), "0.25");
}

}  // namespace
}  // namespace brt
