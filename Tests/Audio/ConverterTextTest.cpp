// SPDX-License-Identifier: LicenseRef-Halyard
// What converters show, and what they make of what a user types.
#include "Audio/Converters/ConverterNumber.h"
#include "ConverterFixture.h"

#include <limits>

namespace brt {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

double factorOf(double db) { return std::pow(10.0, db / 20.0); }

void expectClose(double value, double expected, const char* text) {
    EXPECT_TRUE(value == expected || std::abs(value - expected) <= 1e-13 * std::abs(expected))
        << text << " gives " << value << ", not " << expected;
}

TEST(ConverterNumber, readsWhatANumberBeginsWith) {
    const std::string many(400, '1');
    const struct {
        std::string text;
        bool ok;
        double value;
    } kCases[] = {
        {"5", true, 5},
        {"+5", true, 5},
        {"-5", true, -5},
        {"5.25", true, 5.25},
        {"5,25", true, 5.25},
        {".5", true, 0.5},
        {",5", true, 0.5},
        {"5.", true, 5},
        {"1.5.7", true, 1.5},
        {"12 dB", true, 12},
        {"1e3", true, 1e3},
        {"25E-2", true, 0.25},
        {"1e+2", true, 100},
        {"2e", true, 2},
        {"2e-x", true, 2},
        {"0x10", true, 0},
        {"1e400", true, INFINITY},
        {"-1e99999999999", true, -INFINITY},
        {"1e-400", true, 0},
        {"0e99999", true, 0},
        {"", false, 0},
        {"-", false, 0},
        {"+", false, 0},
        {".", false, 0},
        {"-.", false, 0},
        {"e5", false, 0},
        {"-inf", false, 0},
        {"nan", false, 0},
        {" 5", false, 0},
        {"+-5", false, 0},
        {"--5", false, 0},
        {many, true, INFINITY},
        {many + "e-400", true, INFINITY},
        {"0." + many, true, 1.0 / 9.0},
    };
    for (const auto& [text, ok, value] : kCases) {
        bool isRead = !ok;
        EXPECT_DOUBLE_EQ(parseNumber(text, isRead), value) << text;
        EXPECT_EQ(isRead, ok) << text;
        isRead = !ok;
        EXPECT_DOUBLE_EQ(parseNumber(std::u16string(text.begin(), text.end()), isRead), value) << "wide " << text;
        EXPECT_EQ(isRead, ok) << "wide " << text;
    }
}

TEST(ConverterNumber, showsSoManyDecimalsAndNeverAnExponent) {
    const struct {
        double value;
        int decimals;
        const char* text;
    } kCases[] = {
        {0, 0, "0"},
        {0, 2, "0.00"},
        {0.5, 0, "1"},
        {-0.5, 0, "-1"},
        {2.5, 0, "3"},
        {-2.5, 0, "-3"},
        {0.0625, 2, "0.06"},
        {-0.0625, 3, "-0.063"},
        {-0.04, 1, "0.0"},
        {1e-300, 1, "0.0"},
        {12345.678, 1, "12345.7"},
        {0.1, 10, "0.1000000000"},
        {9e15, 0, "9000000000000000"},
        {1e300, 1, "9000000000000000.0"},
        {-1e16, 0, "-9000000000000000"},
        {4e15, 10, "4000000000000000.0000000000"},
        {kNan, 3, "0"},
        {kInfinity, 0, "0"},
        {-kInfinity, 1, "0"},
    };
    for (const auto& [value, decimals, text] : kCases)
        EXPECT_EQ(numberText(value, decimals).toUtf8(), text) << value << " " << decimals;
}

class ConverterTextTest : public ConverterFixture {};

TEST_F(ConverterTextTest, eachModeShowsItsDecimals) {
    const struct {
        const char *converter, *minimum, *maximum;
        std::vector<std::pair<double, Texts>> rows;
    } kCases[] = {
        {"gain",
         "-96",
         "96",
         {{1.0, {"0.0", "0", "0.0", "0.00"}},
          {factorOf(0.004), {"0.0", "0", "0.0", "0.00"}},
          {factorOf(0.006), {"0.0", "0.0", "0.0", "0.01"}},
          {factorOf(9.94), {"9.9", "9.9", "9.9", "9.94"}},
          {factorOf(-9.96), {"-10.0", "-10", "-10.0", "-9.96"}},
          {factorOf(12.346), {"12.3", "12", "12.3", "12.35"}}}},
        {"percent", "0", "100", {{0.1234, {"12.3", "12", "12.3", "12.3"}}, {1.0, {"100.0", "100", "100.0", "100.0"}}}},
        {"real",
         "-1000",
         "1000",
         {{9.94, {"9.94", "9.9", "9.94", "9.94"}}, {-9.96, {"-9.96", "-10", "-9.96", "-9.96"}}}},
        {"freq",
         "1",
         "100000",
         {{5.25, {"5.3", "5.3", "5.3", "5.25"}},
          {50.04, {"50.0", "50", "50.0", "50.04"}},
          {99.96, {"100", "100", "100", "99.96"}},
          {999.4, {"999", "999", "999", "999.40"}},
          {999.94, {"1.00k", "1000", "1.00k", "999.94"}},
          {999.96, {"1.00k", "1.0k", "1.00k", "999.96"}},
          {1234, {"1.23k", "1.2k", "1.23k", "1234.00"}},
          {12345, {"12.3k", "12k", "12.3k", "12345.00"}}}},
        {"time",
         "0",
         "100000",
         {{0.0, {"0.00", "0", "0.00", "0.00"}},
          {0.00004, {"0.04", "0", "0.04", "0.04"}},
          {0.0015, {"1.50", "1.5", "1.50", "1.50"}},
          {0.0123, {"12.3", "12", "12.3", "12.3"}},
          {0.1234, {"123", "123", "123", "123"}},
          {1.5, {"1500", "1.5*", "1500", "1500"}},
          {9.96, {"9960", "10.0*", "9960", "9960"}},
          {15, {"15000", "15*", "15000", "15000"}}}},
        {"time-exact", "0", "100000", {{0.1234, {"123.40", "123", "123.40", "123.40"}}}},
        {"time-log",
         "1",
         "100000",
         {{0.00123, {"1.230", "1.2", "1.230", "1.230"}},
          {0.0123, {"12.30", "12", "12.30", "12.30"}},
          {0.123, {"123.0", "123", "123.0", "123.0"}}}},
        {"time-sec", "0", "100", {{1.5, {"1.50", "1.5", "1.50", "1.50"}}}},
        {"enum", "-5", "5", {{-2.5, {"-3", "-3", "-3", "-3"}}}},
    };
    for (const auto& [converter, minimum, maximum, rows] : kCases) {
        const CAudioParamInfo& info = ranged(converter, minimum, maximum);
        for (const auto& [value, texts] : rows) EXPECT_EQ(shown(info, value), texts) << converter << " " << value;
    }
}

TEST_F(ConverterTextTest, whatIsNoNumberIsShownAsZeroAndWhatIsHugeAsItsLimit) {
    for (const char* const converter : {"gain", "freq", "real", "percent", "time", "enum", "enum-enable"}) {
        const CAudioParamInfo& info = ranged(converter, "1", "2");
        for (const double value : {kNan, kInfinity, -kInfinity})
            EXPECT_EQ(shown(info, value), (Texts{"0", "0", "0", "0"})) << converter << " " << value;
        for (const double value : {1e300, -1e300})
            for (const std::string& text : shown(info, value))
                EXPECT_EQ(text.find_first_of("einf"), text == "Reserve" ? 1U : std::string::npos) << text;
    }
    EXPECT_EQ(shown(ranged("real", "0", "1"), -1e300, EAudioTextMode::kPlain), "-9000000000000000.00");
}

TEST_F(ConverterTextTest, typedTextIsLimitedAndWhatIsNoneGivesTheMinimum) {
    const struct {
        const char *converter, *minimum, *maximum, *text;
        bool ok;
        double clamped, raw;
    } kCases[] = {
        {"gain", "-24", "24", "12,5", true, factorOf(12.5), factorOf(12.5)},
        {"gain", "-24", "24", "99", true, factorOf(24), factorOf(99)},
        {"gain", "-24", "24", "1e400", true, factorOf(24), kInfinity},
        {"gain", "-24", "24", "-inf", false, factorOf(-24), 1.0},
        {"gain", "24", "-24", "99", true, factorOf(24), factorOf(99)},
        {"gain", "24", "-24", "-99", true, factorOf(-24), factorOf(-99)},
        {"percent", "0", "100", "50%", true, 0.5, 0.5},
        {"percent", "10", "100", "-", false, 0.1, 0.0},
        {"real", "10", "8192", "480,5", true, 480.5, 480.5},
        {"real", "10", "8192", "wide", false, 10, 0},
        {"real", "10", "8192", "3", true, 10, 3},
        {"freq", "20", "20000", "1.5k", true, 1500, 1500},
        {"freq", "20", "20000", "1,5K", true, 1500, 1500},
        {"freq", "20", "20000", "90k", true, 20000, 90000},
        {"freq", "20", "20000", "k", false, 20, 0},
        {"time", "1", "5000", "250", true, 0.25, 0.25},
        {"time", "1", "5000", "", false, 0.001, 0.0},
        {"enum", "2", "7", "5", true, 5, 5},
        {"enum", "2", "7", "9", true, 7, 9},
        {"enum", "2", "7", "On", false, 2, 0},
        {"enum-enable", "0", "1", "ON ", true, 1, 1},
        {"enum-enable", "0", "1", "\t off\r\n", true, 0, 0},
        {"enum-enable", "0", "1", "2", true, 1, 2},
        {"enum-enable", "5", "6", "on", true, 6, 1},
        {"enum-enable", "0", "1", "1.5", false, 0, 0},
    };
    for (const auto& [converter, minimum, maximum, text, ok, clamped, raw] : kCases) {
        const CAudioParamInfo& info = ranged(converter, minimum, maximum);
        bool isRead = !ok;
        expectClose(info.converter()->parseClamped(info, 0, text, isRead), clamped, text);
        EXPECT_EQ(isRead, ok) << converter << " " << text;
        isRead = !ok;
        expectClose(info.converter()->parseRaw(info, 0, text, isRead), raw, text);
        EXPECT_EQ(isRead, ok) << converter << " " << text;
    }
}

TEST_F(ConverterTextTest, theFirstSwitchHasANameInsteadOfANumber) {
    const auto withSwitches = [&](const char* converter, const char* values, const char* maximum) {
        return define({{"converter", converter},
                       {"min-values", "0.01"},
                       {"max-values", maximum},
                       {"switch-values", values},
                       {"switch-names", "Never,Always"},
                       {"def-values", "1"}});
    };
    for (const char* const name : {"gain", "freq", "percent", "time-sec"}) {
        const CAudioParamInfo* const info = withSwitches((std::string("shared::cvt.") + name).c_str(), "20,30", "2000");
        ASSERT_TRUE(info) << m_failure;
        for (const double value : {20.0, 20.09, 19.91})
            EXPECT_EQ(shown(*info, value), (Texts{"Never", "Never", "Never", "Never"})) << name << value;
        EXPECT_NE(shown(*info, 20.11, EAudioTextMode::kPlain), "Never") << name;
        EXPECT_NE(shown(*info, 30.0, EAudioTextMode::kPlain), "Always") << name << ": the first alone counts";
        bool ok = false;
        EXPECT_DOUBLE_EQ(info->converter()->parseClamped(*info, 0, "Never", ok), info->limit(20.0)) << name;
        EXPECT_TRUE(ok);
        info->converter()->parseClamped(*info, 0, "Always", ok);
        EXPECT_FALSE(ok) << name;
    }
    const CAudioParamInfo* const real = withSwitches("shared::cvt.real", "20", "2000");
    EXPECT_EQ(shown(*real, 20.0, EAudioTextMode::kPlain), "20.00") << "this one has no switches";
    const CAudioParamInfo* const unread = withSwitches("shared::cvt.freq", "x,3", "2000");
    EXPECT_EQ(unread->switchValues[0], 0.0);
    EXPECT_EQ(shown(*unread, 0.004, EAudioTextMode::kPlain), "Never") << "0.005 to either side of a switch at 0";
}

TEST_F(ConverterTextTest, namesOfTheConverterStandBeforeThoseOfTheDefinition) {
    const CAudioParamInfo* const info = define({{"converter", "shared::cvt.enum-enable"},
                                                {"min-values", "10"},
                                                {"max-values", "14"},
                                                {"state-names", "A;Bypass|Byp Mode X; Crossfade mode | XF ;On"},
                                                {"def-values", "0"}});
    ASSERT_TRUE(info) << m_failure;
    EXPECT_EQ(shown(*info, 9.4), (Texts{"", "", "", ""}));
    EXPECT_EQ(shown(*info, 10), (Texts{"Off", "Off", "Off", "Off"}));
    EXPECT_EQ(shown(*info, 11.4), (Texts{"On", "On", "On", "On"}));
    EXPECT_EQ(shown(*info, 12), (Texts{"Crossfade mode", "XF", "XF", "Crossfade mode"}));
    EXPECT_EQ(shown(*info, 14), (Texts{"Reserve", "Rsv", "Reserve", "Reserve"}));

    const std::pair<const char*, double> kNames[] = {{"ON", 11}, {"a", 10},      {"crossfade MODE", 12},
                                                     {"xf", 12}, {"bypass", 11}, {"Byp Mode of another day", 11}};
    for (const auto& [name, value] : kNames) {
        bool ok = false;
        EXPECT_EQ(info->converter()->parseClamped(*info, 0, name, ok), value) << name;
        EXPECT_TRUE(ok) << name;
    }
}

TEST_F(ConverterTextTest, aTextIsShownAsItStands) {
    const CAudioParamInfo* const info =
        define({{"converter", "shared::cvt.text"}, {"data-type", "string"}, {"def-values", "L,,IN3"}});
    ASSERT_TRUE(info) << m_failure;
    EXPECT_EQ(shown(*info, info->defaults.value(0, 0, -1)), (Texts{"L", "L", "L", "L"}));
    EXPECT_EQ(shown(*info, info->defaults.value(0, 1, -1)), (Texts{"", "", "", ""}));
    EXPECT_EQ(shown(*info, info->defaults.value(0, 2, -1) + 0.4), (Texts{"IN3", "IN3", "IN3", "IN3"}));
    for (const double value : {kNan, kInfinity, -1.0, 99.0}) EXPECT_EQ(shown(*info, value), (Texts{"", "", "", ""}));
    bool ok = false;
    EXPECT_EQ(info->converter()->parseClamped(*info, 0, "anything", ok), 0.0);
    EXPECT_TRUE(ok);
}

}  // namespace
}  // namespace brt
