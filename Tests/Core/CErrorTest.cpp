// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CError.h"

#include <gtest/gtest.h>

#include "Core/Log.h"
#include "Core/PrintText.h"
#include "Platform/CMessageLoop.h"

namespace brt {
namespace {

CString textOf(CError* error, bool firstLineOnly = true) {
    CString text;
    errorToText(error, text, firstLineOnly);
    return text;
}

template <class... Arguments>
CString messageOf(CStringView message, const Arguments&... arguments) {
    return textOf(makeError(nullptr, "f.cpp", 1, "", message, arguments...));
}

TEST(CError, substitutesArgumentsOnce) {
    EXPECT_EQ(messageOf("@brtstr_X_y_Z 100%% of %1", "all"), "100% of all\r\n");
    EXPECT_EQ(messageOf("a %2 b"), "a  b\r\n");
    EXPECT_EQ(messageOf("%2%1", "%2", u"\u0416%1"), u"\u0416%1%2\r\n");
    EXPECT_EQ(messageOf("a%xb%0c%"), "abc\r\n");
    EXPECT_EQ(messageOf("%1 %2 %3", -5, std::uint64_t{7}, CString("x")), "-5 7 x\r\n");
    EXPECT_EQ(messageOf("%1%2%3%4%5", "a", "b", "c", "d", "e"), "abcde\r\n");
}

TEST(CError, dropsTheIdentifierOfALiteral) {
    EXPECT_EQ(messageOf("@brtstr_X_y text with blanks"), "text with blanks\r\n");
    EXPECT_EQ(messageOf("@brtstr_X_y "), "\r\n");
    EXPECT_EQ(messageOf("@noblank"), "@noblank\r\n");
    EXPECT_EQ(messageOf("no identifier"), "no identifier\r\n");
}

CError* failBelow() { return makeError(nullptr, "low.cpp", 12, "", "@brtstr_A_b_C Broken %1.", 3); }
CError* failBetween() {
    BRT_TRY("plugin.modMain", failBelow());
    return nullptr;
}
CError* succeed() {
    BRT_TRY("", static_cast<CError*>(nullptr));
    return nullptr;
}

TEST(CError, gathersAPositionAtEachLevel) {
    CError* error = makeError(failBetween(), "high.cpp", 34, u"\u0416", "");
    ASSERT_EQ(error->lines().count(), 4);
    EXPECT_EQ(error->message(), "Broken 3.");
    EXPECT_EQ(error->lines()[1], "low.cpp( 12 )");
    EXPECT_TRUE(error->lines()[2].startsWith("Tests/Core/CErrorTest.cpp( ")) << error->lines()[2].toUtf8();
    EXPECT_TRUE(error->lines()[2].endsWith(" ) // plugin.modMain"));
    EXPECT_EQ(error->lines()[3], u"high.cpp( 34 ) // \u0416");
    EXPECT_EQ(textOf(error).find(u'('), -1);
    EXPECT_EQ(succeed(), nullptr);
}

TEST(CError, alwaysBeginsWithAMessage) {
    CError* error = makeError(nullptr, "f.cpp", 1, "", "");
    EXPECT_EQ(textOf(error, false), "\r\nf.cpp( 1 )\r\n");
    error = makeError(makeError(nullptr, "f.cpp", 1, "", "first"), "f.cpp", 2, "", "second");
    EXPECT_EQ(textOf(error, false), "first\r\nf.cpp( 1 )\r\nsecond\r\nf.cpp( 2 )\r\n");
}

TEST(CError, noErrorGivesNoText) {
    CString text("old");
    EXPECT_FALSE(errorToText(nullptr, text, false));
    EXPECT_EQ(text, "");
    EXPECT_FALSE(discardError(nullptr));
    EXPECT_TRUE(discardError(failBelow()));
    logError(nullptr);
}

CString s_shownDetails;  // NOLINT

bool showNothing(const ErrorReport& report) {
    s_shownDetails = report.details;
    return true;
}

TEST(CError, isShownOnceAndGone) {
    testing::internal::CaptureStderr();
    CError* error = failBelow();
    showError(error);
    EXPECT_EQ(error, nullptr);
    showError(error);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Broken 3.\r\nlow.cpp( 12 )\r\n\n<no details>\n");

    // A thread without a message loop can't wait for the user.
    setErrorWindow(showNothing);
    testing::internal::CaptureStderr();
    error = failBelow();
    showError(error);
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(s_shownDetails, "");

    std::shared_ptr<CMessageLoop> loop;
    ASSERT_EQ(CMessageLoop::obtain(loop), 0);
    testing::internal::CaptureStderr();
    error = failBelow();
    showError(error);
    setErrorWindow(nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(s_shownDetails, "Broken 3.\r\nlow.cpp( 12 )\r\n");
    s_shownDetails = CString();
}

}  // namespace
}  // namespace brt
