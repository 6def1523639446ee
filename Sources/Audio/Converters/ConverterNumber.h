// SPDX-License-Identifier: LicenseRef-Halyard
// Numbers as users type and read them, the same under every locale: "." and "," are both decimal signs, nothing is ever
// shown with an exponent. Threads: any.
#pragma once

#include "Core/CString.h"

namespace brt {

// Rounds half away from zero.
double roundHalfAway(double value) noexcept;

// The number that the text begins with: sign, digits, a fraction, an exponent. What stands behind it is ignored; `end`,
// if not null, is the place where it begins. `ok` is false, and the result 0, if there is no digit.
double parseNumber(CStringView text, bool& ok, int* end = nullptr) noexcept;

// With exactly that many decimals, 0 to 10. What is no number is shown as 0, and what is above 9e15 as that.
CString numberText(double value, int decimals);

}  // namespace brt
