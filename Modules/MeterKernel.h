// SPDX-License-Identifier: LicenseRef-Halyard
// The loops over samples that the meters run, one set per processor build. Each takes a stretch that lies within one
// measuring block and leaves what it has come to in the values that it is given.
//
// A squared sample that is no number, or above kLargestSquare, counts as kLargestSquare: a meter shows that something
// is wrong, and its own arithmetic stays finite.
#pragma once

namespace brt {

inline constexpr double kLargestSquare = 1e30;
inline constexpr double kLargestMagnitude = 1e15;
// Keeps ratios of powers and of levels finite, and that of silence to silence 1.
inline constexpr double kRatioFloor = 1e-15;

// What one-pole smoothing takes of the way to its target each sample, by what it smooths.
struct MeterCoefficients {
    double rms = 1.0;
    double release = 1.0;
    double bias = 1.0;
};

// Linear power but for `blockPeak` of the loudness routine, which is a magnitude.
struct MeterValues {
    double powerA = 0.0;
    double powerB = 0.0;    // of the second signal
    double envelope = 0.0;  // what the level is read from
    double bias = 0.0;      // the long-term value that others are held against
    double blockPeak = 0.0;
    double largestSquare = 0.0;  // of the measuring block
};

// A second-order section in direct form II, its coefficients scaled so that a0 is 1.
struct MeterFilter {
    double b0 = 1.0, b1 = 0.0, b2 = 0.0, a1 = 0.0, a2 = 0.0;
    double state1 = 0.0, state2 = 0.0;
};

// The mean of squares over a window that moves with the signal. Rounding errors of the running sum last for one turn of
// the ring: a second sum, built from nothing in each turn, then takes its place.
struct LoudnessWindow {
    MeterFilter highPass, shelf;
    double* squares = nullptr;  // a ring; not owned
    int length = 1;
    int next = 0;         // where the next square goes
    bool isFull = false;  // the ring has gone round once
    double sum = 0.0;
    double sumOfTurn = 0.0;
};

struct MeterKernel {
    using Routine = void (*)(MeterValues& values, const MeterCoefficients& coefficients, const double* first,
                             const double* second, int count);

    Routine level;
    Routine difference;
    Routine biasedDifference;
    Routine compression;
    Routine biasedCompression;
    void (*loudness)(MeterValues& values, LoudnessWindow& window, const double* samples, int count);
    // `power`: the square of the factor by which the clipping function scales a sample, its smallest held.
    void (*gainReduction)(double& power, double release, double hardness, const double* samples, int count);
};

}  // namespace brt
