// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/Converters/ConverterNumber.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

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

    int place() const noexcept { return m_place; }
    void goBackTo(int place) noexcept { m_place = place; }
    bool take(char16_t a, char16_t b) noexcept {
        const bool isThere = m_place < m_text.length() && (m_text[m_place] == a || m_text[m_place] == b);
        m_place += isThere ? 1 : 0;
        return isThere;
    }
    // Appends digits to the number; returns how many.
    int takeDigits(double& number) noexcept {
        const int start = m_place;
        for (; m_place < m_text.length() && isDigit(m_text[m_place]); ++m_place)
            number = number * 10.0 + (m_text[m_place] - '0');
        return m_place - start;
    }

private:
    CStringView m_text;
    int m_place = 0;
};

}  // namespace

double roundHalfAway(double value) noexcept {
    return value >= 0.0 ? std::floor(value + 0.5) : -std::floor(0.5 - value);
}

double parseNumber(CStringView text, bool& ok, int* end) noexcept {
    CReader reader(text);
    const bool isNegative = reader.take('-', '-');
    if (!isNegative) reader.take('+', '+');
    double number = 0.0;
    double fraction = 0.0;
    const int wholeDigits = reader.takeDigits(number);
    int fractionDigits = 0;
    if (reader.take('.', ',')) fractionDigits = reader.takeDigits(fraction);
    if (wholeDigits == 0 && fractionDigits == 0) {
        ok = false;
        if (end != nullptr) *end = 0;
        return 0.0;
    }
    constexpr int kMostExponent = 400;
    number += fraction * powerOfTen(-std::min(fractionDigits, kMostExponent));

    const int exponentPlace = reader.place();
    if (reader.take('e', 'E')) {
        const bool isSmall = reader.take('-', '-');
        if (!isSmall) reader.take('+', '+');
        double exponent = 0.0;
        if (reader.takeDigits(exponent) == 0) {
            reader.goBackTo(exponentPlace);
        } else {
            const int power = static_cast<int>(std::min(exponent, static_cast<double>(kMostExponent)));
            number = number == 0.0 ? 0.0 : number * powerOfTen(isSmall ? -power : power);
        }
    }
    ok = true;
    if (end != nullptr) *end = reader.place();
    return isNegative ? -number : number;
}

CString numberText(double value, int decimals) {
    constexpr double kLargest = 9e15;
    const double finite = std::isfinite(value) ? std::clamp(value, -kLargest, kLargest) : 0.0;
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

}  // namespace brt
