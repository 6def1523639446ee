// SPDX-License-Identifier: LicenseRef-Halyard
// Numbers as text and back, the same under every locale of the host: the decimal sign is always ".".
// Threads: any.
#pragma once

#include <cstdint>

#include "Core/CString.h"

namespace brt {

// Longest decimal form that `writeFixed` gives, with sign, point and 40 decimals.
constexpr int kMaxFixedLength = 352;

// [any] The whole text must be a decimal integer: digits, a "-" in front or not. Else, and where it doesn't fit into 64
// bits, false; then `value` is unchanged.
[[nodiscard]] bool parseInteger(CStringView text, std::int64_t& value);

// [any] The whole text must be a decimal number: "5", "-0.5", ".5", "1e-3". "inf", "nan", hexadecimal digits, blanks, a
// leading "+" and what is out of range are not. Then false, and `value` is unchanged.
[[nodiscard]] bool parseDouble(CStringView text, double& value);

// [any] Decimal digits of an integer.
CString integerText(std::int64_t value);

// [any] A number with exactly that many decimals, 0 to 40. One that rounds to zero has no minus sign.
CString fixedText(double value, int decimals);

// [any] The shortest text that reads back as the same number.
CString shortestText(double value);

// [any] As `fixedText`, into `buffer` of at least kMaxFixedLength bytes; returns the length. No terminator.
int writeFixed(char* buffer, double value, int decimals) noexcept;

}  // namespace brt
