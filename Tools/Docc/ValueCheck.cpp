// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Docc/ValueCheck.h"

#include <cmath>
#include <limits>

#include "Core/NumberText.h"
#include "Tools/NearName.h"

namespace brt {
namespace {

std::string quoted(CStringView text) { return "'" + CString(text).toUtf8() + "'"; }

std::string numberText(double number) {
    constexpr double kLongest = 1e9;  // larger ones are easier to read with an exponent
    const bool isWhole = std::fabs(number) <= kLongest && number == std::trunc(number);
    return (isWhole ? fixedText(number, 0) : shortestText(number)).toUtf8();
}

std::string rangeText(const CAttrInfo& row) {
    const bool hasLowest = row.lowest > std::numeric_limits<double>::lowest();
    const bool hasHighest = row.highest < std::numeric_limits<double>::max();
    const std::string lowest = numberText(row.lowest);
    const std::string highest = numberText(row.highest);
    if (hasLowest && hasHighest) return " from " + lowest + " to " + highest;
    if (hasLowest) return " of at least " + lowest;
    return hasHighest ? " of at most " + highest : "";
}

std::string faultOfNumber(CStringView value, const CAttrInfo& row) {
    const bool isWhole = row.kind == EAttrKind::kInteger;
    std::int64_t whole = 0;
    double number = 0.0;
    bool isGood = isWhole ? parseInteger(value, whole) : parseDouble(value, number);
    if (isWhole) {
        number = static_cast<double>(whole);
        isGood = isGood && whole >= std::numeric_limits<std::int32_t>::min() &&
                 whole <= std::numeric_limits<std::int32_t>::max();
    }
    if (isGood && number >= row.lowest && number <= row.highest) return {};
    return quoted(value) + " is no " + (isWhole ? "whole number" : "number") + rangeText(row);
}

std::string faultOfWord(CStringView value, const CAttrInfo& row) {
    CNearName near(value);
    std::string list;
    for (const CStringView word : wordsOf(row.words)) {
        if (word == value) return {};
        near.consider(word);
        list += (list.empty() ? "" : ", ") + CString(word).toUtf8();
    }
    return quoted(value) + " is none of " + list + near.question();
}

}  // namespace

std::vector<CStringView> wordsOf(CStringView text) {
    std::vector<CStringView> words;
    for (int start = 0; start < text.length();) {
        int end = text.find(u' ', start);
        if (end < 0) end = text.length();
        if (end > start) words.push_back(text.slice(start, end - start));
        start = end + 1;
    }
    return words;
}

bool hasReference(CStringView text) {
    const int open = text.findLast(u'{');
    return open >= 0 && text.find(u'}', open) >= 0;
}

std::string faultOfValue(CStringView value, const CAttrInfo& row) {
    switch (row.kind) {
    case EAttrKind::kFlag:
        for (const char* const known : {"true", "false", "1", "0"})
            if (value == known) return {};
        return quoted(value) + " is neither true nor false";
    case EAttrKind::kInteger:
    case EAttrKind::kNumber: return faultOfNumber(value, row);
    case EAttrKind::kWord: return faultOfWord(value, row);
    default: return {};
    }
}

}  // namespace brt
