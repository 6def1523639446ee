// SPDX-License-Identifier: LicenseRef-Halyard
// Between the 0 to 1 of a control, what modules read, and what a user reads.
#include "ConverterFixture.h"

#include <algorithm>
#include <limits>

namespace brt {
namespace {

class ConverterMappingTest : public ConverterFixture {
protected:
    static double internal(const CAudioParamInfo& info, double normal) {
        return info.converter()->normalToInternal(info, 0, normal);
    }
    static double normal(const CAudioParamInfo& info, double value) {
        return info.converter()->internalToNormal(info, 0, value);
    }
    static double display(const CAudioParamInfo& info, double normal) {
        return info.converter()->normalToDisplay(info, 0, normal);
    }
};

// Every range of the product's parameters, in both directions, and some that bend and part the scale.
TEST_F(ConverterMappingTest, wayAndWayBackMeet) {
    const struct {
        const char *converter, *minimum, *maximum;
    } kRanges[] = {
        {"gain", "0", "24"},         {"gain", "-24", "0"},      {"gain", "-48", "48"},
        {"gain", "-96", "96"},       {"gain", "-12", "12"},     {"percent", "0.0", "100.0"},
        {"time", "0", "5000.0"},     {"time", "1", "10000.0"},  {"time", "0.1", "5000.0"},
        {"time", "1", "1000"},       {"time", "100", "10000"},  {"real", "10", "8192"},
        {"gain-bent", "-48", "12"},  {"freq", "20", "20000"},   {"time-log", "1", "5000"},
        {"time-exact", "0", "5000"}, {"time-sec", "0.5", "60"}, {"gain-parted", "-60", "12"},
        {"gain-both", "-60", "12"},
    };
    for (const auto& [converter, low, high] : kRanges) {
        const bool isParted =
            std::string_view(converter).starts_with("gain-p") || converter == std::string("gain-both");
        for (const bool isInverted : {false, true}) {
            if (isParted && isInverted) continue;  // such a scale only has an upward side
            const CAudioParamInfo& info = ranged(converter, isInverted ? high : low, isInverted ? low : high);
            SCOPED_TRACE(testing::Message() << converter << " " << low << " " << high << " " << isInverted);
            const double tolerance = 1e-13 * std::max(info.minimum(), info.maximum());
            EXPECT_NEAR(internal(info, 0), info.minimum(), tolerance);
            EXPECT_NEAR(internal(info, 1), info.maximum(), tolerance);
            EXPECT_EQ(normal(info, info.minimum()), 0.0);
            double last = info.minimum();
            for (int i = 1; i <= 1000; ++i) {
                const double place = i / 1000.0;
                const double value = internal(info, place);
                EXPECT_NEAR(normal(info, value), place, 1e-12);
                EXPECT_NEAR(info.converter()->displayToNormal(info, 0, display(info, place)), place, 1e-12);
                EXPECT_TRUE(isInverted ? value < last : value > last) << place;
                last = value;
            }
        }
    }
}

TEST_F(ConverterMappingTest, scalesRunAsTheirNamesSay) {
    const CAudioParamInfo& gain = ranged("gain", "0", "24");
    EXPECT_DOUBLE_EQ(gain.minimum(), 1.0);
    EXPECT_NEAR(gain.maximum(), 15.848931924611133, 1e-12);
    EXPECT_NEAR(display(gain, 0.5), 12.0, 1e-12);

    const CAudioParamInfo& bent = ranged("gain-bent", "-60", "0");
    EXPECT_NEAR(display(bent, 0.25), -30.0, 1e-12) << "the square root of a quarter";
    const CAudioParamInfo& parted = ranged("gain-parted", "-60", "12");
    EXPECT_NEAR(display(parted, 0.75), 0.0, 1e-12) << "0 dB stands at the threshold";
    EXPECT_NEAR(display(parted, 0.375), -30.0, 1e-12);
    EXPECT_NEAR(display(parted, 0.875), 6.0, 1e-12);
    const CAudioParamInfo& both = ranged("gain-both", "-60", "12");
    EXPECT_NEAR(display(both, 0.125), -45.0, 1e-12) << "half of the way to the threshold, squared";
    EXPECT_NEAR(display(both, 0.625), 6.0, 1e-12) << "above the threshold nothing is bent";

    EXPECT_NEAR(internal(ranged("freq", "20", "20000"), 2.0 / 3.0), 2000.0, 1e-9);
    EXPECT_NEAR(display(ranged("percent", "0", "100"), 0.25), 25.0, 1e-12);
    EXPECT_NEAR(display(ranged("time", "0", "5000"), 0.5), 1250.0, 1e-9) << "a square law";
    EXPECT_NEAR(display(ranged("time-exact", "0", "5000"), 0.5), 2500.0, 1e-9);
    EXPECT_NEAR(display(ranged("time-log", "1", "10000"), 0.5), 100.0, 1e-9);
    EXPECT_NEAR(display(ranged("real", "8192", "10"), 0.25), 8192 - 0.25 * 8182, 1e-9) << "downwards";
    EXPECT_EQ(gain.converter()->displayToNormal(gain, 0, 99.0), 1.0) << "limited";

    const CAudioParamInfo& routing = ranged("enum", "0", "16");
    EXPECT_EQ(internal(routing, 0.5 / 16 - 1e-9), 0.0);
    EXPECT_EQ(internal(routing, 0.5 / 16), 1.0);
    for (int i = 0; i <= 16; ++i) EXPECT_EQ(internal(routing, normal(routing, i)), i);
    EXPECT_EQ(internal(ranged("enum", "-3", "-2"), 0.5), -3.0) << "halves go away from zero";
}

TEST_F(ConverterMappingTest, limitKeepsToTheRangeInBothDirections) {
    const CAudioParamInfo& up = ranged("real", "0", "10");
    const CAudioParamInfo& down = ranged("real", "10", "0");
    for (const CAudioParamInfo* const info : {&up, &down}) {
        EXPECT_EQ(info->limit(5), 5);
        EXPECT_EQ(info->limit(-1), 0);
        EXPECT_EQ(info->limit(11), 10);
        EXPECT_EQ(info->limit(-std::numeric_limits<double>::infinity()), 0);
        EXPECT_EQ(info->limit(std::numeric_limits<double>::quiet_NaN()), info->minimum());
    }
}

}  // namespace
}  // namespace brt
