// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/Processor.h"

#include <sched.h>

#include <cerrno>
#include <cstdint>

#if defined(__x86_64__)
#include <cpuid.h>
#include <x86intrin.h>
#else
#include "Platform/Clock.h"
#endif

namespace brt {

namespace {

#if defined(__x86_64__)

struct Registers {
    unsigned a = 0, b = 0, c = 0, d = 0;
};

// Zeros for a leaf that the processor doesn't know.
Registers cpuid(unsigned leaf) noexcept {
    Registers r;
    __get_cpuid_count(leaf, 0, &r.a, &r.b, &r.c, &r.d);
    return r;
}

// Which register sets the operating system saves when it switches threads.
std::uint32_t savedRegisterSets() noexcept {
    std::uint32_t low, high;
    asm volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return low;
}

ProcessorFeatures readFeatures() noexcept {
    constexpr std::uint32_t kAvxState = 0x06;     // XMM, YMM
    constexpr std::uint32_t kAvx512State = 0xE6;  // and the masks, the upper halves, ZMM16 to 31
    const Registers base = cpuid(1);
    const Registers extended = cpuid(7);
    const std::uint32_t saved = (base.c & bit_OSXSAVE) != 0 ? savedRegisterSets() : 0;
    const bool savesAvx = (saved & kAvxState) == kAvxState;
    const bool savesAvx512 = (saved & kAvx512State) == kAvx512State;

    ProcessorFeatures f;
    f.cmpxchg16b = (base.c & bit_CMPXCHG16B) != 0;
    f.sse2 = (base.d & bit_SSE2) != 0;
    f.sse3 = (base.c & bit_SSE3) != 0;
    f.ssse3 = (base.c & bit_SSSE3) != 0;
    f.sse41 = (base.c & bit_SSE4_1) != 0;
    f.sse42 = (base.c & bit_SSE4_2) != 0;
    f.avx = savesAvx && (base.c & bit_AVX) != 0;
    f.avx2 = f.avx && (extended.b & bit_AVX2) != 0;
    f.fma = f.avx && (base.c & bit_FMA) != 0;
    f.bmi1 = (extended.b & bit_BMI) != 0;
    f.bmi2 = (extended.b & bit_BMI2) != 0;
    f.avx512f = f.avx2 && savesAvx512 && (extended.b & bit_AVX512F) != 0;
    f.avx512bw = f.avx512f && (extended.b & bit_AVX512BW) != 0;
    f.avx512cd = f.avx512f && (extended.b & bit_AVX512CD) != 0;
    f.avx512dq = f.avx512f && (extended.b & bit_AVX512DQ) != 0;
    f.avx512vl = f.avx512f && (extended.b & bit_AVX512VL) != 0;
    return f;
}

#else

ProcessorFeatures readFeatures() noexcept { return {}; }

#endif

}  // namespace

const ProcessorFeatures& processorFeatures() noexcept {
    static const ProcessorFeatures features = readFeatures();
    return features;
}

int processorCount() noexcept {
    // The kernel refuses a mask smaller than its own with EINVAL, and doesn't tell how large that is.
    constexpr int kMostProcessors = 1 << 20;
    for (int room = 1024; room <= kMostProcessors; room *= 2) {
        cpu_set_t* set = CPU_ALLOC(static_cast<std::size_t>(room));
        if (set == nullptr) break;
        const std::size_t size = CPU_ALLOC_SIZE(static_cast<std::size_t>(room));
        const int error = sched_getaffinity(0, size, set) == 0 ? 0 : errno;
        const int count = error == 0 ? CPU_COUNT_S(size, set) : 0;
        CPU_FREE(set);
        if (error == 0 && count > 0) return count;
        if (error != EINVAL) break;
    }
    return 1;
}

std::uint64_t processorTicks() noexcept {
#if defined(__x86_64__)
    return __rdtsc();
#else
    return static_cast<std::uint64_t>(clockCounter());
#endif
}

}  // namespace brt
