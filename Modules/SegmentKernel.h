// SPDX-License-Identifier: LicenseRef-Halyard
// The cascade on vectors: what CSegmentCascade asks of the inner loops of a processor build.
//
// Lanes are segments of time. A sub-block of kSegmentSubBlock host samples is cut into as many equal segments as a
// vector has lanes, at every rate: lane i of vector m is sample i * length + m of the stage's stream. A neighbour in
// time is then the neighbouring vector, so the filters need no shuffle and no misaligned load; interleaving two outputs
// is two stores, and taking every second input is an index. The price is at the seams: the samples in front of a
// segment are the end of the one before, in the lane below, and are copied there before a stage runs. Lane 0's come
// from the sub-block before. Those, in the order of time, are all that a stage keeps.
#pragma once

#include <cstddef>

namespace brt {

struct ClipSettings;

// A sub-block is long, so that seams are few, and short, so that a stream at 64x stays in the nearest cache. It divides
// the hop of the FFT stages, 624 samples, and fills whole vectors at 2x in every build.
inline constexpr int kSegmentSubBlock = 48;

struct SegmentKernel {
    std::size_t stateBytes;  // of one channel, aligned to 64; silence is all bits zero
    // Runs one sub-block: 2 * kSegmentSubBlock samples at 2x from `in` to `out`, which may be the same. `settings`
    // tells for each of the host samples how to clip.
    void (*process)(void* state, const double* in, const ClipSettings* settings, double* out);
};

}  // namespace brt
