// SPDX-License-Identifier: LicenseRef-Halyard
// What the machine under this process can do.
// Threads: any.
#pragma once

#include <cstdint>

#include "Platform/Annotations.h"

namespace brt {

// What the processor has and the operating system saves: code built for a feature may run if it is true here.
// All false on processors of another family.
struct ProcessorFeatures {
    bool cmpxchg16b = false;
    bool sse2 = false;
    bool sse3 = false;
    bool ssse3 = false;
    bool sse41 = false;
    bool sse42 = false;
    bool avx = false;
    bool avx2 = false;
    bool fma = false;
    bool bmi1 = false;
    bool bmi2 = false;
    bool avx512f = false;
    bool avx512bw = false;
    bool avx512cd = false;
    bool avx512dq = false;
    bool avx512vl = false;
};

// [any] Read from the processor once, at the first call.
const ProcessorFeatures& processorFeatures() noexcept;

// [any] Processors that the calling thread may run on (its affinity mask), at least 1. Asks the system at each call.
int processorCount() noexcept;

// [any] The processor's own counter, for measuring short stretches of code; runs at a rate that isn't told.
std::uint64_t processorTicks() noexcept BRT_REALTIME;

}  // namespace brt
