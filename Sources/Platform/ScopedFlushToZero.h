// SPDX-License-Identifier: LicenseRef-Halyard
// The floating-point state in which sound is processed, on the calling thread for the life of a scope.
// Denormal numbers count as zero, as operands and as results: arithmetic on them is up to a hundred times slower, and
// they are far below anything audible. Whatever the host has set, results round to nearest, and no number raises a
// signal. The whole control register is restored at the end, so the host finds its own state again.
// Threads: any; made and destroyed on the same one. Real-time safe.
#pragma once

#include <cstdint>

#include "Platform/Annotations.h"

namespace brt {

class ScopedFlushToZero {
public:
    ScopedFlushToZero() noexcept BRT_REALTIME;
    ~ScopedFlushToZero() BRT_REALTIME;
    ScopedFlushToZero(const ScopedFlushToZero&) = delete;
    ScopedFlushToZero& operator=(const ScopedFlushToZero&) = delete;

private:
    const std::uint32_t m_controlBefore;
};

}  // namespace brt
