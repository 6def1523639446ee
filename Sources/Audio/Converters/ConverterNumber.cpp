// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/Converters/ConverterNumber.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "Core/NumberText.h"

namespace brt {
namespace {

constexpr int kMostDecimals = 10;
constexpr double kPowersOfTen[kMostDecimals + 1] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10};

bool isDigit(char16_t unit) noexcept { return unit >= '0' && unit <= '9'; }

// 10 to a power of -400 to 400, by repeated squaring.
double powerOfTen(int exponent) noexcept {
    double result = 1.0;
    double base = 10.0;
    for (int rest = std::abs(exponent); rest > 0; rest >>= 1, base *= base)
        if (rest & 1) result *= base;
    return exponent < 0 ? 1.0 / result : result;
}

class CReader {
public:
    explicit CReader(CStringView text) noexcept : m_text(text) {}

    bool take(char16_t a, char16_t b) noexcept {
        const bool isThere = m_place < m_text.length() && (m_text[m_place] == a || m_text[m_place] == b);
        m_place += isThere ? 1 : 0;
        return isThere;
    }
    bool takeSign() noexcept { return take('-', '-') || (take('+', '+'), false); }  // true for "-"
    // Appends digits to the number, no more than `limit`, and passes over the others; returns how many it appended.
    int takeDigits(double& number, int limit) noexcept {
        int count = 0;
        for (; m_place < m_text.length() && isDigit(m_text[m_place]); ++m_place) {
            if (count == limit) continue;
            number = number * 10.0 + (m_text[m_place] - '0');
            ++count;
        }
        return count;
    }

private:
    CStringView m_text;
    int m_place = 0;
};

}  // namespace

double roundHalfAway(double value) noexcept {
    return value >= 0.0 ? std::floor(value + 0.5) : -std::floor(0.5 - value);
}

double parseNumber(CStringView text, bool& ok) noexcept {
    constexpr int kNoLimit = std::numeric_limits<int>::max();
    constexpr int kMostFractionDigits =
        300;  // far behind what a double tells apart, and still finite as a whole number
    constexpr int kMostExponent = 400;

    CReader reader(text);
    const bool isNegative = reader.takeSign();
    double number = 0.0;
    double fraction = 0.0;
    const int wholeDigits = reader.takeDigits(number, kNoLimit);
    const int fractionDigits = reader.take('.', ',') ? reader.takeDigits(fraction, kMostFractionDigits) : 0;
    ok = wholeDigits > 0 || fractionDigits > 0;
    if (!ok) return 0.0;
    number += fraction * powerOfTen(-fractionDigits);

    if (reader.take('e', 'E')) {
        const bool isSmall = reader.takeSign();
        double exponent = 0.0;
        reader.takeDigits(exponent, kNoLimit);
        const int power = static_cast<int>(std::min(exponent, double{kMostExponent}));
        const bool isScalable = number != 0.0 && std::isfinite(number);  // or 0 and infinity would make a NaN
        if (isScalable) number *= powerOfTen(isSmall ? -power : power);
    }
    return isNegative ? -number : number;
}

CString numberText(double value, int decimals) {
    constexpr double kLargest = 9e15;
    if (!std::isfinite(value)) return "0";
    const double finite = std::clamp(value, -kLargest, kLargest);
    const int places = std::clamp(decimals, 0, kMostDecimals);
    const double scaled = roundHalfAway(finite * kPowersOfTen[places]);
    if (std::abs(scaled) > kLargest) return fixedText(finite, places);  // nothing is left to round
    const auto digits = static_cast<std::int64_t>(std::abs(scaled));

    CString text;
    CString::fromInt(text, digits, places + 1);
    CString result = scaled < 0.0 ? "-" : "";
    result += text.slice(0, text.length() - places);
    if (places > 0) {
        result += ".";
        result += text.slice(text.length() - places);
    }
    return result;
}

bool formatNoNumber(CString& text, double value) {
    if (std::isfinite(value)) return false;
    text = "0";
    return true;
}

}  // namespace brt
