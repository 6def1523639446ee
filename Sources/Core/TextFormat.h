// SPDX-License-Identifier: LicenseRef-Halyard
// Text composed by a format in the manner of printf: typed arguments, no locale, no allocation.
//
// A place is "%", flags ("-" left, "0" zeros, "+" sign), width, "." and precision, and one letter: d i u for integers,
// x X for hexadecimal, f for fixed point, s for text, p for addresses, c for a character; "%%" is one "%". Length
// letters (l, z, ...) are skipped. An argument that doesn't suit its letter is written as what it is; one that is
// missing gives nothing. The result is UTF-8.
//
// Threads: any.
#pragma once

#include <concepts>
#include <cstdint>
#include <span>
#include <string_view>

#include "Core/CStringView.h"

namespace brt {

class CFormatArgument {
public:
    enum Kind { kSigned, kUnsigned, kDouble, kText, kAddress };

    template <std::signed_integral T>
    CFormatArgument(T value) noexcept : m_kind(kSigned), m_number(static_cast<std::uint64_t>(std::int64_t{value})) {}
    template <std::unsigned_integral T>
    CFormatArgument(T value) noexcept : m_kind(kUnsigned), m_number(value) {}
    CFormatArgument(double value) noexcept : m_kind(kDouble), m_double(value) {}
    template <class T>
    requires std::convertible_to<const T&, CStringView> CFormatArgument(const T& text)
    noexcept : m_kind(kText), m_text(text) {}
    CFormatArgument(const void* address) noexcept
        : m_kind(kAddress), m_number(reinterpret_cast<std::uintptr_t>(address)) {}

    Kind kind() const noexcept { return m_kind; }
    std::uint64_t number() const noexcept { return m_number; }
    double real() const noexcept { return m_double; }
    CStringView text() const noexcept { return m_text; }

private:
    Kind m_kind;
    union {
        std::uint64_t m_number;
        double m_double;
        CStringView m_text;
    };
};

// Writes at most `room.size()` bytes, without a terminator, and never part of a character; returns what was written.
std::string_view formatText(std::span<char> room, const char* format, std::span<const CFormatArgument> arguments);

}  // namespace brt
