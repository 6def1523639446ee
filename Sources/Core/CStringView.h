// SPDX-License-Identifier: LicenseRef-Halyard
// A text that belongs to somebody else, in 8-bit or 16-bit form: what operations take that only read a text. Literals,
// CString, std::string_view and std::u16string_view convert to it.
//
// 8-bit text is Latin-1: one byte is one code point from 0 to 255, also in literals; for UTF-8 see CString::fromUtf8.
// 16-bit text has one code point up to U+FFFF a unit. Text of equal units is equal, whatever its form. Lengths count
// units; a NUL is a unit like any other.
// Valid as long as what it was made from stands unchanged. Threads: any.
#pragma once

#include <compare>
#include <string>
#include <string_view>

#include "Platform/Annotations.h"

namespace brt {

class CStringView {
public:
    constexpr CStringView() noexcept = default;
    constexpr CStringView(std::string_view text) noexcept
        : m_data8(text.data()), m_length(static_cast<int>(text.size())) {}
    constexpr CStringView(std::u16string_view text) noexcept
        : m_data16(text.data()), m_length(static_cast<int>(text.size())), m_isWide(true) {}
    CStringView(const std::string& text) noexcept : CStringView(std::string_view(text)) {}
    CStringView(const std::u16string& text) noexcept : CStringView(std::u16string_view(text)) {}
    // Up to the NUL; null is the empty text.
    constexpr CStringView(const char* text) noexcept
        : CStringView(text != nullptr ? std::string_view(text) : std::string_view()) {}
    constexpr CStringView(const char16_t* text) noexcept
        : CStringView(text != nullptr ? std::u16string_view(text) : std::u16string_view()) {}

    constexpr bool isWide() const noexcept { return m_isWide; }
    constexpr int length() const noexcept { return m_length; }
    constexpr bool isEmpty() const noexcept { return m_length == 0; }

    // REQUIRES: 0 <= index < length.
    constexpr char16_t operator[](int index) const noexcept {
        BRT_ASSERT(index >= 0 && index < m_length);
        return m_isWide ? m_data16[index] : static_cast<unsigned char>(m_data8[index]);
    }

    // The units as they stand. REQUIRES: that form.
    constexpr std::string_view narrow() const noexcept {
        BRT_ASSERT(!m_isWide);
        return {m_data8, static_cast<std::size_t>(m_length)};
    }
    constexpr std::u16string_view wide() const noexcept {
        BRT_ASSERT(m_isWide);
        return {m_data16, static_cast<std::size_t>(m_length)};
    }

    // Negative, 0 or positive: unit by unit as unsigned numbers; a proper prefix sorts first.
    int compare(CStringView other) const noexcept;

    // Index of the first (last) such unit at or behind `start`; -1 if there is none.
    int find(char16_t unit, int start = 0) const noexcept;
    int findLast(char16_t unit) const noexcept;
    int find(CStringView part, int start = 0) const noexcept;

    bool startsWith(CStringView prefix) const noexcept { return slice(0, prefix.length()).equals(prefix); }
    bool endsWith(CStringView suffix) const noexcept {
        return suffix.m_length <= m_length && slice(m_length - suffix.m_length).equals(suffix);
    }

    // The part from `start` on; a negative count, or one that reaches past the end, means up to the end. A start
    // outside the text gives the empty text.
    CStringView slice(int start, int count = -1) const noexcept;

    // Without the blanks (U+0020 and below) at both ends.
    CStringView trimmed() const noexcept;

    bool equals(CStringView other) const noexcept { return m_length == other.m_length && compare(other) == 0; }

private:
    union {
        const char* m_data8 = "";
        const char16_t* m_data16;
    };
    int m_length = 0;
    bool m_isWide = false;
};

inline bool operator==(CStringView a, CStringView b) noexcept { return a.equals(b); }
inline std::strong_ordering operator<=>(CStringView a, CStringView b) noexcept { return a.compare(b) <=> 0; }

}  // namespace brt
