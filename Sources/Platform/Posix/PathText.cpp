// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/PathText.h"

#include <cstddef>
#include <cstdint>

namespace brt {

namespace {

constexpr char32_t kIllFormed = 0xFFFFFFFF;
constexpr char16_t kEscapeBase = 0xDC00;  // plus the byte

bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }
bool isEscapedByte(char32_t unit) { return unit >= kEscapeBase + 0x80 && unit <= kEscapeBase + 0xFF; }

// The sequence at the front, as the Unicode standard's table of well-formed UTF-8 has it: nothing longer than needed,
// no surrogates, nothing above U+10FFFF. `length` is set only if it is well-formed.
char32_t decodeUtf8(std::string_view bytes, std::size_t& length) {
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned lead = at(0);
    if (lead < 0x80) {
        length = 1;
        return lead;
    }
    const std::size_t needed = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || bytes.size() < needed) return kIllFormed;
    char32_t code = lead & (0xFFu >> (needed + 1));
    for (std::size_t i = 1; i < needed; ++i) {
        if ((at(i) & 0xC0) != 0x80) return kIllFormed;
        code = code << 6 | (at(i) & 0x3Fu);
    }
    constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    if (code < kLeast[needed] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return kIllFormed;
    length = needed;
    return code;
}

void appendUtf8(std::string& bytes, char32_t code) {
    const auto append = [&](char32_t byte) { bytes.push_back(static_cast<char>(byte)); };
    if (code < 0x80) {
        append(code);
        return;
    }
    const int continuations = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    constexpr char32_t kLead[] = {0x00, 0xC0, 0xE0, 0xF0};
    append(kLead[continuations] | code >> (6 * continuations));
    for (int i = continuations - 1; i >= 0; --i) append(0x80 | (code >> (6 * i) & 0x3F));
}

}  // namespace

std::u16string pathFromSystem(std::string_view bytes) {
    std::u16string path;
    path.reserve(bytes.size());
    while (!bytes.empty()) {
        std::size_t length = 1;
        const char32_t code = decodeUtf8(bytes, length);
        if (code == kIllFormed) {
            path.push_back(static_cast<char16_t>(kEscapeBase + static_cast<unsigned char>(bytes.front())));
        } else if (code >= 0x10000) {
            path.push_back(static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10)));
            path.push_back(static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF)));
        } else {
            path.push_back(static_cast<char16_t>(code));
        }
        bytes.remove_prefix(length);
    }
    return path;
}

std::string pathToSystem(std::u16string_view path) {
    std::string bytes;
    bytes.reserve(path.size());
    for (std::size_t i = 0; i < path.size(); ++i) {
        const char32_t unit = path[i];
        if (isHighSurrogate(unit) && i + 1 < path.size() && isLowSurrogate(path[i + 1])) {
            appendUtf8(bytes, 0x10000 + ((unit - 0xD800) << 10) + (path[i + 1] - 0xDC00u));
            ++i;
        } else if (isEscapedByte(unit)) {
            bytes.push_back(static_cast<char>(unit - kEscapeBase));
        } else {
            appendUtf8(bytes, unit);
        }
    }
    return bytes;
}

}  // namespace brt
