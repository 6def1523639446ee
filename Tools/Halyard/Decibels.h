// SPDX-License-Identifier: LicenseRef-Halyard
// Levels as people read them. Threads: every operation is [any].
#pragma once

#include <cmath>
#include <limits>
#include <string>

namespace brt {

// dB for a factor of e: 20 / ln 10. The gain converters of the product use this same constant.
inline constexpr double kDbPerNeper = 8.685889638065037;

inline double dbToFactor(double db) { return std::exp(db / kDbPerNeper); }

// Minus infinity for 0.
inline double factorToDb(double factor) {
    return factor > 0 ? std::log(factor) * kDbPerNeper : -std::numeric_limits<double>::infinity();
}

// With that many decimals, a point whatever the locale, and no minus sign on what rounds to zero; "-inf" for silence.
std::string formatFixed(double value, int decimals);

}  // namespace brt
