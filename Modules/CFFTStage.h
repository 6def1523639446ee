// SPDX-License-Identifier: LicenseRef-Halyard
// What the two FFT stages of the cascade share: the geometry of the blocks, their memory, their transforms and filter.
//
// Samples come in by any count and go out at once: new ones gather in `current` while old ones are read from
// `finished`. When `current` is complete it is filtered as a whole and the two change places. So the block grid runs on
// whatever the calls' lengths are, the output is the same bit for bit for any of them, and all the work of a block
// falls on one call: that which completes it, or the next one. Block lengths and positions count samples at the higher
// of the two rates.
//
// The filter lies around index 0 of a circular convolution: the samples before the new ones stand behind them in the
// block, where the convolution looks for negative time.
// Owner: the cascade, by value. Threads: one at a time. Memory is taken in the constructor only.
#pragma once

#include "Modules/CAlignedBlock.h"
#include "Modules/CFFTStageKernels.h"
#include "Modules/CRealFFTPool.h"
#include "Platform/Annotations.h"

namespace brt {

struct SpectrumKernel;

// The block grid that follows from a kernel's length.
struct FftStageGeometry {
    int kernelLen = 0, kernelHalf = 0;
    int kernelOrder = 0;  // the least power of 2 that holds the kernel
    int blockLen = 0;     // of the longer transform
    int overlapLen = 0;   // samples of the block before, at the rate of the input
    int newPerBlock = 0;  // samples that complete a block
    int latency = 0;
};

class CFFTStage {
public:
    static constexpr int kFactor = 2, kFactorLog2 = 1;  // between the two rates

    // [any] False when the constructor found no memory: process() then gives silence.
    bool isReady() const { return m_kernel != nullptr; }

    const FftStageGeometry& geometry() const { return m_geometry; }
    int latency() const { return m_geometry.latency; }  // in samples at the higher rate
    int toGo() const { return m_toGo; }                 // until the block is complete, at the higher rate

protected:
    // `isUp`: the input is at the lower rate.
    CFFTStage(const FftStageDesign& design, bool isUp, ProcessorBuild build);
    ~CFFTStage() = default;

    // Exchanges the newest overlapLen of the `count` new samples of `current`, which the next block will need, for
    // those kept from the block before, which this block needs behind the new ones.
    void exchangeOverlap(int count) BRT_REALTIME;
    void startBlock() {
        m_toGo = m_geometry.newPerBlock;
        m_readPosition = 0;
    }

    const FftStageGeometry m_geometry;
    int m_toGo = 0;
    int m_readPosition = 0;  // of the next sample read, counted like the new samples of the block
    const SpectrumKernel& m_spectra;
    CRealFFTRef m_fftIn, m_fftOut;
    CAlignedBlock<double> m_blockStore;  // two blocks, then the overlap
    double* m_current = nullptr;
    double* m_finished = nullptr;
    double* m_overlap = nullptr;
    const double* m_kernel = nullptr;  // shared: blockLen entries
};

}  // namespace brt
