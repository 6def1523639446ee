// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CString.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>

#include "Core/COrderedMap.h"
#include "Core/CStringList.h"
#include "Core/PrintText.h"

namespace brt {
namespace {

CString repeated(char16_t unit, int count) {
    CString text;
    for (int i = 0; i < count; ++i) text.append(unit);
    return text;
}

bool liesInside(const CString& text) {
    const void* const data = text.isWide() ? static_cast<const void*>(text.data16()) : text.data8();
    const auto offset = static_cast<const std::byte*>(data) - reinterpret_cast<const std::byte*>(&text);
    return offset >= 0 && offset < static_cast<std::ptrdiff_t>(sizeof text);
}

TEST(CString, takes48BytesAndLeavesTheInlineBufferAt31) {
    EXPECT_EQ(sizeof(CString), 48u);

    CString narrow;
    narrow.setLength(30, true);
    EXPECT_TRUE(liesInside(narrow));
    narrow.setLength(31, true);
    EXPECT_FALSE(liesInside(narrow));
    EXPECT_EQ(narrow.capacity(), 32);
    narrow.setLength(32, true);  // grows by 12 beyond the need, once it is outside
    EXPECT_EQ(narrow.capacity(), 33 + 12);
    narrow.setLength(1, true);
    EXPECT_FALSE(liesInside(narrow));

    CString wide(u"");
    wide.setLength(14, true);
    EXPECT_TRUE(liesInside(wide));
    wide.setLength(15, true);
    EXPECT_EQ(wide.capacity(), 32);
    wide.setLength(16, true);
    EXPECT_EQ(wide.capacity(), 34 + 24);
}

TEST(CString, isBornWithSlackWhereItDoesNotFitInside) {
    EXPECT_EQ(CString(std::string(31, 'a')).capacity(), 31 + 13);
    EXPECT_EQ(CString(CString(std::string(31, 'a'))).capacity(), 31 + 13);
    EXPECT_EQ(CString(std::string(30, 'a')).capacity(), 0);
    EXPECT_EQ(CString(std::u16string(15, u'a')).capacity(), 32 + 24);
    EXPECT_EQ(CString(std::u16string(14, u'a')).capacity(), 0);
}

TEST(CString, widensOnlyWhenSomethingForcesIt) {
    CString text("caf");
    text.append(u'\u00E9');
    EXPECT_FALSE(text.isWide());
    EXPECT_EQ(text, "caf\xE9");
    text.append(u'\u0416');
    EXPECT_TRUE(text.isWide());
    EXPECT_EQ(text, u"caf\u00E9\u0416");
    text.append("\xFF!");  // an 8-bit tail is widened by zeros, not by its sign
    EXPECT_EQ(text, u"caf\u00E9\u0416\u00FF!");
    text = "narrow again";
    EXPECT_FALSE(text.isWide());
    EXPECT_EQ(text, "narrow again");

    text.append(CStringView(std::string_view())).append(CStringView(std::u16string_view()));  // of no memory at all
    EXPECT_TRUE(text.isWide());
    EXPECT_EQ(text.length(), 12);

    CString grown = repeated(u'x', 25);  // inside as bytes, outside as 16-bit units
    grown.append(u"\u20AC");
    EXPECT_EQ(grown, std::u16string(25, u'x') + u"\u20AC");
}

TEST(CString, comparesByUnitAcrossForms) {
    EXPECT_EQ(CString("abc"), u"abc");
    EXPECT_EQ(CString(u"abc").compare("abc"), 0);
    EXPECT_LT(CString("abc").compare("abcd"), 0);
    EXPECT_GT(CString("b").compare("abcd"), 0);
    EXPECT_LT(CString("Z").compare("a"), 0);
    EXPECT_LT(CString("a").compare("\xE9"), 0);  // bytes are unsigned
    EXPECT_LT(CString("\xFF").compare(u"\u0100"), 0);
    EXPECT_GT(CString(u"\uFFFF").compare(u"\xD800"), 0);
    EXPECT_LT(CString(), "a");

    using namespace std::string_view_literals;
    EXPECT_NE(CString("a\0b"sv), CString("a\0c"sv));
    EXPECT_NE(CString("a\0b"sv), CString("a"));
    EXPECT_GT(CString("a\0"sv), "a");
    EXPECT_EQ(CString("a\0b"sv), u"a\0b"sv);
}

TEST(CString, operandsMayBeTheStringItself) {
    CString text("0123456789ABCDEF");
    text.append(text);
    EXPECT_EQ(text, "0123456789ABCDEF0123456789ABCDEF");
    text += text.slice(30, 2);
    EXPECT_EQ(text.slice(28), "CDEFEF");
    text.substring(text, 4, 3);
    EXPECT_EQ(text, "456");
    text = static_cast<const CString&>(text);
    EXPECT_EQ(text, "456");
    text.assign(text.slice(1));
    EXPECT_EQ(text, "56");
    CString wide(u"\u0416abc");
    wide.append(wide).append(wide.slice(0, 1));
    EXPECT_EQ(wide, u"\u0416abc\u0416abc\u0416");
    wide.toUpper(wide);
    EXPECT_EQ(wide, u"\u0416ABC\u0416ABC\u0416");
    wide.toNarrow(wide);
    EXPECT_EQ(wide,
              "\x16"
              "ABC\x16"
              "ABC\x16");
    wide.toWide(wide);
    EXPECT_TRUE(wide.isWide());
}

TEST(CString, movesLeaveAFreshString) {
    for (const int length : {5, 50}) {
        CString from = repeated(u'\u0416', length);
        CString to(std::move(from));
        EXPECT_EQ(to, repeated(u'\u0416', length));
        EXPECT_EQ(from, "");  // NOLINT(bugprone-use-after-move)
        EXPECT_FALSE(from.isWide());
        from.append("again");
        to = std::move(from);
        EXPECT_EQ(to, "again");
    }
}

TEST(CString, substringTakesWhatIsThere) {
    const CString text("abc");
    CString part;
    text.substring(part, 1, -1);
    EXPECT_EQ(part, "bc");
    text.substring(part, 3, -1);
    EXPECT_EQ(part, "");
    text.substring(part, 1, 100);
    EXPECT_EQ(part, "bc");
    text.substring(part, 0, 0);
    EXPECT_EQ(part, "");
    text.substring(part, 0, -2);
    EXPECT_EQ(part, "");
    text.substring(part, 7, 2);
    EXPECT_EQ(part, "");
}

TEST(CString, splitsAtSeparators) {
    const auto pieces = [](CStringView text, char16_t separator, bool skipEmpty) {
        CStringList list;
        CString(text).split(list, separator, skipEmpty, true);
        CString shown;
        for (const CString* piece : list) shown.append("[").append(*piece).append("]");
        return shown;
    };
    EXPECT_EQ(pieces("a,,b", u',', false), "[a][][b]");
    EXPECT_EQ(pieces("a,,b", u',', true), "[a][b]");
    EXPECT_EQ(pieces("a,b", u',', false), "[a][b]");
    EXPECT_EQ(pieces("a,", u',', false), "[a][]");
    EXPECT_EQ(pieces(",", u',', false), "[][]");
    EXPECT_EQ(pieces(",", u',', true), "");
    EXPECT_EQ(pieces("", u',', false), "");
    EXPECT_EQ(pieces("abc", u'\u0416', false), "[abc]");
    EXPECT_EQ(pieces(u"a\u0416b", u'\u0416', false), "[a][b]");

    CStringList list;
    CString("a").split(list, u',', false, true);
    CString("b,c").split(list, u',', false, false);
    EXPECT_EQ(list.joined("+"), "a+b+c");
    list[1].split(list, u',', false, true);  // the text is an element of the list that it clears
    EXPECT_EQ(list.joined("+"), "b");
}

TEST(CString, upperCaseIsAsciiOnly) {
    CString upper;
    CString("az{`\xE9\xB5").toUpper(upper);
    EXPECT_EQ(upper, "AZ{`\xE9\xB5");
    CString(u"a\u0436\u0131").toUpper(upper);
    EXPECT_EQ(upper, u"A\u0436\u0131");
}

TEST(CString, writesIntegersInEveryBase) {
    const auto text = [](std::int64_t value, int minDigits, int base) {
        CString result;
        CString::fromInt(result, value, minDigits, base);
        return result;
    };
    EXPECT_EQ(text(0, 0, 10), "0");
    EXPECT_EQ(text(-5, 0, 10), "-5");
    EXPECT_EQ(text(5, 3, 10), "005");
    EXPECT_EQ(text(-5, 4, 10), "-005");
    EXPECT_EQ(text(35, 0, 36), "Z");
    EXPECT_EQ(text(INT64_MIN, 0, 10), "-9223372036854775808");
    EXPECT_EQ(text(INT64_MIN, 0, 2), CString("-1").append(std::string(63, '0')));
    EXPECT_EQ(text(7, 1000, 10).length(), 129);
    EXPECT_EQ(text(-7, 1000, 2).length(), 129);
    for (const int base : {-1, 0, 1, 37}) EXPECT_EQ(text(10, 0, base), "") << base;
}

TEST(CString, utf8OfStoredDataFollowsItsOwnRules) {
    using namespace std::string_view_literals;
    EXPECT_EQ(CString("a\xE9").toUtf8(), "a\xC3\xA9");
    EXPECT_EQ(CString(u"\u07FF\u0800\uFFFF").toUtf8(), "\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF");
    EXPECT_EQ(CString(u"a\xD83D\xDE00z").toUtf8(), "az");  // surrogates give nothing
    EXPECT_EQ(CString("ab\0cd"sv).toUtf8(), "ab");

    EXPECT_EQ(CString::fromUtf8("a\xC3\xA9"), "a\xE9");
    EXPECT_FALSE(CString::fromUtf8("a\xC3\xA9").isWide());
    EXPECT_EQ(CString::fromUtf8("\xC3\xA9\xD0\x96x"), u"\u00E9\u0416x");
    EXPECT_EQ(CString::fromUtf8("\xF0\x9F\x98\x80!"), u"\xF600!");  // U+1F600: the low 16 bits
    EXPECT_EQ(CString::fromUtf8("\xF0\x90\x81\x81"), u"A");         // U+10041
    EXPECT_TRUE(CString::fromUtf8("\xF0\x90\x81\x81").isWide());
    for (const char* lost : {"\xF0\x90\x80\x80", "\xF0\x9D\xA0\x80", "\xF0\x9D\xBF\xBF"})  // U+10000, U+1D800, U+1DFFF
        EXPECT_EQ(CString::fromUtf8(lost), u"\uFFFD");
    EXPECT_EQ(CString::fromUtf8("a\x80\xFF"
                                "b"),
              "ab");                                 // can't lead
    EXPECT_EQ(CString::fromUtf8("a\xE2\x82"), "a");  // cut short
    EXPECT_EQ(CString::fromUtf8("a\xC0\x80"
                                "b"),
              "a");  // a NUL, however written
    EXPECT_EQ(CString::fromUtf8("\xC3"
                                "A"),
              "\xC1");  // followers are not tested

    std::u16string all;
    for (char32_t unit = 1; unit < 0x10000; ++unit) {
        if (unit < 0xD800 || unit > 0xDFFF) all.push_back(static_cast<char16_t>(unit));
    }
    EXPECT_EQ(CString::fromUtf8(CString(all).toUtf8()), all);
}

TEST(CString, pathsKeepEveryUnit) {
    const std::u16string path = u"/home/\u00E9/\xD83D\xDE00/\xDCFF";
    EXPECT_EQ(CString::fromPath(path).toPath(), path);
    EXPECT_FALSE(CString::fromPath(u"/home/\u00E9").isWide());
}

TEST(CString, behavesAsAModelOfUnits) {
    std::mt19937 random(7);
    CString text;
    std::u16string model;
    for (int step = 0; step < 5000; ++step) {
        std::u16string piece(random() % 9, u' ');
        const bool isWide = random() % 16 == 0;
        for (char16_t& unit : piece) unit = static_cast<char16_t>(random() % (isWide ? 0x10000 : 0x100));
        CString operand(piece);
        if (!isWide) operand.toNarrow(operand);
        switch (random() % 8) {
        case 0: {
            const int length = static_cast<int>(random() % (model.size() + 1));
            text.setLength(length, true);
            model.resize(static_cast<std::size_t>(length));
            break;
        }
        case 1:
            text = operand;
            model = piece;
            break;
        case 2: text.widen(); break;
        default: text += operand; model += piece;
        }
        ASSERT_EQ(text.toPath(), model) << step;
        ASSERT_EQ(text.isWide() ? text.data16()[text.length()] : text.data8()[text.length()], 0);
    }
}

TEST(CString, keysOfMapsAreFoundByLiterals) {
    COrderedMap<CString, int> map;
    map.findOrInsert("b") = 2;
    map.findOrInsert(u"a") = 1;
    map.findOrInsert(u"\u0416") = 3;
    ASSERT_NE(map.find(u"b"), nullptr);
    EXPECT_EQ(*map.find("a"), 1);
    EXPECT_EQ(map.find("c"), nullptr);
    CString order;
    for (const auto& [name, value] : map) order.append(name);
    EXPECT_EQ(order, u"ab\u0416");
}

}  // namespace
}  // namespace brt
