// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CFFTUpsampler.h"

#include "Modules/SpectrumKernel_p.h"

#include <algorithm>
#include <utility>

namespace brt {

CFFTUpsampler::CFFTUpsampler(ProcessorBuild build) : CFFTStage(kFftUpDesign, true, build) {}

void CFFTUpsampler::reset() {
    startBlock();
    if (!isReady()) return;
    const FftStageGeometry& g = m_geometry;
    std::fill_n(m_overlap, g.overlapLen, 0.0);
    // What is read before the next block is complete: from kernelHalf before the start on, and so much short of the
    // end.
    std::fill_n(m_finished + g.blockLen - g.kernelHalf, g.kernelHalf, 0.0);
    std::fill_n(m_finished, g.newPerBlock - g.kernelHalf, 0.0);
}

void CFFTUpsampler::process(const double* in, int count, double* out) {
    if (!isReady()) {
        std::fill_n(out, 2 * count, 0.0);
        return;
    }
    for (int left = kFactor * count; left > 0;) {
        const int position = m_geometry.newPerBlock - m_toGo, taken = std::min(left, m_toGo);
        std::copy_n(in, taken / kFactor, m_current + position / kFactor);
        read(position - m_geometry.kernelHalf, taken, out);
        in += taken / kFactor;
        out += taken;
        left -= taken;
        m_toGo -= taken;
        if (m_toGo == 0) completeBlock();
    }
}

void CFFTUpsampler::completeBlock() {
    exchangeOverlap(m_geometry.newPerBlock / kFactor);
    m_fftIn->forward(m_current, m_current);
    m_spectra.widen(m_current, m_kernel, m_geometry.blockLen / kFactor);
    m_fftOut->inverse(m_current, m_current);
    std::swap(m_current, m_finished);
    startBlock();
}

// The finished block is circular: negative positions lie at its end.
void CFFTUpsampler::read(int position, int count, double* out) const {
    if (position < 0) {
        const int wrapped = std::min(count, -position);
        out = std::copy_n(m_finished + m_geometry.blockLen + position, wrapped, out);
        position += wrapped;
        count -= wrapped;
    }
    std::copy_n(m_finished + position, count, out);
}

}  // namespace brt
