// SPDX-License-Identifier: LicenseRef-Halyard
// What definitions and converters read from their attributes, and what they refuse.
#include "ConverterFixture.h"

#include <cstdlib>

#include "Core/CAppData.h"
#include "Platform/TemporaryFolder.h"

namespace brt {
namespace {

using Names = std::vector<std::string>;
using Values = std::vector<double>;

Names namesOf(const CStringList& list) {
    Names names;
    for (const CString* const name : list) names.push_back(name->toUtf8());
    return names;
}

Values valuesOf(std::span<const double> values) { return {values.begin(), values.end()}; }

class CAudioParamDefTest : public ConverterFixture {
protected:
    void SetUp() override {
        ASSERT_EQ(setenv("XDG_CONFIG_HOME", m_folder.bytes("").c_str(), 1), 0);
        ConverterFixture::SetUp();
    }
    void TearDown() override {
        ConverterFixture::TearDown();
        unsetenv("XDG_CONFIG_HOME");
    }

    const CAudioParamInfo* withStates(const char* names) {
        return define({{"converter", "shared::cvt.enum"},
                       {"min-values", "0"},
                       {"max-values", "9"},
                       {"def-values", "0"},
                       {"state-names", names}});
    }

    static void store(CAppData& store, CStringView key, const std::string& bytes) {
        CByteBuffer buffer;
        buffer.assign(bytes.data(), static_cast<int>(bytes.size()));
        store.setData(key, buffer, nullptr, appDataTag::kPresetList);
    }

    TemporaryFolder m_folder;
};

TEST_F(CAudioParamDefTest, aDefinitionThatCannotBeUsedSaysWhy) {
    const char* const kReal = "shared::cvt.real";
    const char* const kEnum = "shared::cvt.enum";
    const std::pair<std::string, std::string> kCases[] = {
        {failureOf({{"element-size", "0"}}), "Invalid element size 0 specified."},
        {failureOf({{"element-size", "65"}}), "Invalid element size 65 specified."},
        {failureOf({{"element-size", "2"}, {"data-type", "string"}}),
         "Invalid element size 2 for non-float data specified."},
        {failureOf({{"element-size", "2"}, {"data-type", "raw"}}),
         "Invalid element size 2 for non-float data specified."},
        {failureOf({{"converter", "shared::cvt.none"}}), "Audio parameter converter 'shared::cvt.none' not found."},
        {failureOf({{"converter", "shared::cvt"}}), "Audio parameter converter 'shared::cvt' not found."},
        {failureOf({}), "Not enough converters defined 0 (should be 1)."},
        {failureOf({{"element-size", "3"}, {"converter", kReal}, {"converter3", kReal}}),
         "Not enough converters defined 2 (should be 3)."},
        {failureOf({{"converter", kReal}, {"min-values", ""}, {"max-values", "1"}}),
         "Not enough minimum values defined 0 (should be 1)."},
        {failureOf({{"element-size", "2"},
                    {"converter", kReal},
                    {"converter2", kReal},
                    {"min-values", "0  0"},
                    {"max-values", "1"}}),
         "Not enough maximum values defined 1 (should be 2)."},
        {failureOf({{"element-size", "2"},
                    {"converter", kReal},
                    {"converter2", kReal},
                    {"min-values", "0 5"},
                    {"max-values", "1 5,0"}}),
         "Zero default min-max values difference detected in element 1."},
        {failureOf({{"converter", kReal}, {"min-values", "0"}, {"max-values", "1"}}), "No default values specified."},
        {failureOf({{"converter", kReal}, {"min-values", "0"}, {"max-values", "1"}, {"def-values", "1,"}}),
         "Default values parsing error."},
        {failureOf({{"converter", kEnum}, {"min-values", "0"}, {"max-values", "1"}, {"def-values", "On"}}),
         "Default values parsing error."},
        {failureOf({{"element-size", "2"},
                    {"converter", kReal},
                    {"converter2", kReal},
                    {"min-values", "0 0"},
                    {"max-values", "1 1"},
                    {"def-values", "1 2,3;4 5"}}),
         "Not enough default elements at pos 5."},
        {failureOf({{"element-size", "2"},
                    {"converter", kReal},
                    {"converter2", kReal},
                    {"min-values", "0 0"},
                    {"max-values", "1 1"},
                    {"def-values", "1 2 3"}}),
         "Default values parsing error."},
        {makeConverter("audio:cvt-gain", {{"scale-power", "0"}, {"scale-threshold", "-1"}}),
         "Invalid 'scale-power' attribute value 0 specified."},
        {makeConverter("audio:cvt-freq", {{"scale-power", "-0.5"}, {"scale-threshold", "-1"}}),
         "Invalid 'scale-power' attribute value -0.5 specified."},
        {makeConverter("audio:cvt-gain", {{"scale-power", "1"}, {"scale-threshold", "1.5"}}),
         "Invalid 'scale-threshold' attribute value 1.5 specified."},
        {makeConverter("audio:cvt-gain", {{"scale-power", "1"}, {"scale-threshold", "1"}, {"decimals", "11"}}),
         "Invalid 'decimals' attribute value 11 specified."},
        {makeConverter("audio:cvt-real", {{"decimals", "11"}}), "Invalid decimals 11 specified."},
        {makeConverter("audio:cvt-real", {{"decimals", "-1"}}), "Invalid decimals -1 specified."},
        {makeConverter("audio:cvt-time", {{"scale", "-1"}}), "Invalid scale -1 specified."},
        {makeConverter("audio:cvt-real", {{"decimals", "10"}}), ""},
    };
    for (const auto& [failure, expected] : kCases) EXPECT_EQ(failure, expected);
}

TEST_F(CAudioParamDefTest, flagsFollowFromEachOther) {
    const auto flags = [&](const char* flag, const char* another) {
        const CAudioParamInfo* const info =
            define({{"converter", "shared::cvt.text"}, {"data-type", "string"}, {flag, "true"}, {another, "true"}});
        return info ? std::vector<bool>{info->isGlobal, info->isStorable, info->isPersistent} : std::vector<bool>{};
    };
    using Flags = std::vector<bool>;
    EXPECT_EQ(flags("is-global", "is-single-group"), (Flags{true, false, false}));
    EXPECT_EQ(flags("is-storable", "is-single-group"), (Flags{true, true, false}));
    EXPECT_EQ(flags("is-persistent", "is-single-group"), (Flags{true, false, true}));
    EXPECT_EQ(flags("is-persistent", "is-storable"), (Flags{true, false, true}));
    EXPECT_EQ(flags("is-single-element", "is-single-group"), (Flags{false, false, false}));
}

TEST_F(CAudioParamDefTest, rangesAndDefaultsAreReadByEachConverter) {
    const CAudioParamInfo* const info = define({{"element-size", "3"},
                                                {"converter", "shared::cvt.gain"},
                                                {"converter2", "shared::cvt.percent"},
                                                {"converter3", "shared::cvt.enum-enable"},
                                                {"converter4", "shared::cvt.none"},
                                                {"min-values", " 0  100 Off "},
                                                {"max-values", "24 0,0 On"},
                                                {"def-values", "0 50 on,99 100 0;0 25 1"}});
    ASSERT_TRUE(info) << m_failure;
    EXPECT_EQ(valuesOf({info->minValues.begin(), info->minValues.end()}), (Values{1, 1, 0}));
    EXPECT_NEAR(info->maximum(0), std::pow(10.0, 1.2), 1e-12);
    EXPECT_EQ(info->maximum(1), 0.0);
    EXPECT_EQ(info->maximum(2), 1.0);
    EXPECT_EQ(info->defaults.groupCount(), 2);
    EXPECT_EQ(info->defaults.elementCount(0), 2);
    EXPECT_EQ(valuesOf(info->defaults.values(1)), (Values{1, 0.25, 1}));
    EXPECT_EQ(valuesOf(info->defaults.defaults()), valuesOf(info->defaults.values(0)));
    EXPECT_NEAR(info->defaults.value(0, 1, 0), std::pow(10.0, 4.95), 1e-9) << "defaults are not limited";

    const CAudioParamInfo* const raw = define({{"converter", "shared::cvt.real"},
                                               {"data-type", "raw"},
                                               {"def-values", "0"},
                                               {"min-values", "5"},
                                               {"max-values", "5"}});
    ASSERT_TRUE(raw) << m_failure;
    EXPECT_EQ(raw->minimum(), 0.0);
    EXPECT_EQ(raw->maximum(), 8388608.0);
}

TEST_F(CAudioParamDefTest, stateNamesComeInPairs) {
    const CAudioParamInfo* info = withStates(" Soft ;Crossfade|XF;;Crossfades ; a|b|c;x|");
    ASSERT_TRUE(info) << m_failure;
    EXPECT_EQ(namesOf(info->longStateNames), (Names{"Soft", "Crossfade", "", "Crossfades", "a", "x"}));
    EXPECT_EQ(namesOf(info->shortStateNames), (Names{"Soft", "XF", "", "Crossfa", "b", ""}));
    info = withStates("");
    ASSERT_TRUE(info) << m_failure;
    EXPECT_TRUE(info->longStateNames.isEmpty());
}

TEST_F(CAudioParamDefTest, stateNamesComeFromTheFirstBankOfAStoredList) {
    const auto number = [](std::uint32_t value) {
        std::string bytes;
        for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(value >> shift);
        return bytes;
    };
    const auto string = [&](const std::string& text) { return number(static_cast<std::uint32_t>(text.size())) + text; };
    const std::string entry = string("grouping") + string("any bytes");
    const std::string list = number(2) + string("A bank") + number(3) + string("BTIO:Stereo swap") + number(2) + entry +
                             entry + string("BTIO: Surround; Sur 5.1 ") + number(0) + string("Mono") + number(1) +
                             entry + string("Another") + number(1) + string("X:Unread") + number(0);
    store(CAppData::local(), "lists", list);
    store(CAppData::global(), "empty", number(1) + string("") + number(0));
    for (const char* const key : {"@lists", "@/lists"}) {
        const CAudioParamInfo* const info = withStates(key);
        if (key[1] == '/') {
            EXPECT_EQ(m_failure, "No state names data available in '@/lists'.") << "another store";
            continue;
        }
        ASSERT_TRUE(info) << m_failure;
        EXPECT_EQ(namesOf(info->longStateNames), (Names{"Stereo swap", "Surround", "Mono"}));
        EXPECT_EQ(namesOf(info->shortStateNames), (Names{"Stereo", "Sur 5.1", "Mono"}));
    }
    withStates("@/empty");
    EXPECT_EQ(m_failure, "No state names data available in '@/empty'.");
    withStates("@");
    EXPECT_EQ(m_failure, "No state names data available in '@'.");

    const std::size_t firstBankEnd = list.find(string("Another"));
    for (std::size_t size = 0; size < firstBankEnd; size += 5) {
        store(CAppData::local(), "lists", list.substr(0, size));
        EXPECT_FALSE(withStates("@lists")) << size;
        EXPECT_EQ(m_failure, "No state names data available in '@lists'.") << size;
    }
    store(CAppData::local(), "lists", number(1) + string("") + number(0xFFFFFFFF) + entry);
    EXPECT_FALSE(withStates("@lists")) << "more presets than there are bytes";
}

}  // namespace
}  // namespace brt
