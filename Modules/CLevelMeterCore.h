// SPDX-License-Identifier: LicenseRef-Halyard
// A meter's arithmetic: samples in, a level and a held peak out. Which of five routines it runs is settled by `setUp`.
//
//   kLevel        mean power with an instant attack and a slow release; the peak is the largest of it and of all
//   samples kDifference   the ratio of two signals' mean powers, with a bias held against the ratio's own long-term
//   value kCompression  as kLevel with all directions turned round, for signals that are factors of reduction kLoudness
//   mean of squares behind the two filters of a loudness; the peak is that of the samples themselves
//
// Peaks are collected in measuring blocks of a fortieth of a second and held for a number of blocks. After a block with
// samples that are no numbers, or beyond all measure, the meter goes on from what it had before that block: its
// smoothed values would take many release times to come down again. The held peak keeps it for its time. Owner: a
// module. Threads: audio. Allocates nothing.
#pragma once

#include "Modules/CPeakHold.h"
#include "Modules/MeterRoutines.h"

namespace brt {

enum class EMeterRoutine { kLevel, kDifference, kCompression, kLoudness };

struct MeterSettings {
    EMeterRoutine routine = EMeterRoutine::kLevel;
    bool isBiased = false;  // kDifference and kCompression
    double sampleRate = 44100.0;
    double peakSeconds = 1.0;
    double rmsSeconds = 0.15;
    double releaseSeconds = 0.0;
    double biasSeconds = 1.0;

    // Samples of a measuring block, which has no part in the rate of frames.
    int blockLength() const noexcept { return samplesOf(1.0 / 40.0, sampleRate); }
    // Values that the rings of `setUp` hold; the window is needed for kLoudness only.
    int peakBlocks() const noexcept { return samplesOf(peakSeconds, sampleRate / blockLength()); }
    int windowLength() const noexcept { return samplesOf(rmsSeconds, sampleRate); }
};

class CLevelMeterCore {
public:
    explicit CLevelMeterCore(ProcessorBuild build = processorBuild()) noexcept : m_kernel(&meterKernel(build)) {}

    // Starts over. The rings belong to the caller and stay until the next call; `window` may be null without kLoudness.
    void setUp(const MeterSettings& settings, double* peakRing, double* window) noexcept;

    // `second` is read by kDifference alone.
    void process(const double* first, const double* second, int count) noexcept BRT_REALTIME;

    // What it shows now; `peakGain` scales the peak beside `gain`.
    MeterReading read(double gain, double peakGain) const noexcept BRT_REALTIME;

private:
    void endBlock() noexcept;
    bool isRatioOnly() const noexcept {
        return m_settings.routine == EMeterRoutine::kDifference && !m_settings.isBiased;
    }

    const MeterKernel* const m_kernel;
    MeterSettings m_settings;
    MeterKernel::Routine m_routine = nullptr;  // null: kLoudness
    MeterCoefficients m_coefficients;
    MeterValues m_values;
    LoudnessWindow m_window;
    // As they were at the end of the last measuring block that was sound.
    MeterValues m_soundValues;
    LoudnessWindow m_soundWindow;
    CPeakHold m_peak;
    int m_blockLength = 1;
    int m_blockLeft = 1;
};

}  // namespace brt
