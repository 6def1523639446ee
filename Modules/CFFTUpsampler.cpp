// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CFFTUpsampler.h"

#include "Modules/SpectrumKernel_p.h"

#include <algorithm>
#include <utility>

namespace brt {

CFFTUpsampler::CFFTUpsampler(ProcessorBuild build) : CFFTStage(kFftUpDesign, true, build) {}

void CFFTUpsampler::reset() {
    startBlock();
    m_isTransformDue = false;
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
    while (count > 0) {
        const int taken = std::min(count, m_toGo / kFactor);
        write(in, taken);
        read(out, kFactor * taken);
        if (m_toGo == 0) nextBlock();
        in += taken;
        out += kFactor * taken;
        count -= taken;
    }
}

void CFFTUpsampler::write(const double* in, int count) {
    std::copy_n(in, count, m_current + (m_geometry.newPerBlock - m_toGo) / kFactor);
    m_toGo -= kFactor * count;
}

// The finished block is circular: negative positions lie at its end.
void CFFTUpsampler::read(double* out, int count) {
    if (m_isTransformDue) transform();
    int position = m_readPosition - m_geometry.kernelHalf;
    m_readPosition += count;
    if (position < 0) {
        const int wrapped = std::min(count, -position);
        out = std::copy_n(m_finished + m_geometry.blockLen + position, wrapped, out);
        position += wrapped;
        count -= wrapped;
    }
    std::copy_n(m_finished + position, count, out);
}

void CFFTUpsampler::nextBlock() {
    exchangeOverlap(m_geometry.newPerBlock / kFactor);
    std::swap(m_current, m_finished);
    startBlock();
    m_isTransformDue = true;
}

void CFFTUpsampler::transform() {
    m_fftIn->forward(m_finished, m_finished);
    m_spectra.widen(m_finished, m_kernel, m_geometry.blockLen / kFactor);
    m_fftOut->inverse(m_finished, m_finished);
    m_isTransformDue = false;
}

}  // namespace brt
