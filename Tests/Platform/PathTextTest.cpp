// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/PathText.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>

namespace brt {
namespace {

TEST(PathText, readsUtf8AndEscapesTheRest) {
    EXPECT_EQ(pathFromSystem("caf\xC3\xA9"), u"caf\u00E9");
    EXPECT_EQ(pathFromSystem("\xE2\x82\xAC"), u"\u20AC");
    EXPECT_EQ(pathFromSystem("\xF0\x9F\x8E\x9B"), u"\U0001F39B");
    EXPECT_EQ(pathFromSystem("a\\b"), u"a\\b");
    EXPECT_EQ(pathFromSystem(std::string_view("a\0b", 3)), std::u16string_view(u"a\0b", 3));

    const auto escaped = [](std::initializer_list<int> bytes) {
        std::u16string text;
        for (int byte : bytes) text.push_back(static_cast<char16_t>(0xDC00 + byte));
        return text;
    };
    EXPECT_EQ(pathFromSystem("\xFF"), escaped({0xFF}));
    EXPECT_EQ(pathFromSystem("\xC0\xAF"), escaped({0xC0, 0xAF}));                      // longer than needed
    EXPECT_EQ(pathFromSystem("\xE0\x80\xAF"), escaped({0xE0, 0x80, 0xAF}));            // likewise
    EXPECT_EQ(pathFromSystem("\xF0\x8F\xBF\xBF"), escaped({0xF0, 0x8F, 0xBF, 0xBF}));  // likewise
    EXPECT_EQ(pathFromSystem("\xED\xB2\x80"), escaped({0xED, 0xB2, 0x80}));            // a surrogate
    EXPECT_EQ(pathFromSystem("\xF4\x90\x80\x80"), escaped({0xF4, 0x90, 0x80, 0x80}));  // above U+10FFFF
    EXPECT_EQ(pathFromSystem("\xF0\x9F\x8E"), escaped({0xF0, 0x9F, 0x8E}));            // cut off
    EXPECT_EQ(pathFromSystem("\xE2(\xA9"), escaped({0xE2}) + u"(" + escaped({0xA9}));
}

TEST(PathText, everyNameComesBackByteForByte) {
    const auto expectRoundTrip = [](const std::string& bytes) {
        ASSERT_EQ(pathToSystem(pathFromSystem(bytes)), bytes);
    };
    for (int first = 0; first < 256; ++first)
        for (int second = 0; second < 256; ++second)
            expectRoundTrip({static_cast<char>(first), static_cast<char>(second)});
    // Leads, continuations and plain letters in any order: sequences begin, break off and run into each other.
    std::mt19937 random(7);
    const std::string alphabet = "a/\x80\x8F\x90\x9F\xA0\xBF\xC1\xC2\xDF\xE0\xE2\xED\xEF\xF0\xF4\xF5\xFF";
    for (int i = 0; i < 50000; ++i) {
        std::string bytes;
        for (auto length = random() % 9; length > 0; --length) bytes.push_back(alphabet[random() % alphabet.size()]);
        expectRoundTrip(bytes);
    }
}

TEST(PathText, everyCharacterComesBack) {
    for (std::uint32_t code = 1; code <= 0x10FFFF; ++code) {
        if (code >= 0xD800 && code <= 0xDFFF) continue;
        std::u16string text;
        if (code >= 0x10000) {
            text = {static_cast<char16_t>(0xD7C0 + (code >> 10)), static_cast<char16_t>(0xDC00 + (code & 0x3FF))};
        } else {
            text = {static_cast<char16_t>(code)};
        }
        ASSERT_EQ(pathFromSystem(pathToSystem(text)), text) << code;
    }
}

TEST(PathText, loneSurrogatesStayApart) {
    EXPECT_EQ(pathToSystem(std::u16string(1, 0xD800)), "\xED\xA0\x80");
    EXPECT_EQ(pathToSystem(std::u16string(1, 0xDC7F)), "\xED\xB1\xBF");
    EXPECT_EQ(pathToSystem(std::u16string{0xD83C, u'a'}),
              "\xED\xA0\xBC"
              "a");
}

}  // namespace
}  // namespace brt
