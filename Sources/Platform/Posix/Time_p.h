// SPDX-License-Identifier: LicenseRef-Halyard
#pragma once

#include <time.h>

#include <cmath>

namespace brt {

// The time of the monotonic clock that many seconds from now; any number is taken, NaN as 0.
inline timespec monotonicDeadline(double seconds) noexcept {
    constexpr double kMostSeconds = 1e9;  // about 30 years: as good as no limit, and far from overflow
    const double clamped = seconds > 0.0 ? std::fmin(seconds, kMostSeconds) : 0.0;
    const double whole = std::floor(clamped);

    timespec deadline{};
    clock_gettime(CLOCK_MONOTONIC, &deadline);
    deadline.tv_sec += static_cast<time_t>(whole);
    deadline.tv_nsec += static_cast<long>((clamped - whole) * 1e9);
    if (deadline.tv_nsec >= 1'000'000'000) {
        deadline.tv_nsec -= 1'000'000'000;
        ++deadline.tv_sec;
    }
    return deadline;
}

}  // namespace brt
