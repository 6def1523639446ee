// SPDX-License-Identifier: LicenseRef-Halyard
// What the tables of a transform look like, shared by the one place that fills them and the inner loops that read them.
//
// N real points are done as M = N/2 complex ones, z[n] = x[2n] + i x[2n + 1]. M = W * L, where W is the number of
// lanes:
//   1. lane l of vector m holds z[W m + l]; L-point transforms over m, one per lane, in a few passes of radix 4 or 8,
//      in place in the work buffer, so that result k ends at the place of its reversed digits;
//   2. W vectors k, k + 1, ... are transposed; result k of lane l is turned by exp(-2 pi i l k / M), and a W-point
//      transform across l gives Z[k + L j] for all j;
//   3. Z[k] and Z[M - k] together give X[k] and X[N/2 - k]. Steps 2 and 3 are one loop, so that the data goes through
//      the work buffer once per pass and no more.
// The inverse runs the same steps backwards, with real and imaginary parts changing places, which turns every
// forward transform inside into an inverse one: one set of tables serves both.
//
// Lanes hold complex values in pair order: lane i belongs to index lanePlace(i) of W neighbours. Then the values of a
// pair of vectors interleave to memory order without a step across the vector's halves.
#pragma once

#include <cstddef>
#include <cstdint>

namespace brt {

struct RealFftSpec;

struct RealFftKernel {
    int lanes;
    void (*forward)(const RealFftSpec& spec, const double* source, double* destination, double* work);
    void (*inverse)(const RealFftSpec& spec, const double* source, double* destination, double* work);
};

inline constexpr int kFftMaxPasses = 16;

struct RealFftSpec {
    std::int32_t identifier;
    std::int32_t order;
    bool scalesForward, scalesInverse;
    double scale;
    std::int32_t hint;
    std::size_t workBytes;

    const RealFftKernel* kernel;  // null for 1 and 2 points, which need no tables
    std::int32_t length;          // L
    std::int32_t passCount;
    std::int32_t radices[kFftMaxPasses];
    // Where in the work buffer, counted in doubles, result k of step 1 lies: L entries.
    const std::uint32_t* places;
    // Step 1: for each pass but the last, for m = 0 to len/radix - 1, the radix - 1 values exp(-2 pi i m r / len).
    const double* passTwiddles;
    // Steps 2 and 3: for each group of W bins k = k0 + 1 + lanePlace(lane), with k0 = 0, W, .. L/2 - W, the vectors
    // exp(-2 pi i k / N) / 2 and exp(-2 pi i l k / M) for l = 1 to W - 1.
    const double* binTwiddles;
};

// Static, like all that files compiled per build share: no one copy of it may serve them all.
static constexpr int lanePlace(int lane, int lanes) { return lanes == 1 ? 0 : lane % 2 * (lanes / 2) + lane / 2; }

}  // namespace brt
