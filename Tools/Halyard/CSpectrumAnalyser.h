// SPDX-License-Identifier: LicenseRef-Halyard
// Spectra for measuring and for pictures, in amplitudes: a sine of amplitude 1 that falls on a bin reads 1 there.
// Owner: who measures. Threads: one at a time.
#pragma once

#include <vector>

#include "Modules/CAlignedBlock.h"
#include "Modules/CRealFFTPool.h"

namespace brt {

enum class SpectrumWindow {
    kNone,            // for sounds all of whose lines repeat a whole number of times in the stretch: none leaks
    kBlackmanHarris,  // for music: 7 terms, side lobes below -160 dB, a line is 14 bins wide
};

class CSpectrumAnalyser {
public:
    // Stretches of 2^order samples. REQUIRES: order from 2 to 24.
    CSpectrumAnalyser(int order, SpectrumWindow window);

    int size() const noexcept { return static_cast<int>(m_window.size()); }

    // size() / 2 + 1 bins, from 0 to half the rate, of size() samples.
    std::vector<double> amplitudes(const double* samples);

    // The power average of stretches that overlap by half; silence is put behind a sound shorter than one.
    std::vector<double> averageAmplitudes(const std::vector<double>& samples);

private:
    std::vector<double> m_window;
    CRealFFTRef m_transform;
    CAlignedBlock<double> m_spectrum;
};

}  // namespace brt
