// SPDX-License-Identifier: LicenseRef-Halyard
// What the chain does on this machine, found by sending signals through it. Nothing here is known beforehand.
// Levels are factors of full scale, so that exact silence is 0; frequencies of the linear path are fractions of the
// sample rate, as the chain is the same at every rate.
#pragma once

#include <string>
#include <vector>

#include "Tools/Halyard/CProcessor.h"
#include "Tools/Halyard/ToneMeasurement.h"

namespace brt {

inline constexpr double kPassBandEnd = 0.47;

// The chain below clipping, as a filter.
class CImpulseResponse {
public:
    CImpulseResponse();  // measures it

    int peakSample() const noexcept { return m_peakSample; }
    double peakLevel() const;      // of an impulse of 1
    int leadingZeroCount() const;  // samples that are exactly 0, whatever comes in

    // Gain at a fraction of the sample rate, 0 to 0.5.
    double gainAt(double fraction) const;

    // The largest departure from 0 dB up to the end of the pass band.
    double passBandErrorDb() const;

    // Where the gain falls to a half.
    double halfGainFraction() const;

private:
    std::vector<double> m_response;
    int m_peakSample = 0;
};

// What must cancel, and by how much it does.
struct NullMeasurements {
    double toneError;        // sine of 0.9 at 0.1234 of the rate: output less input, aligned; largest sample
    double multitoneError;   // 48 sines from 0.005 to 0.465 of the rate, 0.9 together: the same
    double silentResidue;    // the residue of that multitone, largest sample
    double unclippedLine;    // sine of 0.5 near 5/48 of the rate: the loudest line that is not the sine
    double residueSumError;  // multitone clipped: output less residue less the unclipped chain, largest sample
};

NullMeasurements measureNulls();

struct AliasRow {
    double amplitude;
    double hardnessPercent;
    ToneMeasurement tone;
    double idealWorstRatio;  // worst line to sine of clipping at 128 times the rate with perfect filters; 0: not known
};

std::vector<AliasRow> measureAliases(int rateHz);

struct CostMeasurement {
    double hardnessPercent;
    double nanosecondsPerSample;   // of one channel in blocks of 512
    double meanCallMicroseconds;   // of 64 frames
    double worstCallMicroseconds;  // the dearest place in the period of the long filters

    double channelsInRealTime(double rateHz) const { return 1e9 / (nanosecondsPerSample * rateHz); }
};

CostMeasurement measureCost(double hardnessPercent);

}  // namespace brt
