// SPDX-License-Identifier: LicenseRef-Halyard
// How much the clipping function takes away from a signal, without clipping it: for each sample the factor by which the
// function scales it, the smallest at once and back towards 1 with a release. The function is that of ClipCurve.h with
// its weights as they stand: near 100% this one does not switch to the hard limit alone.
// Owner: a module. Threads: audio. Allocates nothing.
#pragma once

#include <cmath>

#include "Modules/MeterRoutines.h"
#include "Platform/Annotations.h"

namespace brt {

class CGainReductionCore {
public:
    explicit CGainReductionCore(ProcessorBuild build = processorBuild()) noexcept : m_kernel(&meterKernel(build)) {}

    // Starts over: nothing is taken away.
    void setUp(double sampleRate, double releaseSeconds) noexcept {
        m_release = releaseCoefficient(releaseSeconds, sampleRate);
        m_power = 1.0;
    }
    // 0 soft to 1 hard.
    void setHardness(double hardness) noexcept { m_hardness = hardness; }

    void process(const double* samples, int count) noexcept BRT_REALTIME {
        m_kernel->gainReduction(m_power, m_release, m_hardness, samples, count);
    }

    // The factor as it stands.
    double factor() const noexcept { return std::sqrt(m_power); }

private:
    const MeterKernel* const m_kernel;
    double m_release = 1.0;
    double m_hardness = 1.0;
    double m_power = 1.0;
};

}  // namespace brt
