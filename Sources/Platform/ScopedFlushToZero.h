// SPDX-License-Identifier: LicenseRef-Halyard
// Denormal numbers count as zero on the calling thread, as operands and as results, for the life of a scope.
// Arithmetic on denormals is up to a hundred times slower, and they are far below anything audible.
// The whole control register is restored at the end, so the host finds its own state again.
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
