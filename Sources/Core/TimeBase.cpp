// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/TimeBase.h"

#include "Core/Log.h"
#include "Platform/Clock.h"
#include "Platform/Processor.h"

namespace brt {

namespace {

TimeBase readTimeBase() {
    TimeBase base{.originTicks = clockCounter(), .processorCount = processorCount()};
    const double frequency = clockFrequency();
    if (frequency > 0.0) {
        base.ticksPerSecond = frequency;
    } else {
        logLine("Cannot query performance frequency.");
    }
    return base;
}

// At load, or earlier if another static object asks.
[[maybe_unused]] const TimeBase& s_readAtLoad = timeBase();

}  // namespace

const TimeBase& timeBase() noexcept {
    static const TimeBase base = readTimeBase();
    return base;
}

double secondsSinceOrigin() noexcept {
    const TimeBase& base = timeBase();
    return static_cast<double>(clockCounter() - base.originTicks) / base.ticksPerSecond;
}

}  // namespace brt
