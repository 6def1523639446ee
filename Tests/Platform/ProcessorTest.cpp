// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/Processor.h"

#include <fenv.h>
#include <gtest/gtest.h>
#include <sched.h>

#include <cfenv>
#include <cmath>
#include <limits>
#include <thread>

#include "Platform/CLockFreeList.h"
#include "Platform/ScopedFlushToZero.h"

namespace brt {
namespace {

TEST(ProcessorCount, isThatOfTheAffinityMask) {
    const int all = processorCount();
    EXPECT_GE(all, 1);
    EXPECT_LE(all, static_cast<int>(std::thread::hardware_concurrency()));
    std::thread([] {
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(sched_getcpu(), &one);
        ASSERT_EQ(sched_setaffinity(0, sizeof one, &one), 0);
        EXPECT_EQ(processorCount(), 1);
    }).join();
    EXPECT_EQ(processorCount(), all);
}

#if defined(__x86_64__)
// The compiler's own detection is the oracle.
TEST(ProcessorFeatures, agreeWithTheCompilersDetection) {
    const ProcessorFeatures& f = processorFeatures();
    __builtin_cpu_init();
    EXPECT_EQ(f.sse2, __builtin_cpu_supports("sse2") != 0);
    EXPECT_EQ(f.sse3, __builtin_cpu_supports("sse3") != 0);
    EXPECT_EQ(f.ssse3, __builtin_cpu_supports("ssse3") != 0);
    EXPECT_EQ(f.sse41, __builtin_cpu_supports("sse4.1") != 0);
    EXPECT_EQ(f.sse42, __builtin_cpu_supports("sse4.2") != 0);
    EXPECT_EQ(f.avx, __builtin_cpu_supports("avx") != 0);
    EXPECT_EQ(f.avx2, __builtin_cpu_supports("avx2") != 0);
    EXPECT_EQ(f.fma, __builtin_cpu_supports("fma") != 0);
    EXPECT_EQ(f.bmi1, __builtin_cpu_supports("bmi") != 0);
    EXPECT_EQ(f.bmi2, __builtin_cpu_supports("bmi2") != 0);
    EXPECT_EQ(f.avx512f, __builtin_cpu_supports("avx512f") != 0);
    EXPECT_EQ(f.avx512bw, __builtin_cpu_supports("avx512bw") != 0);
    EXPECT_EQ(f.avx512cd, __builtin_cpu_supports("avx512cd") != 0);
    EXPECT_EQ(f.avx512dq, __builtin_cpu_supports("avx512dq") != 0);
    EXPECT_EQ(f.avx512vl, __builtin_cpu_supports("avx512vl") != 0);
    EXPECT_EQ(CLockFreeList::isSupported(), f.cmpxchg16b);
}
#endif

TEST(ScopedFlushToZero, holdsForItsScopeOnly) {
    volatile double denormal = std::numeric_limits<double>::denorm_min();
    volatile double smallestNormal = std::numeric_limits<double>::min();
    {
        const ScopedFlushToZero outer;
        {
            const ScopedFlushToZero inner;
            EXPECT_EQ(denormal * 4.0, 0.0);
        }
        EXPECT_EQ(denormal * 4.0, 0.0);        // as operands
        EXPECT_EQ(smallestNormal * 0.5, 0.0);  // as results
    }
    EXPECT_GT(denormal * 4.0, 0.0);
    EXPECT_GT(smallestNormal * 0.5, 0.0);
}

// A host that rounds in its own way and has undefined results raise a signal, which would end it here.
TEST(ScopedFlushToZero, isTheSameInEveryHost) {
    volatile double zero = 0.0, one = 1.0, three = 3.0;
    const double nearestThird = one / three;
    std::fesetround(FE_UPWARD);
    feenableexcept(FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW);
    double undefined, third;
    {
        const ScopedFlushToZero scope;
        undefined = zero / zero;
        third = one / three;
    }
    const double thirdAfter = one / three;
    const int raisingAfter = fegetexcept();
    std::fesetenv(FE_DFL_ENV);
    EXPECT_TRUE(std::isnan(undefined));
    EXPECT_EQ(third, nearestThird);
    EXPECT_GT(thirdAfter, nearestThird);
    EXPECT_EQ(raisingAfter, FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW);
}

}  // namespace
}  // namespace brt
