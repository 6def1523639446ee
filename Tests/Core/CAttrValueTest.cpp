// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CAttrValue.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "PrintText.h"

namespace brt {
namespace {

using EType = CAttrValue::EType;

CAttrValue ofText(CStringView text) {
    CAttrValue value;
    value.setText(text);
    return value;
}

CAttrValue ofDouble(double number) {
    CAttrValue value;
    value.setDouble(number);
    return value;
}

TEST(CAttrValue, textDecidesItsNativeForm) {
    for (const char* integer : {"5", "0", "-7", "2147483647", "-2147483648"}) {
        EXPECT_EQ(ofText(integer).type(), EType::kInteger) << integer;
        EXPECT_EQ(ofText(integer).asString(), integer);
    }
    for (const char* string : {"05", "007", "+5", "5.0", "0.5", "-", "-0", "- 5", "5 ", "2147483648", "yes", "True"}) {
        EXPECT_EQ(ofText(string).type(), EType::kString) << string;
        EXPECT_EQ(ofText(string).asString(), string);
    }
    EXPECT_EQ(ofText("").type(), EType::kEmpty);
    EXPECT_EQ(ofText("true").type(), EType::kBool);
    EXPECT_EQ(ofText("false").type(), EType::kBool);
    EXPECT_EQ(ofText("false").asString(), "false");
    EXPECT_EQ(ofText(u"5").asInteger(), 5);
    EXPECT_EQ(ofText(u"\u0416").asString(), u"\u0416");
}

TEST(CAttrValue, textConvertsOnDemand) {
    EXPECT_EQ(ofText("0.5").asDouble(), 0.5);
    EXPECT_EQ(ofText("007").asInteger(), 7);
    EXPECT_EQ(ofText("-1e-3").asDouble(), -0.001);
    EXPECT_EQ(ofText("7").asDouble(), 7.0);
    EXPECT_EQ(ofText("9999999999").asInteger(), std::numeric_limits<int>::max());
    EXPECT_EQ(ofText("-9999999999").asInteger(), std::numeric_limits<int>::min());
    for (const char* text : {"inf", "nan", "0x10", "1,5", "5 ", "", "."}) {
        EXPECT_EQ(ofText(text).asDouble(), 0.0) << text;
        EXPECT_EQ(ofText(text).isDouble(), *text == 0) << text;
    }
    for (const char* text : {"1", "true", "2", "-1"}) EXPECT_TRUE(ofText(text).asBool()) << text;
    for (const char* text : {"0", "false", "", "yes", "on", "00"}) EXPECT_FALSE(ofText(text).asBool()) << text;
    EXPECT_FALSE(ofText("yes").isBool());
    EXPECT_TRUE(ofText("false").isBool());
}

TEST(CAttrValue, numbersPrintWithFourDecimals) {
    EXPECT_EQ(ofDouble(0.5).asString(), "0.5000");
    EXPECT_EQ(ofDouble(-0.25).asString(), "-0.2500");
    EXPECT_EQ(ofDouble(0.00005).asString(), "0.0001");
    EXPECT_EQ(ofDouble(-0.00005).asString(), "-0.0001");
    EXPECT_EQ(ofDouble(-0.00004).asString(), "0.0000");
    EXPECT_EQ(ofDouble(-0.0).asString(), "0.0000");
    EXPECT_EQ(ofDouble(99999999999999.5).asString(), "99999999999999.5000");
    EXPECT_EQ(ofDouble(1e14).asString(), "100000000000000.0000");
    EXPECT_EQ(ofDouble(-1e22).asString(), "-10000000000000000000000.0000");
    EXPECT_EQ(ofDouble(std::numeric_limits<double>::max()).asString().length(), 309 + 5);
    EXPECT_EQ(ofDouble(INFINITY).asString(), "");
    EXPECT_EQ(ofDouble(NAN).asString(), "");
}

TEST(CAttrValue, numbersRoundToIntegersAndSaturate) {
    EXPECT_EQ(ofDouble(2.5).asInteger(), 3);
    EXPECT_EQ(ofDouble(-2.5).asInteger(), -3);
    EXPECT_EQ(ofDouble(1e300).asInteger(), std::numeric_limits<int>::max());
    EXPECT_EQ(ofDouble(-INFINITY).asInteger(), std::numeric_limits<int>::min());
    EXPECT_EQ(ofDouble(NAN).asInteger(), 0);
    EXPECT_FALSE(ofDouble(NAN).isInteger());
    EXPECT_FALSE(ofDouble(1.0).asBool());  // a number is no answer to a question
    EXPECT_FALSE(ofDouble(1.0).isBool());
}

TEST(CAttrValue, boolsAndPointers) {
    CAttrValue value;
    value.setBool(true);
    EXPECT_EQ(value.asInteger(), 1);
    EXPECT_EQ(value.asString(), "true");
    EXPECT_FALSE(value.isDouble());
    EXPECT_EQ(value.asPointer(), nullptr);

    value.setPointer(&value);
    EXPECT_EQ(value.asPointer(), &value);
    EXPECT_EQ(value.asString(), "");
    EXPECT_EQ(value.asDouble(), 0.0);
    EXPECT_FALSE(value.asBool());
    const CAttrValue copy = value;
    EXPECT_EQ(copy.asPointer(), &value);
}

TEST(CAttrValue, assignmentForgetsTheFormsOfTheOldValue) {
    CAttrValue value = ofText("0.25");
    EXPECT_EQ(value.asDouble(), 0.25);
    value.setDouble(2.0);
    EXPECT_EQ(value.asString(), "2.0000");
    EXPECT_EQ(value.asInteger(), 2);
    value.setBool(false);
    EXPECT_EQ(value.asString(), "false");
    EXPECT_EQ(value.asInteger(), 0);
    value.setRawText("{x}");
    EXPECT_TRUE(value.isRaw());
    const CAttrValue copy = value;
    EXPECT_TRUE(copy.isRaw());
    value.setText(value.asString());  // of itself
    EXPECT_FALSE(value.isRaw());
    EXPECT_EQ(value.asString(), "{x}");
}

}  // namespace
}  // namespace brt
