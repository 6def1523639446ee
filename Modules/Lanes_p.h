// SPDX-License-Identifier: LicenseRef-Halyard
// The vectors that the inner loops are written in: `Lanes` holds kLanes doubles, 1, 2, 4 or 8 by build. Lane 0 is the
// one at the lowest address.
//
// For files that brt_processor_builds compiles, and for no others. Everything here is inlined always, in the namespace
// of the build. That namespace is the reason for two rules in such files:
// - Include nothing but this header and plain data types. An inline function of a shared header (a template of the
//   standard library, say) would be compiled for several processors under one name, and the linker would keep any one.
// - Sums that must not depend on where a block was cut use mulAdd in the vector loop and in its scalar rest alike: both
//   round the same way in one build.
#pragma once

#if !defined(BRT_BUILD) || !defined(BRT_LANES)
#error "This header is for sources listed in brt_processor_builds()."
#endif

#if BRT_LANES > 1
#include <immintrin.h>
#endif

#define BRT_LANE_OP static inline __attribute__((always_inline, unused))
// In front of a loop over a small array that should live in registers.
#define BRT_UNROLL _Pragma("GCC unroll 32")

namespace brt::BRT_BUILD {

constexpr int kLanes = BRT_LANES;

#if BRT_LANES == 1
typedef double Lanes;
BRT_LANE_OP Lanes load(const double* p) { return *p; }
BRT_LANE_OP Lanes loadUnaligned(const double* p) { return *p; }
BRT_LANE_OP void store(double* p, Lanes v) { *p = v; }
BRT_LANE_OP void storeUnaligned(double* p, Lanes v) { *p = v; }
BRT_LANE_OP Lanes splat(double x) { return x; }
BRT_LANE_OP double lane(Lanes v, int) { return v; }
#else
typedef double Lanes __attribute__((vector_size(8 * BRT_LANES)));
typedef double LanesInMemory __attribute__((vector_size(8 * BRT_LANES), may_alias));
typedef double UnalignedLanes __attribute__((vector_size(8 * BRT_LANES), aligned(8), may_alias));

// `p` aligned to the vector's size.
BRT_LANE_OP Lanes load(const double* p) { return *reinterpret_cast<const LanesInMemory*>(p); }
BRT_LANE_OP void store(double* p, Lanes v) { *reinterpret_cast<LanesInMemory*>(p) = v; }
// `p` aligned to 8 bytes.
BRT_LANE_OP Lanes loadUnaligned(const double* p) { return *reinterpret_cast<const UnalignedLanes*>(p); }
BRT_LANE_OP void storeUnaligned(double* p, Lanes v) { *reinterpret_cast<UnalignedLanes*>(p) = v; }
BRT_LANE_OP double lane(Lanes v, int i) { return v[i]; }
#endif

// mulAdd: a * b + c. mulSub: a * b - c. negMulAdd: c - a * b. Rounded once where the build has fused multiply-add,
// twice elsewhere; of vectors and of doubles alike.
#if BRT_LANES >= 4
BRT_LANE_OP double mulAdd(double a, double b, double c) { return __builtin_fma(a, b, c); }
BRT_LANE_OP double mulSub(double a, double b, double c) { return __builtin_fma(a, b, -c); }
BRT_LANE_OP double negMulAdd(double a, double b, double c) { return __builtin_fma(-a, b, c); }
#else
BRT_LANE_OP double mulAdd(double a, double b, double c) { return a * b + c; }
BRT_LANE_OP double mulSub(double a, double b, double c) { return a * b - c; }
BRT_LANE_OP double negMulAdd(double a, double b, double c) { return c - a * b; }
#endif

// The smaller, the larger. With a NaN on either side, and for zeros of both signs, the second one: the answer of the
// processors' own instructions, in every build. So minOf(maxOf(x, low), high) turns a NaN in x into low.
BRT_LANE_OP double minOf(double a, double b) { return a < b ? a : b; }
BRT_LANE_OP double maxOf(double a, double b) { return a > b ? a : b; }
BRT_LANE_OP double absOf(double a) { return __builtin_fabs(a); }

#if BRT_LANES == 2
BRT_LANE_OP Lanes splat(double x) { return _mm_set1_pd(x); }
BRT_LANE_OP Lanes mulAdd(Lanes a, Lanes b, Lanes c) { return a * b + c; }
BRT_LANE_OP Lanes mulSub(Lanes a, Lanes b, Lanes c) { return a * b - c; }
BRT_LANE_OP Lanes negMulAdd(Lanes a, Lanes b, Lanes c) { return c - a * b; }
BRT_LANE_OP Lanes minOf(Lanes a, Lanes b) { return _mm_min_pd(a, b); }
BRT_LANE_OP Lanes maxOf(Lanes a, Lanes b) { return _mm_max_pd(a, b); }
BRT_LANE_OP Lanes absOf(Lanes a) { return _mm_andnot_pd(_mm_set1_pd(-0.0), a); }
#elif BRT_LANES == 4
BRT_LANE_OP Lanes splat(double x) { return _mm256_set1_pd(x); }
BRT_LANE_OP Lanes mulAdd(Lanes a, Lanes b, Lanes c) { return _mm256_fmadd_pd(a, b, c); }
BRT_LANE_OP Lanes mulSub(Lanes a, Lanes b, Lanes c) { return _mm256_fmsub_pd(a, b, c); }
BRT_LANE_OP Lanes negMulAdd(Lanes a, Lanes b, Lanes c) { return _mm256_fnmadd_pd(a, b, c); }
BRT_LANE_OP Lanes minOf(Lanes a, Lanes b) { return _mm256_min_pd(a, b); }
BRT_LANE_OP Lanes maxOf(Lanes a, Lanes b) { return _mm256_max_pd(a, b); }
BRT_LANE_OP Lanes absOf(Lanes a) { return _mm256_andnot_pd(_mm256_set1_pd(-0.0), a); }
#elif BRT_LANES == 8
BRT_LANE_OP Lanes splat(double x) { return _mm512_set1_pd(x); }
BRT_LANE_OP Lanes mulAdd(Lanes a, Lanes b, Lanes c) { return _mm512_fmadd_pd(a, b, c); }
BRT_LANE_OP Lanes mulSub(Lanes a, Lanes b, Lanes c) { return _mm512_fmsub_pd(a, b, c); }
BRT_LANE_OP Lanes negMulAdd(Lanes a, Lanes b, Lanes c) { return _mm512_fnmadd_pd(a, b, c); }
BRT_LANE_OP Lanes minOf(Lanes a, Lanes b) { return _mm512_min_pd(a, b); }
BRT_LANE_OP Lanes maxOf(Lanes a, Lanes b) { return _mm512_max_pd(a, b); }
BRT_LANE_OP Lanes absOf(Lanes a) { return _mm512_abs_pd(a); }
#endif

// What moves values between lanes:
//   reverse     the lanes from last to first
//   rotateUp    lane i takes lane i - 1, lane 0 takes the last one
//   withLane0   `a`, but `x` in lane 0
//   even, odd   of the 2 * kLanes values a, b in a row those at even, at odd places
//   zipLow/High the inverse of even and odd: the first, the second half of a0 b0 a1 b1 ...
//   pairEven    a0 b0 a2 b2 ..., pairOdd a1 b1 a3 b3 ...: within each pair of lanes, so cheaper than even and zip. Each
//               is the other way back: real and imaginary parts come out of memory in an order that goes in again.
//   reversePairs  the pairs of lanes from last to first
//   transpose   rows[i] lane j takes rows[j] lane i, for a square of kLanes vectors
#if BRT_LANES == 1
BRT_LANE_OP Lanes reverse(Lanes a) { return a; }
BRT_LANE_OP Lanes rotateUp(Lanes a) { return a; }
BRT_LANE_OP Lanes withLane0(Lanes, double x) { return x; }
BRT_LANE_OP Lanes even(Lanes a, Lanes) { return a; }
BRT_LANE_OP Lanes odd(Lanes, Lanes b) { return b; }
BRT_LANE_OP Lanes zipLow(Lanes a, Lanes) { return a; }
BRT_LANE_OP Lanes zipHigh(Lanes, Lanes b) { return b; }
BRT_LANE_OP Lanes pairEven(Lanes a, Lanes) { return a; }
BRT_LANE_OP Lanes pairOdd(Lanes, Lanes b) { return b; }
BRT_LANE_OP Lanes reversePairs(Lanes a) { return a; }
BRT_LANE_OP void transpose(Lanes*) {}
#elif BRT_LANES == 2
BRT_LANE_OP Lanes reverse(Lanes a) { return __builtin_shufflevector(a, a, 1, 0); }
BRT_LANE_OP Lanes rotateUp(Lanes a) { return __builtin_shufflevector(a, a, 1, 0); }
BRT_LANE_OP Lanes withLane0(Lanes a, double x) { return _mm_move_sd(a, splat(x)); }
BRT_LANE_OP Lanes even(Lanes a, Lanes b) { return __builtin_shufflevector(a, b, 0, 2); }
BRT_LANE_OP Lanes odd(Lanes a, Lanes b) { return __builtin_shufflevector(a, b, 1, 3); }
BRT_LANE_OP Lanes zipLow(Lanes a, Lanes b) { return __builtin_shufflevector(a, b, 0, 2); }
BRT_LANE_OP Lanes zipHigh(Lanes a, Lanes b) { return __builtin_shufflevector(a, b, 1, 3); }
BRT_LANE_OP Lanes pairEven(Lanes a, Lanes b) { return __builtin_shufflevector(a, b, 0, 2); }
BRT_LANE_OP Lanes pairOdd(Lanes a, Lanes b) { return __builtin_shufflevector(a, b, 1, 3); }
BRT_LANE_OP Lanes reversePairs(Lanes a) { return a; }
BRT_LANE_OP void transpose(Lanes* rows) {
    const Lanes a = rows[0], b = rows[1];
    rows[0] = even(a, b);
    rows[1] = odd(a, b);
}
#elif BRT_LANES == 4
BRT_LANE_OP Lanes reverse(Lanes a) { return __builtin_shufflevector(a, a, 3, 2, 1, 0); }
BRT_LANE_OP Lanes rotateUp(Lanes a) { return __builtin_shufflevector(a, a, 3, 0, 1, 2); }
BRT_LANE_OP Lanes withLane0(Lanes a, double x) { return _mm256_blend_pd(a, splat(x), 1); }
// Steps inside the two halves are cheap, steps across them are not: so pairs first, then halves.
BRT_LANE_OP Lanes even(Lanes a, Lanes b) { return _mm256_permute4x64_pd(_mm256_unpacklo_pd(a, b), 0xD8); }
BRT_LANE_OP Lanes odd(Lanes a, Lanes b) { return _mm256_permute4x64_pd(_mm256_unpackhi_pd(a, b), 0xD8); }
BRT_LANE_OP Lanes zipLow(Lanes a, Lanes b) {
    return _mm256_permute2f128_pd(_mm256_unpacklo_pd(a, b), _mm256_unpackhi_pd(a, b), 0x20);
}
BRT_LANE_OP Lanes zipHigh(Lanes a, Lanes b) {
    return _mm256_permute2f128_pd(_mm256_unpacklo_pd(a, b), _mm256_unpackhi_pd(a, b), 0x31);
}
BRT_LANE_OP Lanes pairEven(Lanes a, Lanes b) { return _mm256_unpacklo_pd(a, b); }
BRT_LANE_OP Lanes pairOdd(Lanes a, Lanes b) { return _mm256_unpackhi_pd(a, b); }
BRT_LANE_OP Lanes reversePairs(Lanes a) { return _mm256_permute4x64_pd(a, 0x4E); }
BRT_LANE_OP void transpose(Lanes* rows) {
    const Lanes a = _mm256_unpacklo_pd(rows[0], rows[1]), b = _mm256_unpackhi_pd(rows[0], rows[1]);
    const Lanes c = _mm256_unpacklo_pd(rows[2], rows[3]), d = _mm256_unpackhi_pd(rows[2], rows[3]);
    rows[0] = _mm256_permute2f128_pd(a, c, 0x20);
    rows[1] = _mm256_permute2f128_pd(b, d, 0x20);
    rows[2] = _mm256_permute2f128_pd(a, c, 0x31);
    rows[3] = _mm256_permute2f128_pd(b, d, 0x31);
}
#elif BRT_LANES == 8
BRT_LANE_OP Lanes reverse(Lanes a) { return __builtin_shufflevector(a, a, 7, 6, 5, 4, 3, 2, 1, 0); }
BRT_LANE_OP Lanes rotateUp(Lanes a) { return __builtin_shufflevector(a, a, 7, 0, 1, 2, 3, 4, 5, 6); }
BRT_LANE_OP Lanes withLane0(Lanes a, double x) { return _mm512_mask_mov_pd(a, 1, splat(x)); }
BRT_LANE_OP Lanes even(Lanes a, Lanes b) { return __builtin_shufflevector(a, b, 0, 2, 4, 6, 8, 10, 12, 14); }
BRT_LANE_OP Lanes odd(Lanes a, Lanes b) { return __builtin_shufflevector(a, b, 1, 3, 5, 7, 9, 11, 13, 15); }
BRT_LANE_OP Lanes zipLow(Lanes a, Lanes b) { return __builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11); }
BRT_LANE_OP Lanes zipHigh(Lanes a, Lanes b) { return __builtin_shufflevector(a, b, 4, 12, 5, 13, 6, 14, 7, 15); }
BRT_LANE_OP Lanes pairEven(Lanes a, Lanes b) { return __builtin_shufflevector(a, b, 0, 8, 2, 10, 4, 12, 6, 14); }
BRT_LANE_OP Lanes pairOdd(Lanes a, Lanes b) { return __builtin_shufflevector(a, b, 1, 9, 3, 11, 5, 13, 7, 15); }
BRT_LANE_OP Lanes reversePairs(Lanes a) { return __builtin_shufflevector(a, a, 6, 7, 4, 5, 2, 3, 0, 1); }
BRT_LANE_OP void transpose(Lanes* rows) {
    // Blocks of 1, then of 2, then of 4 change places across the diagonal.
    Lanes pairs[8], fours[8];
    BRT_UNROLL for (int i = 0; i < 8; i += 2) {
        pairs[i] = pairEven(rows[i], rows[i + 1]);
        pairs[i + 1] = pairOdd(rows[i], rows[i + 1]);
    }
    BRT_UNROLL for (int i = 0; i < 8; i += 4) {
        BRT_UNROLL for (int j = i; j < i + 2; ++j) {
            fours[j] = __builtin_shufflevector(pairs[j], pairs[j + 2], 0, 1, 8, 9, 4, 5, 12, 13);
            fours[j + 2] = __builtin_shufflevector(pairs[j], pairs[j + 2], 2, 3, 10, 11, 6, 7, 14, 15);
        }
    }
    BRT_UNROLL for (int i = 0; i < 4; ++i) {
        rows[i] = __builtin_shufflevector(fours[i], fours[i + 4], 0, 1, 2, 3, 8, 9, 10, 11);
        rows[i + 4] = __builtin_shufflevector(fours[i], fours[i + 4], 4, 5, 6, 7, 12, 13, 14, 15);
    }
}
#endif

}  // namespace brt::BRT_BUILD
