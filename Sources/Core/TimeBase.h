// SPDX-License-Identifier: LicenseRef-Halyard
// The process's time base: what the clock and the machine were when the program or module was loaded.
// Threads: any. Real-time safe.
#pragma once

#include <cstdint>

namespace brt {

struct TimeBase {
    std::int64_t originTicks = 0;  // the clock's counter at load
    double ticksPerSecond = 1e6;   // above 0, also where the system doesn't tell
    int processorCount = 1;        // that the process may use, at least 1
};

// [any]
const TimeBase& timeBase() noexcept;

// [any] Time since the load: the second number of the log's lines about durations.
double secondsSinceOrigin() noexcept;

}  // namespace brt
