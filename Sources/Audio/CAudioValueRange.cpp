// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioValueRange.h"

#include <cmath>
#include <limits>

#include "Core/CStringList.h"
#include "Core/NumberText.h"

namespace brt {
namespace {

double roundToSteps(double value, double step) noexcept {
    const double steps = value / step;
    return steps > 0.0 ? std::floor(steps + 0.5) : -std::floor(0.5 - steps);
}

bool parseBound(CStringView text, double step, bool& isUnbounded, std::int32_t& bound) {
    isUnbounded = text == "*";
    if (isUnbounded) return true;
    double value = 0.0;
    if (!parseDouble(text, value)) return false;
    const double steps = roundToSteps(value, step);
    if (!(std::fabs(steps) <= std::numeric_limits<std::int32_t>::max())) return false;
    bound = static_cast<std::int32_t>(steps);
    return true;
}

bool parseBracket(char16_t bracket, char16_t including, char16_t excluding, bool& isInclusive) {
    isInclusive = bracket == including;
    return isInclusive || bracket == excluding;
}

}  // namespace

bool CAudioValueRange::parse(CStringView text) {
    constexpr int kShortest = 5;  // "[*;*]"
    if (text.length() < kShortest) return false;
    CAudioValueRange range;
    if (!parseBracket(text[0], u'[', u'(', range.lowInclusive)) return false;
    if (!parseBracket(text[text.length() - 1], u']', u')', range.highInclusive)) return false;
    CStringList fields;
    CString(text.slice(1, text.length() - 2)).split(fields, u';', false, true);
    if (fields.count() != 2 && fields.count() != 3) return false;
    if (fields.count() == 3 && !parseDouble(fields[2], range.step)) return false;
    if (!(range.step > 0.0)) return false;
    if (!parseBound(fields[0], range.step, range.lowUnbounded, range.low)) return false;
    if (!parseBound(fields[1], range.step, range.highUnbounded, range.high)) return false;
    if (!range.lowUnbounded && !range.highUnbounded && range.high < range.low) return false;
    range.valid = true;
    *this = range;
    return true;
}

bool CAudioValueRange::contains(double value) const noexcept {
    const double steps = roundToSteps(value, step);
    const bool isAboveLow = lowUnbounded || steps > low || (lowInclusive && steps == low);
    const bool isBelowHigh = highUnbounded || steps < high || (highInclusive && steps == high);
    return isAboveLow && isBelowHigh;
}

}  // namespace brt
