// SPDX-License-Identifier: LicenseRef-Halyard
#pragma once

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

namespace brt {

// Tells the processor that this is a spin loop.
inline void pauseProcessor() noexcept {
#if defined(__x86_64__)
    _mm_pause();
#elif defined(__aarch64__)
    asm volatile("yield");
#endif
}

}  // namespace brt
