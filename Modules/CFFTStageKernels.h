// SPDX-License-Identifier: LicenseRef-Halyard
// The long low-pass of an FFT stage: a sinc under a Kaiser window, as taps and as the spectrum that a stage multiplies
// its blocks with. A spectrum is designed once per design and build and then shared by all channels of the process.
#pragma once

#include "Modules/CAlignedBlock.h"
#include "Modules/CRealFFT.h"
#include "Modules/ProcessorBuild.h"
#include "Platform/CCriticalSection.h"

namespace brt {

struct FftStageDesign {
    double halfLength;  // taps on each side of the centre; the window's zero lies here
    double cutoff;      // the -6 dB point as a fraction of the Nyquist frequency
    double alpha;       // the window's shape: more is a lower stop band and a wider edge
    double gain;        // at frequency 0

    bool operator==(const FftStageDesign&) const = default;
};

// Brings back the level lost by the zeros between the samples.
inline constexpr FftStageDesign kFftUpDesign = {400.0, 0.5, 19.0, 2.0};
// Takes back the gain of 2 of each of the six decimating stages before it.
inline constexpr FftStageDesign kFftDownDesign = {400.0, 0.485, 19.0, 0.015625};

constexpr int kernelHalfOf(const FftStageDesign& design) { return static_cast<int>(design.halfLength); }
constexpr int kernelLenOf(const FftStageDesign& design) { return 2 * kernelHalfOf(design) + 1; }

// [any] The taps from the centre outwards, kernelHalfOf(design) + 1 of them: the filter is the same on both sides.
void designFftStageTaps(double* taps, const FftStageDesign& design);

// [any] Fills `spectrum`, fft.size() doubles, for an element-by-element product with a packed spectrum of that size.
// The filter lies around index 0, so its spectrum is real; each bin's value stands twice, for both parts of the
// signal's. The transforms' own gain of fft.size() is taken back here. REQUIRES: kernelLenOf(design) <= fft.size().
void designFftStageSpectrum(double* spectrum, const FftStageDesign& design, CRealFFT& fft);

// The spectra of the process. Threads: any; one lock, held while a spectrum is designed.
class CFFTStageKernels {
public:
    constexpr CFFTStageKernels() = default;
    CFFTStageKernels(const CFFTStageKernels&) = delete;
    CFFTStageKernels& operator=(const CFFTStageKernels&) = delete;

    // [any] The store of the process. Like the pool of transforms, it has no destructor.
    static CFFTStageKernels& instance();

    // [any] The spectrum of a design for transforms like `fft`, 64-byte aligned; null when there is no memory for it.
    // It stands until freeAll.
    const double* find(const FftStageDesign& design, CRealFFT& fft);

    // [init] Frees every spectrum. REQUIRES: no stage uses one.
    void freeAll();

private:
    struct Entry;

    CCriticalSection m_lock{500};
    Entry* m_first BRT_GUARDED_BY(m_lock) = nullptr;  // owned, a list
};

}  // namespace brt
