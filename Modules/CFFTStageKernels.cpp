// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CFFTStageKernels.h"

#include "Core/CBrtMemAllocator.h"
#include "Core/CProcess.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <numbers>
#include <utility>

namespace brt {
namespace {

constinit CFFTStageKernels s_kernels;
constinit std::atomic<bool> s_isStopRegistered{false};

// With no lock held: the process holds its own while it has the spectra freed.
void registerStop() {
    if (s_isStopRegistered.load(std::memory_order_relaxed)) return;
    registerProcessStop(ProcessStage::filterSpectra, [] {
        s_isStopRegistered.store(false);
        s_kernels.freeAll();
    });
    s_isStopRegistered.store(true);
}

// The modified Bessel function of the first kind and order 0.
// Abramowitz and Stegun, Handbook of Mathematical Functions, 9.8.1 and 9.8.2; relative error below 2e-7.
double besselI0(double t) {
    t = std::fabs(t);
    if (t < 3.75) {
        const double u = (t / 3.75) * (t / 3.75);
        return 1 +
               u * (3.5156229 + u * (3.0899424 + u * (1.2067492 + u * (0.2659732 + u * (0.0360768 + u * 0.0045813)))));
    }
    const double y = 3.75 / t;
    const double series =
        0.39894228 +
        y * (0.01328592 +
             y * (0.00225319 +
                  y * (-0.00157565 +
                       y * (0.00916281 + y * (-0.02057706 + y * (0.02635537 + y * (-0.01647633 + y * 0.00392377)))))));
    return std::exp(t) / std::sqrt(t) * series;
}

double kaiserWindow(int n, double halfLength, double alpha) {
    const double x = n / halfLength;
    const double squared = 1 - x * x;
    return squared < 0 ? 0.0 : besselI0(alpha * std::sqrt(squared)) / besselI0(alpha);
}

}  // namespace

void designFftStageTaps(double* taps, const FftStageDesign& design) {
    const double alpha = std::clamp(design.alpha, 1.0, 350.0);
    const double theta = design.cutoff * std::numbers::pi;
    taps[0] = design.cutoff * kaiserWindow(0, design.halfLength, alpha);
    // sin(n theta) by its recurrence; `before` is the sine of one step back.
    const double twoCos = 2 * std::cos(theta);
    double before = std::sin(-theta), sine = 0;
    for (int n = 1; n <= kernelHalfOf(design); ++n) {
        before = std::exchange(sine, twoCos * sine - before);
        taps[n] = sine * kaiserWindow(n, design.halfLength, alpha) / n / std::numbers::pi;
    }
    const double gain = design.gain;
    for (int n = 0; n <= kernelHalfOf(design); ++n) taps[n] *= gain;
}

void designFftStageSpectrum(double* spectrum, const FftStageDesign& design, CRealFFT& fft) {
    const int size = fft.size(), half = kernelHalfOf(design);
    designFftStageTaps(spectrum, design);
    std::fill(spectrum + half + 1, spectrum + size, 0.0);
    for (int n = 0; n <= half; ++n) spectrum[n] *= fft.invSize();
    for (int n = 1; n <= half; ++n) spectrum[size - n] = spectrum[n];
    fft.forward(spectrum, spectrum);
    for (int k = 1; k < size / 2; ++k) spectrum[2 * k + 1] = spectrum[2 * k];
}

struct CFFTStageKernels::Entry : CBrtMemAllocator {
    Entry(const FftStageDesign& d, const CRealFFT& fft) : design(d), order(fft.order()), build(fft.build()) {}

    const FftStageDesign design;
    const int order;
    const ProcessorBuild build;
    CAlignedBlock<double> spectrum;
    Entry* next = nullptr;
};

CFFTStageKernels& CFFTStageKernels::instance() { return s_kernels; }

const double* CFFTStageKernels::find(const FftStageDesign& design, CRealFFT& fft) {
    if (this == &s_kernels) registerStop();
    const CLock lock(m_lock);
    for (const Entry* entry = m_first; entry != nullptr; entry = entry->next)
        if (entry->design == design && entry->order == fft.order() && entry->build == fft.build())
            return entry->spectrum.data();

    auto* entry = new Entry(design, fft);
    if (!entry->spectrum.allocate(static_cast<std::size_t>(fft.size()))) {
        delete entry;
        return nullptr;
    }
    designFftStageSpectrum(entry->spectrum.data(), design, fft);
    entry->next = std::exchange(m_first, entry);
    return entry->spectrum.data();
}

void CFFTStageKernels::freeAll() {
    const CLock lock(m_lock);
    while (m_first != nullptr) delete std::exchange(m_first, m_first->next);
}

}  // namespace brt
