// SPDX-License-Identifier: LicenseRef-Halyard
// The calling thread's floating-point control register.
#pragma once

#include <cfenv>
#include <cstdint>

#if defined(__x86_64__)
#include <xmmintrin.h>
#endif

namespace brt {

#if defined(__x86_64__)

constexpr std::uint32_t kDefaultControl = 0x1F80;  // MXCSR: all exceptions masked, round to nearest, denormals kept
constexpr std::uint32_t kFlushToZero = 0x8040;     // MXCSR: results (FTZ) and operands (DAZ)

inline std::uint32_t floatingPointControl() noexcept { return _mm_getcsr(); }
inline void setFloatingPointControl(std::uint32_t control) noexcept { _mm_setcsr(control); }

#elif defined(__aarch64__)

constexpr std::uint32_t kDefaultControl = 0;
constexpr std::uint32_t kFlushToZero = 1u << 24;  // FPCR.FZ

inline std::uint32_t floatingPointControl() noexcept {
    std::uint64_t control;
    asm volatile("mrs %0, fpcr" : "=r"(control));
    return static_cast<std::uint32_t>(control);
}
inline void setFloatingPointControl(std::uint32_t control) noexcept {
    asm volatile("msr fpcr, %0" : : "r"(std::uint64_t{control}));
}

#else
#error "No flush-to-zero control is known for this processor"
#endif

// Also the old floating-point unit, where there is one.
inline void setDefaultFloatingPoint() noexcept {
    std::fesetenv(FE_DFL_ENV);
    setFloatingPointControl(kDefaultControl);
}

}  // namespace brt
