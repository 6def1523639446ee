// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/NumberText.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <system_error>

namespace brt {

namespace {

// Calls `parse(first, last)` with the text as bytes; false for text that no number can be.
template <class Parse>
bool withBytes(CStringView text, Parse parse) {
    if (!text.isWide()) return parse(text.narrow().data(), text.narrow().data() + text.length());
    for (const char16_t unit : text.wide()) {
        if (unit > 127) return false;
    }
    CString narrowed;
    CString(text).toNarrow(narrowed);
    return parse(narrowed.data8(), narrowed.data8() + narrowed.length());
}

// Drops the sign of a zero; returns the new length.
int withoutMinusZero(char* text, int length) {
    const bool isZero = std::all_of(text + 1, text + length, [](char c) { return c == '0' || c == '.'; });
    if (text[0] != '-' || !isZero) return length;
    std::copy(text + 1, text + length, text);
    return length - 1;
}

}  // namespace

bool parseInteger(CStringView text, std::int64_t& value) {
    return withBytes(text, [&](const char* first, const char* last) {
        std::int64_t result = 0;
        const auto [end, error] = std::from_chars(first, last, result);
        if (error != std::errc() || end != last) return false;
        value = result;
        return true;
    });
}

bool parseDouble(CStringView text, double& value) {
    return withBytes(text, [&](const char* first, const char* last) {
        // from_chars would take "inf" and "nan".
        const char* const digits = first != last && *first == '-' ? first + 1 : first;
        if (digits == last || !(*digits == '.' || (*digits >= '0' && *digits <= '9'))) return false;
        double result = 0;
        const auto [end, error] = std::from_chars(first, last, result, std::chars_format::general);
        if (error != std::errc() || end != last) return false;
        value = result;
        return true;
    });
}

CString integerText(std::int64_t value) {
    CString result;
    CString::fromInt(result, value);
    return result;
}

int writeFixed(char* buffer, double value, int decimals) noexcept {
    const auto result =
        std::to_chars(buffer, buffer + kMaxFixedLength, value, std::chars_format::fixed, std::clamp(decimals, 0, 40));
    return withoutMinusZero(buffer, static_cast<int>(result.ptr - buffer));
}

CString fixedText(double value, int decimals) {
    char buffer[kMaxFixedLength];
    const int length = writeFixed(buffer, value, decimals);
    return std::string_view(buffer, static_cast<std::size_t>(length));
}

CString shortestText(double value) {
    char buffer[kMaxFixedLength];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    const int length = withoutMinusZero(buffer, static_cast<int>(result.ptr - buffer));
    return std::string_view(buffer, static_cast<std::size_t>(length));
}

}  // namespace brt
