// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/Clock.h"

#include <time.h>

namespace brt {

std::int64_t clockCounter() noexcept {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

double clockFrequency() noexcept {
    timespec resolution{};
    return clock_getres(CLOCK_MONOTONIC, &resolution) == 0 ? 1e9 : 0.0;
}

}  // namespace brt
