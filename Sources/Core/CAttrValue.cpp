// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CAttrValue.h"

#include "Core/NumberText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace brt {
namespace {

int saturated(double value) noexcept {
    return static_cast<int>(
        std::clamp(value, double{std::numeric_limits<int>::min()}, double{std::numeric_limits<int>::max()}));
}

bool parseInteger32(CStringView text, int& value) noexcept {
    std::int64_t parsed = 0;
    if (!parseInteger(text, parsed)) return false;
    value = static_cast<int>(
        std::clamp<std::int64_t>(parsed, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
    return true;
}

// An integer of 32 bits whose text is exactly this one: no zeros in front, no "-0".
bool isPlainInteger(CStringView text, int& value) noexcept {
    constexpr int kLongest = 11;
    if (text.isEmpty() || text.length() > kLongest) return false;
    const int start = text[0] == u'-' ? 1 : 0;
    if (start == text.length() || text[start] < u'0' || text[start] > u'9') return false;  // most texts end here
    if (text[start] == u'0' && text.length() > 1) return false;
    std::int64_t parsed = 0;
    if (!parseInteger(text, parsed)) return false;
    value = static_cast<int>(parsed);
    return value == parsed;
}

void printInteger(CString& text, int value) {
    char printed[12];
    const char* const end = std::to_chars(printed, printed + sizeof printed, value).ptr;
    text.assign(std::string_view(printed, static_cast<std::size_t>(end - printed)));
}

// Four decimals, the last one rounded half away from zero.
void printDouble(CString& text, double value) {
    constexpr double kLargestInUnits = 9e11;  // above it the product is no exact integer any more
    if (std::fabs(value) >= kLargestInUnits) {
        text = fixedText(value, 4);
        return;
    }
    const long long units = std::llround(value * 10000.0);
    const long long magnitude = units < 0 ? -units : units;
    char printed[24];
    char* end = printed;
    if (units < 0) *end++ = '-';
    end = std::to_chars(end, printed + sizeof printed, magnitude / 10000).ptr;
    *end++ = '.';
    for (long long digit = 1000; digit > 0; digit /= 10) *end++ = static_cast<char>('0' + magnitude / digit % 10);
    text.assign(std::string_view(printed, static_cast<std::size_t>(end - printed)));
}

}  // namespace

CAttrValue::CAttrValue(const CAttrValue& other)
    : m_string(other.m_string),
      m_integer(other.m_integer),
      m_bool(other.m_bool),
      m_type(other.m_type),
      m_flags(other.m_flags & kFormFlags) {
    if (m_type == EType::kPointer)
        m_pointer = other.m_pointer;
    else
        m_number = other.m_number;
}

CAttrValue& CAttrValue::operator=(const CAttrValue& other) {
    if (this == &other) return *this;
    m_string = other.m_string;
    m_integer = other.m_integer;
    m_bool = other.m_bool;
    m_type = other.m_type;
    m_flags = static_cast<std::uint8_t>((m_flags & ~kFormFlags) | (other.m_flags & kFormFlags));
    if (m_type == EType::kPointer)
        m_pointer = other.m_pointer;
    else
        m_number = other.m_number;
    return *this;
}

void CAttrValue::begin(EType type, EFlag nativeForm) noexcept {
    m_type = type;
    m_flags = static_cast<std::uint8_t>((m_flags & ~kFormFlags) | nativeForm);
    if (nativeForm != kStringValid && !m_string.isEmpty()) m_string.clear();
}

void CAttrValue::setText(CStringView text) {
    int integer = 0;
    if (isPlainInteger(text, integer)) {
        m_string.assign(text);
        begin(EType::kInteger, kStringValid);  // the text is at hand, so it is kept beside the number
        m_integer = integer;
        m_flags |= kIntegerValid;
    } else if (text.isEmpty()) {
        m_string.clear();
        begin(EType::kEmpty, kStringValid);
    } else if (text == "true") {
        setBool(true);
    } else if (text == "false") {
        setBool(false);
    } else {
        m_string.assign(text);
        begin(EType::kString, kStringValid);
    }
}

void CAttrValue::setRawText(CStringView text) {
    setText(text);
    m_flags |= kRaw;
}

void CAttrValue::setBool(bool value) noexcept {
    begin(EType::kBool, kBoolValid);
    m_bool = value;
}

void CAttrValue::setInteger(int value) noexcept {
    begin(EType::kInteger, kIntegerValid);
    m_integer = value;
}

void CAttrValue::setDouble(double value) noexcept {
    begin(EType::kDouble, kDoubleValid);
    m_number = value;
}

void CAttrValue::setPointer(void* value) noexcept {
    m_string.clear();
    m_type = EType::kPointer;
    m_flags = static_cast<std::uint8_t>(m_flags & ~kFormFlags);
    m_pointer = value;
}

bool CAttrValue::isBool() const noexcept {
    asBool();
    return has(kBoolValid);
}

bool CAttrValue::isDouble() const noexcept {
    asDouble();
    return has(kDoubleValid);
}

bool CAttrValue::isInteger() const noexcept {
    asInteger();
    return has(kIntegerValid);
}

void CAttrValue::convertAll() const {
    asBool();
    asDouble();
    asInteger();
    asString();
}

bool CAttrValue::convertToBool() const noexcept {
    bool value = false;
    switch (m_type) {
    case EType::kInteger: value = m_integer != 0; break;
    case EType::kString:
        value = m_string == CStringView("1") || m_string == CStringView("true");
        if (!value && m_string != CStringView("0") && m_string != CStringView("false")) return false;
        break;
    case EType::kEmpty: break;
    default: return false;
    }
    m_bool = value;
    m_flags |= kBoolValid;
    return value;
}

double CAttrValue::convertToDouble() const noexcept {
    double value = 0.0;
    switch (m_type) {
    case EType::kInteger: value = m_integer; break;
    case EType::kString:
        if (!parseDouble(m_string, value)) return 0.0;
        break;
    case EType::kEmpty: break;
    default: return 0.0;
    }
    m_number = value;
    m_flags |= kDoubleValid;
    return value;
}

int CAttrValue::convertToInteger() const noexcept {
    int value = 0;
    switch (m_type) {
    case EType::kBool: value = m_bool ? 1 : 0; break;
    case EType::kDouble:
        if (std::isnan(m_number)) return 0;
        value = saturated(std::round(m_number));
        break;
    case EType::kString:
        if (!parseInteger32(m_string, value)) return 0;
        break;
    case EType::kEmpty: break;
    default: return 0;
    }
    m_integer = value;
    m_flags |= kIntegerValid;
    return value;
}

CStringView CAttrValue::convertToString() const {
    switch (m_type) {
    case EType::kBool: m_string = m_bool ? "true" : "false"; break;
    case EType::kDouble:
        if (!std::isfinite(m_number)) return {};
        printDouble(m_string, m_number);
        break;
    case EType::kInteger: printInteger(m_string, m_integer); break;
    case EType::kEmpty: break;
    default: return {};
    }
    m_flags |= kStringValid;
    return m_string;
}

}  // namespace brt
