// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CFFTDownsampler.h"

#include "Modules/SpectrumKernel_p.h"

#include <algorithm>
#include <utility>

namespace brt {

CFFTDownsampler::CFFTDownsampler(ProcessorBuild build) : CFFTStage(kFftDownDesign, false, build) {}

void CFFTDownsampler::reset() {
    startBlock();
    if (!isReady()) return;
    std::fill_n(m_overlap, m_geometry.overlapLen, 0.0);
    std::fill_n(m_finished, m_geometry.blockLen, 0.0);
}

void CFFTDownsampler::process(const double* in, int count, double* out) {
    if (!isReady()) {
        std::fill_n(out, count / kFactor, 0.0);
        return;
    }
    while (count > 0) {
        const int taken = std::min(count, m_toGo);
        out = read(out, taken);
        write(in, taken);
        if (m_toGo == 0) nextBlock();
        in += taken;
        count -= taken;
    }
}

void CFFTDownsampler::write(const double* in, int count) {
    std::copy_n(in, count, m_current + m_geometry.newPerBlock - m_toGo);
    m_toGo -= count;
}

// The finished block is circular: negative positions lie at its end.
double* CFFTDownsampler::read(double* out, int count) {
    int position = m_readPosition - m_geometry.kernelHalf;
    m_readPosition += count;
    if (position < 0) {
        const int wrapped = std::min(count, -position);
        out = readEven(position + m_geometry.blockLen, wrapped, out);
        position += wrapped;
        count -= wrapped;
    }
    return readEven(position, count, out);
}

void CFFTDownsampler::nextBlock() {
    exchangeOverlap(m_geometry.newPerBlock);
    m_fftIn->forward(m_current, m_current);
    m_spectra.narrow(m_current, m_kernel, m_geometry.blockLen / kFactor);
    m_fftOut->inverse(m_current, m_current);
    std::swap(m_current, m_finished);
    startBlock();
}

// Positions count samples at the higher rate, of which the finished block holds those at even places.
double* CFFTDownsampler::readEven(int position, int count, double* out) const {
    const int first = (position + 1) / kFactor, end = (position + count + 1) / kFactor;
    return end > first ? std::copy_n(m_finished + first, end - first, out) : out;
}

}  // namespace brt
