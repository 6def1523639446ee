// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CBenchmarkRecord.h"

#include <algorithm>

#include "Core/Log.h"

namespace brt {

namespace {

constexpr double kTicksPerMillisecond = 4'225'000.0;

constinit CBenchmarkRecord s_records[CBenchmarkRecord::kCount];

}  // namespace

void CBenchmarkRecord::add(std::uint64_t callTicks) noexcept {
    ++calls;
    ticks += callTicks;
    peakTicks = std::max(peakTicks, callTicks);
}

CBenchmarkRecord& CBenchmarkRecord::at(int index) noexcept {
    BRT_ASSERT(index >= 0 && index < kCount);
    return s_records[index];
}

void logBenchmarkRecords() {
    for (int i = 0; i < CBenchmarkRecord::kCount; ++i) {
        const CBenchmarkRecord& record = s_records[i];
        if (record.calls == 0) continue;
        const double calls = static_cast<double>(record.calls);
        const double ticks = static_cast<double>(record.ticks);
        const double milliseconds = ticks / kTicksPerMillisecond;
        logLine("BENCH %i: %6.1f msec, %7.0f calls, %.8f ms/call, %4.0f tk/call, peak %4.0f tk", i, milliseconds, calls,
                milliseconds / calls, ticks / calls, static_cast<double>(record.peakTicks));
    }
}

}  // namespace brt
