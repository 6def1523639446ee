// SPDX-License-Identifier: LicenseRef-Halyard
// Numbers as users type and read them, the same under every locale: "." and "," are both decimal signs, nothing is ever
// shown with an exponent. Threads: any.
#pragma once

#include "Core/CString.h"

namespace brt {

// Rounds half away from zero.
double roundHalfAway(double value) noexcept;

// The number that the text begins with: sign, digits, a fraction, an exponent. What stands behind it is ignored. `ok`
// is false, and the result 0, if there is no digit. A number too large for a double is infinite; NaN never comes out.
double parseNumber(CStringView text, bool& ok) noexcept;

// With exactly that many decimals, 0 to 10. What is above 9e15, to either side of 0, is shown as that; NaN and infinity
// as "0".
CString numberText(double value, int decimals);

// For converters that add something to numbers: whether `value` is none; then the text is "0".
bool formatNoNumber(CString& text, double value);

}  // namespace brt
