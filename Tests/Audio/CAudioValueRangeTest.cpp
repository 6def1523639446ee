// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioValueRange.h"

#include <gtest/gtest.h>

#include <limits>

namespace brt {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(CAudioValueRange, boundsAreIncludedOrNot) {
    const struct {
        const char* text;
        double value;
        bool isInside;
    } kCases[] = {
        {"(0;1]", 0.0, false},        {"(0;1]", 0.004, false},  // rounds to the excluded step
        {"(0;1]", 0.01, true},        {"(0;1]", 1.0, true},        {"(0;1]", 1.004, true},
        {"(0;1]", 1.01, false},       {"(0;1]", kNaN, false},      {"[0;1)", 0.0, true},
        {"[0;1)", -0.01, false},      {"[0;1)", 0.99, true},       {"[0;1)", 1.0, false},
        {"[2;2]", 2.0, true},         {"(2;2]", 2.0, false},       {"[-1;-0.5]", -0.5, true},
        {"[-1;-0.5]", -1.006, false}, {"[-1;-0.5]", -1.004, true}, {"[*;*]", -1e300, true},
        {"(*;*)", kInfinity, true},   {"[*;*]", kNaN, true},       {"(*;1)", -1e300, true},
        {"(*;1)", kNaN, false},       {"[1;*]", kInfinity, true},  {"[1;*]", -kInfinity, false},
        {"[1;4;0.5]", 0.75, true},  // half a step rounds away from zero
        {"[1;4;0.5]", 0.74, false},   {"[1;4;0.5]", 4.24, true},   {"[1;4;0.5]", 4.25, false},
        {"[-1;1;0.5]", -1.25, false},
    };
    for (const auto& test : kCases) {
        CAudioValueRange range;
        ASSERT_TRUE(range.parse(test.text)) << test.text;
        EXPECT_EQ(range.contains(test.value), test.isInside) << test.value << " in " << test.text;
    }
}

TEST(CAudioValueRange, whatIsNoneLeavesTheOldOne) {
    CAudioValueRange range;
    EXPECT_FALSE(range.valid);
    ASSERT_TRUE(range.parse("[1;2;0.5)"));
    for (const char* const text :
         {"",         "[0;]",    "[];;]",        "[abc]",     "{0;1]",           "[0;1}",   "]0;1[",
          " [0;1]",   "[0;1] ",  "[0,1]",        "[0;1;1;1]", "[1;;2]",          "[;10]",   "[x;10]",
          "[0; 1]",   "[**;1]",  "[0;nan]",      "[0;1;]",    "[0;1;x]",         "[0;1;*]", "[0;1;0]",
          "[0;1;-1]", "[0;1e9]", "[0;1;1e-300]", "[1;0.9]",   "[3000000000;*;1]"}) {
        EXPECT_FALSE(range.parse(text)) << text;
    }
    EXPECT_TRUE(range.valid);
    EXPECT_EQ(range.low, 2);
    EXPECT_EQ(range.high, 4);
    EXPECT_EQ(range.step, 0.5);
}

}  // namespace
}  // namespace brt
