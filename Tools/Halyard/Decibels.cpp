// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/Decibels.h"

#include <array>
#include <charconv>

namespace brt {

std::string formatFixed(double value, int decimals) {
    if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
    std::array<char, 400> buffer;  // the longest double has 309 digits in front of the point
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed, decimals).ptr;
    std::string text(buffer.data(), end);
    if (text.front() == '-' && text.find_first_of("123456789") == std::string::npos) text.erase(0, 1);
    return text;
}

}  // namespace brt
