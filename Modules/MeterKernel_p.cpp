// SPDX-License-Identifier: LicenseRef-Halyard
// The loops of the meters, compiled once per processor build. They depend on their own results sample by sample, so all
// but the curve of the gain reduction run on single numbers; what a build brings them is the fused multiply-add.
#include "Modules/ClipCurve.h"
#include "Modules/Lanes_p.h"
#include "Modules/MeterKernel.h"

namespace brt::BRT_BUILD {
namespace {

BRT_LANE_OP double squareOf(double x) { return minOf(x * x, kLargestSquare); }
// value + (target - value) * coefficient, in the form in which one sample waits least for the one before.
BRT_LANE_OP double smoothed(double value, double target, double coefficient) {
    return mulAdd(value, 1.0 - coefficient, target * coefficient);
}
// At once to one side, smoothed to the other. Upwards that is the larger of the target and the smoothed value, which
// lies between the old one and the target. Downwards its rounding error would show beside a small target.
BRT_LANE_OP double risen(double value, double target, double coefficient) {
    return maxOf(target, smoothed(value, target, coefficient));
}
BRT_LANE_OP double fallen(double value, double target, double coefficient) {
    return target < value ? target : smoothed(value, target, coefficient);
}
BRT_LANE_OP double ratio(double a, double b) { return (a + kRatioFloor) / (b + kRatioFloor); }

void level(MeterValues& values, const MeterCoefficients& coefficients, const double* samples, const double*,
           int count) {
    MeterValues v = values;
    for (int i = 0; i < count; ++i) {
        const double square = squareOf(samples[i]);
        v.powerA = smoothed(v.powerA, square, coefficients.rms);
        v.envelope = risen(v.envelope, v.powerA, coefficients.release);
        v.largestSquare = maxOf(square, v.largestSquare);
        v.blockPeak = maxOf(v.blockPeak, maxOf(square, v.envelope));
    }
    values = v;
}

BRT_LANE_OP void addPowers(MeterValues& v, const MeterCoefficients& coefficients, double a, double b) {
    const double squareA = squareOf(a), squareB = squareOf(b);
    v.powerA = smoothed(v.powerA, squareA, coefficients.rms);
    v.powerB = smoothed(v.powerB, squareB, coefficients.rms);
    v.largestSquare = maxOf(maxOf(squareA, squareB), v.largestSquare);
}

void difference(MeterValues& values, const MeterCoefficients& coefficients, const double* first, const double* second,
                int count) {
    MeterValues v = values;
    for (int i = 0; i < count; ++i) addPowers(v, coefficients, first[i], second[i]);
    values = v;
}

void biasedDifference(MeterValues& values, const MeterCoefficients& coefficients, const double* first,
                      const double* second, int count) {
    MeterValues v = values;
    for (int i = 0; i < count; ++i) {
        addPowers(v, coefficients, first[i], second[i]);
        const double now = ratio(v.powerA, v.powerB);
        v.bias = smoothed(v.bias, now, coefficients.bias);
        v.envelope = now / v.bias;
        v.blockPeak = minOf(v.blockPeak, v.envelope);
    }
    values = v;
}

template <bool isBiased>
void compression(MeterValues& values, const MeterCoefficients& coefficients, const double* samples, const double*,
                 int count) {
    MeterValues v = values;
    for (int i = 0; i < count; ++i) {
        const double original = squareOf(samples[i]);
        double square = original;
        if (isBiased) {
            square = minOf(ratio(original, v.bias), kLargestSquare);
            v.bias = smoothed(v.bias, original, coefficients.bias);
        }
        v.powerA = smoothed(v.powerA, square, coefficients.rms);
        v.envelope = fallen(v.envelope, v.powerA, coefficients.release);
        v.largestSquare = maxOf(original, v.largestSquare);
        v.blockPeak = minOf(v.blockPeak, minOf(square, v.envelope));
    }
    values = v;
}

BRT_LANE_OP double filtered(MeterFilter& filter, double x) {
    const double state = negMulAdd(filter.a2, filter.state2, negMulAdd(filter.a1, filter.state1, x));
    const double y = mulAdd(filter.b2, filter.state2, mulAdd(filter.b1, filter.state1, filter.b0 * state));
    filter.state2 = filter.state1;
    filter.state1 = state;
    return y;
}

void loudness(MeterValues& values, LoudnessWindow& window, const double* samples, int count) {
    MeterValues v = values;
    LoudnessWindow w = window;
    for (int i = 0; i < count; ++i) {
        const double magnitude = minOf(absOf(samples[i]), kLargestMagnitude);
        v.blockPeak = maxOf(magnitude, v.blockPeak);
        v.largestSquare = maxOf(magnitude * magnitude, v.largestSquare);
        const double x = magnitude < kLargestMagnitude ? samples[i] : kLargestMagnitude;
        const double square = squareOf(filtered(w.shelf, filtered(w.highPass, x)));
        if (w.isFull) w.sum -= w.squares[w.next];
        w.squares[w.next] = square;
        w.sum += square;
        w.sumOfTurn += square;
        if (++w.next == w.length) {
            w.sum = w.sumOfTurn;
            w.sumOfTurn = 0.0;
            w.next = 0;
            w.isFull = true;
        }
    }
    values = v;
    window = w;
}

// The square of the factor by which the clipping function scales samples of magnitude |x|; `hard` weighs the limit.
BRT_LANE_OP Lanes scaleSquared(Lanes x, Lanes hard) {
    const Lanes a = minOf(absOf(x), splat(kLargestMagnitude)), q = a * a;
    const Lanes numerator =
        mulAdd(mulAdd(splat(kSoftN3), a, splat(kSoftN2)), q, mulAdd(splat(kSoftN1), a, splat(kSoftN0)));
    const Lanes denominator = mulAdd(q + splat(kSoftD1), mulAdd(splat(kSoftD2), q, a), splat(kSoftD0));
    const Lanes soft = numerator * a / denominator;
    const Lanes limited = mulAdd(hard, minOf(a, splat(1.0)), splat(kRatioFloor));
    const Lanes scale = mulAdd(soft, splat(1.0) - hard, limited) / (a + splat(kRatioFloor));
    return scale * scale;
}

void gainReduction(double& power, double release, double hardness, const double* samples, int count) {
    const Lanes hard = splat(hardness * hardness);
    double state = power;
    for (int i = 0; i < count; i += kLanes) {
        const int used = count - i < kLanes ? count - i : kLanes;
        alignas(64) double targets[kLanes] = {};
        if (used == kLanes) {
            store(targets, scaleSquared(loadUnaligned(samples + i), hard));
        } else {
            for (int k = 0; k < used; ++k) targets[k] = samples[i + k];
            store(targets, scaleSquared(load(targets), hard));
        }
        for (int k = 0; k < used; ++k) state = fallen(state, targets[k], release);
    }
    power = state;
}

}  // namespace

extern const MeterKernel kMeterKernel;
const MeterKernel kMeterKernel = {level,    difference,   biasedDifference, compression<false>, compression<true>,
                                  loudness, gainReduction};

}  // namespace brt::BRT_BUILD
