// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/SegmentKernel.h"

#include "Modules/ClipCurve.h"
#include "Modules/HalfbandStages.h"
#include "Modules/Lanes_p.h"

namespace brt::BRT_BUILD {
extern const SegmentKernel kSegmentKernel;
}

#if BRT_LANES == 1

// A vector of one lane has no segments: the portable build runs the ring cascade.
const brt::SegmentKernel brt::BRT_BUILD::kSegmentKernel = {};

#else

namespace brt::BRT_BUILD {
namespace {

constexpr CascadeStages kStages = kCascadeStages;
constexpr HalfbandStage kLastUp = kStages.up[5], kFirstDown = kStages.down[0];

constexpr int kSegment = kSegmentSubBlock / kLanes;  // host samples
constexpr int kSegment64x = 64 * kSegment;           // vectors at 64x
static_assert(kSegmentSubBlock % kLanes == 0);

// Outputs that are worked on together and share the vectors they read: as many as there are registers for.
constexpr int kTogether = kLanes == 8 ? 8 : 4;

// The clipping stages take 64 vectors at a time, one host sample of each segment.
constexpr int kChunk = 64;
constexpr int kChunkSeam = 8;  // room for what D0 still reads of the chunk before
constexpr int kSeam = 64;      // room for what a stage reads in front of a segment

// The newest samples of a stage's input, in the order of time.
template <int count>
struct Tail {
    double samples[count];
};

// One channel. The streams of the stages take turns between two areas, one read while the other is written.
struct State {
    Tail<kStages.up[0].mirrorLen> up0;
    Tail<kStages.up[1].mirrorLen> up1;
    Tail<kStages.up[2].mirrorLen> up2;
    Tail<kStages.up[3].mirrorLen> up3;
    Tail<kStages.up[4].mirrorLen> up4;
    Tail<kLastUp.mirrorLen> up5;
    Tail<kFirstDown.delay / 2> evens;
    Tail<kFirstDown.delay> odds;
    Tail<kStages.down[1].mirrorLen> down1;
    Tail<kStages.down[2].mirrorLen> down2;
    Tail<kStages.down[3].mirrorLen> down3;
    Tail<kStages.down[4].mirrorLen> down4;
    Tail<kStages.down[5].mirrorLen> down5;
    alignas(64) Lanes wide[kSeam + kSegment64x];        // 4x, 16x, 64x
    alignas(64) Lanes narrow[kSeam + kSegment64x / 2];  // 2x, 8x, 32x
    alignas(64) Lanes chunkEvens[kChunkSeam + kChunk], chunkOdds[kChunkSeam + kChunk];
};

// Writes what lies in front of each segment of `length` vectors, as far back as `tail` reaches, and keeps the end of
// the last segment in `tail`. Where a segment is shorter than that, the loop comes to read what it has just written.
template <int count>
BRT_LANE_OP void joinSegments(Tail<count>& tail, Lanes* x, int length) {
    for (int k = 1; k <= count; ++k) {
        const Lanes end = x[length - k];
        double& before = tail.samples[count - k];
        x[-k] = withLane0(rotateUp(end), before);
        before = lane(end, kLanes - 1);
    }
}

// Samples in the order of time to segments, and back. The last square of vectors overlaps the one before where the
// length is no multiple of the lanes.
BRT_LANE_OP void toSegments(const double* samples, Lanes* x, int length) {
    for (int next = 0; next < length; next += kLanes) {
        const int m = next + kLanes <= length ? next : length - kLanes;
        Lanes square[kLanes];
        BRT_UNROLL for (int i = 0; i < kLanes; ++i) square[i] = loadUnaligned(samples + i * length + m);
        transpose(square);
        BRT_UNROLL for (int i = 0; i < kLanes; ++i) x[m + i] = square[i];
    }
}

BRT_LANE_OP void fromSegments(const Lanes* x, double* samples, int length) {
    for (int next = 0; next < length; next += kLanes) {
        const int m = next + kLanes <= length ? next : length - kLanes;
        Lanes square[kLanes];
        BRT_UNROLL for (int i = 0; i < kLanes; ++i) square[i] = x[m + i];
        transpose(square);
        BRT_UNROLL for (int i = 0; i < kLanes; ++i) storeUnaligned(samples + i * length + m, square[i]);
    }
}

// The two samples that tap `j` of output `b` joins. `left` is the one just before the centre of output 0; the samples
// that taps take lie `step` apart.
template <int step>
BRT_LANE_OP Lanes pairSum(const Lanes* left, int b, int j) {
    return left[step * (b - j)] + left[step * (b + 1 + j)];
}

// Adds the taps from number `firstTap` on to `count` outputs in a row.
template <int count, int step>
BRT_LANE_OP void addTaps(const HalfbandFilter& filter, int firstTap, const Lanes* left, Lanes* outputs) {
    BRT_UNROLL for (int j = firstTap; j < filter.tapCount; ++j) {
        const Lanes tap = splat(filter.taps[j]);
        BRT_UNROLL for (int b = 0; b < count; ++b) outputs[b] = mulAdd(pairSum<step>(left, b, j), tap, outputs[b]);
    }
}

// The samples halfway from x[b] to x[b + 1].
template <int count>
BRT_LANE_OP void interpolate(const HalfbandFilter& filter, const Lanes* x, Lanes* outputs) {
    const Lanes tap = splat(filter.taps[0]);
    BRT_UNROLL for (int b = 0; b < count; ++b) outputs[b] = pairSum<1>(x, b, 0) * tap;
    addTaps<count, 1>(filter, 1, x, outputs);
}

template <int i, int tailLength>
[[gnu::noinline]] void stageUp(Tail<tailLength>& tail, Lanes* in, Lanes* __restrict out) {
    constexpr HalfbandStage stage = kStages.up[i];
    constexpr int length = kSegment * (2 << i), together = length % kTogether == 0 ? kTogether : 4;
    static_assert(length % together == 0 && stage.mirrorLen <= kSeam);
    joinSegments(tail, in, length);
    for (int m = 0; m < length; m += together) {
        const Lanes* x = in + m - stage.delay;
        Lanes between[together];
        interpolate<together>(stage.filter, x, between);
        BRT_UNROLL for (int b = 0; b < together; ++b) {
            out[2 * (m + b)] = x[b];
            out[2 * (m + b) + 1] = between[b];
        }
    }
}

template <int i, int tailLength>
[[gnu::noinline]] void stageDown(Tail<tailLength>& tail, Lanes* in, Lanes* __restrict out) {
    constexpr HalfbandStage stage = kStages.down[i];
    constexpr int length = kSegment * (64 >> i), together = length % kTogether == 0 ? kTogether : 4;
    static_assert(length % together == 0 && stage.mirrorLen <= kSeam);
    joinSegments(tail, in, 2 * length);
    for (int m = 0; m < length; m += together) {
        const Lanes* x = in + 2 * m - stage.delay;
        Lanes outputs[together];
        BRT_UNROLL for (int b = 0; b < together; ++b) outputs[b] = x[2 * b];
        addTaps<together, 2>(stage.filter, 0, x - 1, outputs);
        BRT_UNROLL for (int b = 0; b < together; ++b) out[m + b] = outputs[b];
    }
}

BRT_LANE_OP Lanes hardClip(Lanes x) { return minOf(maxOf(x, splat(-1.0)), splat(1.0)); }

// The soft curve times `weight`, with as few products as it takes: the numerator over x is
// (q + n1/n3) (n3 a + n2) + (n0 - n1 n2/n3), and |x + d2 a x| is d2 q + a.
struct SoftCurve {
    Lanes n0, n2, n3;

    explicit SoftCurve(Lanes weight)
        : n0(splat(kSoftN0 - kSoftN1 * kSoftN2 / kSoftN3) * weight),
          n2(splat(kSoftN2) * weight),
          n3(splat(kSoftN3) * weight) {}

    [[gnu::always_inline]] Lanes operator()(Lanes x) const {
        const Lanes a = absOf(x), q = x * x;
        const Lanes numerator = mulAdd(q + splat(kSoftN1 / kSoftN3), mulAdd(a, n3, n2), n0) * x;
        const Lanes denominator = mulAdd(q + splat(kSoftD1), mulAdd(q, splat(kSoftD2), a), splat(kSoftD0));
        return numerator / denominator;
    }
};

// How to clip: at(i) gives the function for host sample i of every segment.
template <bool residue>
struct HardClip {
    [[gnu::always_inline]] HardClip at(int) const { return *this; }
    [[gnu::always_inline]] Lanes operator()(Lanes x) const { return residue ? hardClip(x) - x : hardClip(x); }
};

template <bool residue>
struct MixedClip {
    Lanes hard;
    SoftCurve soft;

    explicit MixedClip(double hardness) : hard(splat(hardness * hardness)), soft(splat(1.0 - hardness * hardness)) {}

    [[gnu::always_inline]] MixedClip at(int) const { return *this; }
    [[gnu::always_inline]] Lanes operator()(Lanes x) const {
        const Lanes y = mulAdd(hardClip(x), hard, soft(x));
        return residue ? y - x : y;
    }
};

// Settings that change inside the sub-block: each host sample has weights of its own.
class ChangingClip {
public:
    explicit ChangingClip(const ClipSettings* settings) {
        for (int i = 0; i < kSegmentSubBlock; ++i) {
            const bool isHardOnly = !(settings[i].hardness < kHardOnlyFrom);
            const double hard = isHardOnly ? 1.0 : settings[i].hardness * settings[i].hardness;
            Weights& weights = m_weights[i % kSegment];
            weights.hard[i / kSegment] = hard;
            weights.soft[i / kSegment] = 1.0 - hard;
            weights.original[i / kSegment] = settings[i].residue ? -1.0 : 0.0;
        }
    }

    struct Function {
        Lanes hard, softWeight, original;
        SoftCurve soft;
        [[gnu::always_inline]] Lanes operator()(Lanes x) const {
            // Where the soft curve has no weight it has no say either: far out it is no number.
            const Lanes y = mulAdd(hardClip(x), hard, softWeight > splat(0.0) ? soft(x) : splat(0.0));
            return mulAdd(x, original, y);
        }
    };
    [[gnu::always_inline]] Function at(int i) const {
        const Weights& weights = m_weights[i];
        return {weights.hard, weights.soft, weights.original, SoftCurve(weights.soft)};
    }

private:
    struct Weights {
        Lanes hard, soft, original;
    };
    Weights m_weights[kSegment];
};

// From 64x up to 128x: clips `count` samples at even places, which are those of x, and as many at odd places.
template <int count, class Function>
BRT_LANE_OP void clipUp(Function clip, const Lanes* x, Lanes* __restrict evens, Lanes* __restrict odds) {
    for (int m = 0; m < count; m += kTogether) {
        const Lanes* centre = x + m - kLastUp.delay;
        Lanes between[kTogether];
        interpolate<kTogether>(kLastUp.filter, centre, between);
        BRT_UNROLL for (int b = 0; b < kTogether; ++b) evens[m + b] = clip(centre[b]);
        BRT_UNROLL for (int b = 0; b < kTogether; ++b) odds[m + b] = clip(between[b]);
    }
}

// Back down to 64x.
BRT_LANE_OP void clippedDown(const Lanes* evens, const Lanes* odds, Lanes* out) {
    constexpr int delay = kFirstDown.delay / 2;
    static_assert(kFirstDown.delay % 2 == 0);
    for (int m = 0; m < kChunk; m += kTogether) {
        Lanes outputs[kTogether];
        BRT_UNROLL for (int b = 0; b < kTogether; ++b) outputs[b] = evens[m - delay + b];
        addTaps<kTogether, 1>(kFirstDown.filter, 0, odds + m - delay - 1, outputs);
        BRT_UNROLL for (int b = 0; b < kTogether; ++b) out[m + b] = outputs[b];
    }
}

// The last stage up, the clipping function and the first stage down, from 64x to 64x in place. The stream at 128x would
// not fit into the nearest cache; it exists for a chunk at a time. Results go as far in front of where their input lay
// as the stage up still reads it.
constexpr int kInPlaceShift = kLastUp.mirrorLen;

template <class Clip>
[[gnu::noinline]] void clipStages(State& state, Lanes* x, const Clip& clip) {
    Lanes *evens = state.chunkEvens + kChunkSeam, *odds = state.chunkOdds + kChunkSeam;
    joinSegments(state.up5, x, kSegment64x);

    // The stage down begins with what the stage up makes of each segment's end: that end is made twice.
    constexpr int end = kSegment64x - kChunkSeam;
    clipUp<kChunkSeam>(clip.at(kSegment - 1), x + end, evens + kChunk - kChunkSeam, odds + kChunk - kChunkSeam);
    joinSegments(state.evens, evens, kChunk);
    joinSegments(state.odds, odds, kChunk);

    for (int i = 0; i < kSegment; ++i, x += kChunk) {
        clipUp<kChunk>(clip.at(i), x, evens, odds);
        clippedDown(evens, odds, x - kInPlaceShift);
        BRT_UNROLL for (int k = -kChunkSeam; k < 0; ++k) {
            evens[k] = evens[k + kChunk];
            odds[k] = odds[k + kChunk];
        }
    }
}

BRT_LANE_OP bool isUniform(const ClipSettings* settings) {
    for (int i = 1; i < kSegmentSubBlock; ++i)
        if (settings[i].hardness != settings[0].hardness || settings[i].residue != settings[0].residue) return false;
    return true;
}

BRT_LANE_OP void clipStages(State& state, Lanes* x, const ClipSettings* settings) {
    const double hardness = settings[0].hardness;
    const bool isHardOnly = !(hardness < kHardOnlyFrom), residue = settings[0].residue;
    if (!isUniform(settings)) {
        clipStages(state, x, ChangingClip(settings));
    } else if (isHardOnly) {
        residue ? clipStages(state, x, HardClip<true>()) : clipStages(state, x, HardClip<false>());
    } else {
        residue ? clipStages(state, x, MixedClip<true>(hardness)) : clipStages(state, x, MixedClip<false>(hardness));
    }
}

void process(void* memory, const double* in, const ClipSettings* settings, double* out) {
    State& state = *static_cast<State*>(memory);
    Lanes *wide = state.wide + kSeam, *narrow = state.narrow + kSeam;
    toSegments(in, narrow, 2 * kSegment);
    stageUp<0>(state.up0, narrow, wide);
    stageUp<1>(state.up1, wide, narrow);
    stageUp<2>(state.up2, narrow, wide);
    stageUp<3>(state.up3, wide, narrow);
    stageUp<4>(state.up4, narrow, wide);
    clipStages(state, wide, settings);
    stageDown<1>(state.down1, wide - kInPlaceShift, narrow);
    stageDown<2>(state.down2, narrow, wide);
    stageDown<3>(state.down3, wide, narrow);
    stageDown<4>(state.down4, narrow, wide);
    stageDown<5>(state.down5, wide, narrow);
    fromSegments(narrow, out, 2 * kSegment);
}

}  // namespace

const SegmentKernel kSegmentKernel = {sizeof(State), process};

}  // namespace brt::BRT_BUILD

#endif
