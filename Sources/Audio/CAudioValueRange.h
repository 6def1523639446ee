// SPDX-License-Identifier: LicenseRef-Halyard
// A range of parameter values, compared in whole steps so that rounding of the values doesn't matter.
//
// As text: "[" or "]" at an end includes the bound, "(" or ")" excludes it; between them low, high and, if it isn't
// 0.01, the step, parted by ";". "*" is no bound:
//     "(0;1]"    0.01 to 1       "[*;2)"    up to 1.99       "[1;4;0.5]"    from 0.75 on to below 4.25
// Threads: as any value.
#pragma once

#include <cstdint>

#include "Core/CStringView.h"

namespace brt {

struct CAudioValueRange {
    static constexpr double kDefaultStep = 0.01;

    bool valid = false;  // there is a range
    bool lowInclusive = false;
    bool lowUnbounded = false;
    std::int32_t low = 0;  // in steps
    bool highInclusive = false;
    bool highUnbounded = false;
    std::int32_t high = 0;  // in steps
    double step = kDefaultStep;

    // False if the text is no range; then this one is unchanged.
    [[nodiscard]] bool parse(CStringView text);

    // REQUIRES: valid. A value that is no number lies in no range that has a bound.
    bool contains(double value) const noexcept;
};

}  // namespace brt
