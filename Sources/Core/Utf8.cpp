// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/Utf8.h"

#include "Core/CString.h"

namespace brt {

int encodeUtf8(char16_t unit, char* bytes) noexcept {
    const auto follower = [](unsigned bits) { return static_cast<char>(0x80 | (bits & 0x3F)); };
    if (unit < 0x80) {
        bytes[0] = static_cast<char>(unit);
        return 1;
    }
    if (unit < 0x800) {
        bytes[0] = static_cast<char>(0xC0 | unit >> 6);
        bytes[1] = follower(unit);
        return 2;
    }
    if (unit >= 0xD800 && unit < 0xE000) return 0;
    bytes[0] = static_cast<char>(0xE0 | unit >> 12);
    bytes[1] = follower(static_cast<unsigned>(unit) >> 6);
    bytes[2] = follower(unit);
    return 3;
}

bool CUtf8Reader::next(char32_t& codePoint) noexcept {
    while (!m_bytes.empty()) {
        const auto lead = static_cast<unsigned char>(m_bytes.front());
        m_bytes.remove_prefix(1);
        std::size_t followers = 0;
        char32_t value = lead;
        if (lead >= 0xC0 && lead < 0xE0) {
            followers = 1;
            value = lead & 0x1F;
        } else if (lead >= 0xE0 && lead < 0xF0) {
            followers = 2;
            value = lead & 0x0F;
        } else if (lead >= 0xF0 && lead < 0xF8) {
            followers = 3;
            value = lead & 0x07;
        } else if (lead >= 0x80) {
            continue;
        }
        if (followers > m_bytes.size()) break;
        for (std::size_t i = 0; i < followers; ++i)
            value = value << 6 | (static_cast<unsigned char>(m_bytes[i]) & 0x3F);
        m_bytes.remove_prefix(followers);
        if (value == 0) break;
        codePoint = value;
        return true;
    }
    m_bytes = {};
    return false;
}

std::string CString::toUtf8() const {
    std::string bytes;
    bytes.reserve(static_cast<std::size_t>(m_length));
    for (const char16_t unit : *this) {
        if (unit == 0) break;
        char sequence[kMaxUtf8Bytes];
        bytes.append(sequence, static_cast<std::size_t>(encodeUtf8(unit, sequence)));
    }
    return bytes;
}

namespace {

// A code point above U+FFFF leaves its low 16 bits. Where they would be a NUL or half of a surrogate pair, which no
// text can hold, it leaves the replacement character.
char16_t unitOf(char32_t codePoint) noexcept {
    const auto unit = static_cast<char16_t>(codePoint);
    const bool isLost = codePoint > 0xFFFF && (unit == 0 || (unit >= 0xD800 && unit < 0xE000));
    return isLost ? u'\uFFFD' : unit;
}

}  // namespace

CString CString::fromUtf8(std::string_view bytes) {
    // Counted first, so that the text gets its form and its room at once.
    int count = 0;
    bool isWide = false;
    char32_t codePoint = 0;
    for (CUtf8Reader reader(bytes); reader.next(codePoint); ++count) isWide |= codePoint > 255;

    CString result;
    if (isWide) result.widen();
    result.setLength(count, false);
    CUtf8Reader reader(bytes);
    for (int i = 0; reader.next(codePoint); ++i) {
        if (isWide)
            result.data16()[i] = unitOf(codePoint);
        else
            result.data8()[i] = static_cast<char>(codePoint);
    }
    return result;
}

}  // namespace brt
