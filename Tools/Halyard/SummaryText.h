// SPDX-License-Identifier: LicenseRef-Halyard
// What a render tells at its end.
#pragma once

#include <string>

#include "Tools/Halyard/Render.h"

namespace brt {

// [any] Several lines, each with its end.
std::string summaryText(const RenderJob& job, const RenderSummary& summary);

// [any] "1,234,567".
std::string groupedDigits(std::int64_t number);

// [any] Minutes, seconds and thousandths of a place in a sound: "2:03.250".
std::string timeText(std::int64_t frame, int rateHz);

}  // namespace brt
