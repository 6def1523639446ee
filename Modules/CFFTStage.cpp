// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CFFTStage.h"

#include "Modules/ProcessorBuild_p.h"
#include "Modules/SpectrumKernel_p.h"

#include <algorithm>

namespace brt {

BRT_TABLE_PER_BUILD(SpectrumKernel, kSpectrumKernel, spectrumKernel)

namespace {

FftStageGeometry geometryOf(const FftStageDesign& design, bool isUp) {
    constexpr int factor = CFFTStage::kFactor;
    FftStageGeometry g;
    g.kernelHalf = kernelHalfOf(design);
    g.kernelLen = kernelLenOf(design);
    while (1 << g.kernelOrder < g.kernelLen) ++g.kernelOrder;
    g.blockLen = 1 << (g.kernelOrder + 1);
    if (isUp) {
        g.overlapLen = (factor + g.kernelLen - 2) / factor;
        g.newPerBlock = g.blockLen - factor * g.overlapLen;
        g.latency = g.newPerBlock + g.kernelHalf;
    } else {
        const int rest = (g.blockLen - (g.kernelLen - 1)) % factor;
        g.newPerBlock = g.blockLen - (g.kernelLen - 1) - rest;
        g.overlapLen = g.kernelLen - 1 + rest;
        g.latency = g.newPerBlock + g.kernelHalf - g.kernelHalf % factor;
    }
    return g;
}

}  // namespace

CFFTStage::CFFTStage(const FftStageDesign& design, bool isUp, ProcessorBuild build)
    : m_geometry(geometryOf(design, isUp)), m_spectra(spectrumKernel(build)) {
    startBlock();
    const int longOrder = m_geometry.kernelOrder + 1, shortOrder = longOrder - kFactorLog2;
    CRealFFTPool& pool = CRealFFTPool::instance();
    m_fftIn = pool.acquire(isUp ? shortOrder : longOrder, build);
    m_fftOut = pool.acquire(isUp ? longOrder : shortOrder, build);

    const int size = 2 * m_geometry.blockLen + m_geometry.overlapLen;
    if (!m_fftIn || !m_fftOut || !m_blockStore.allocate(static_cast<std::size_t>(size))) return;
    m_current = m_blockStore.data();
    m_finished = m_current + m_geometry.blockLen;
    m_overlap = m_finished + m_geometry.blockLen;
    m_kernel = CFFTStageKernels::instance().find(design, isUp ? *m_fftOut.get() : *m_fftIn.get());
}

void CFFTStage::exchangeOverlap(int count) {
    const int overlapLen = m_geometry.overlapLen;
    std::copy_n(m_overlap, overlapLen, m_current + count);
    std::copy_n(m_current + count - overlapLen, overlapLen, m_overlap);
}

}  // namespace brt
