// SPDX-License-Identifier: LicenseRef-Halyard
// Lets a test run the lane operations of every processor build on arrays.
#pragma once

namespace brt {

// Each takes `in` of two vectors and writes `out` of one vector; transpose takes and writes lanes * lanes values.
struct LaneProbe {
    int lanes;
    void (*reverse)(const double* in, double* out);
    void (*rotateUp)(const double* in, double* out);
    void (*withLane0)(const double* in, double* out);  // the value is the first of the second vector
    void (*even)(const double* in, double* out);
    void (*odd)(const double* in, double* out);
    void (*zipLow)(const double* in, double* out);
    void (*zipHigh)(const double* in, double* out);
    void (*minOf)(const double* in, double* out);
    void (*maxOf)(const double* in, double* out);
    void (*absOf)(const double* in, double* out);
    void (*transpose)(const double* in, double* out);
    // in[i] * in[i + count] + in[i + 2 * count], and likewise a * b - c, c - a * b: of vectors, then of doubles.
    void (*mulAdds)(const double* in, double* vectors, double* doubles, int count);
};

namespace portable {
extern const LaneProbe kLaneProbe;
}
namespace baseline {
extern const LaneProbe kLaneProbe;
}
namespace avx2 {
extern const LaneProbe kLaneProbe;
}
namespace avx512 {
extern const LaneProbe kLaneProbe;
}

}  // namespace brt
