// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CHalyardCore.h"

#include <algorithm>
#include <new>

#include "Modules/HalfbandStages.h"
#include "Platform/ScopedFlushToZero.h"

namespace brt {

namespace {

// How far the cascade may fall behind to keep two transforms out of one call; see processSegments.
constexpr int kMaxLag = 3 * CSegmentCascade::kSubBlock;

}  // namespace

CHalyardCore::CHalyardCore(ProcessorBuild build) : m_build(build), m_fftUp(build), m_fftDown(build) {
    static_assert(kHop % CSegmentCascade::kSubBlock == 0, "the last sub-block of a hop ends with the hop");
    BRT_ASSERT(m_fftUp.latency() == kFftUpLatency);
    BRT_ASSERT(m_fftUp.geometry().newPerBlock == 2 * kHop && m_fftDown.geometry().newPerBlock == 2 * kHop);
    if (!CSegmentCascade::existsFor(build))
        m_rings.reset(new (std::nothrow) CRingCascade(kCascadeStages));
    else if (m_arrivedWith.allocate(kHop))
        m_segments.reset(new (std::nothrow) CSegmentCascade(build));
    reset();
}

CHalyardCore::~CHalyardCore() = default;

bool CHalyardCore::isReady() const noexcept {
    return m_fftUp.isReady() && m_fftDown.isReady() && (m_rings || (m_segments && m_segments->isReady()));
}

void CHalyardCore::reset() noexcept {
    m_fftUp.reset();
    m_fftDown.reset();
    if (m_rings) m_rings->reset();
    if (m_segments) m_segments->reset();
    m_arrived = m_clipped = 0;
}

int CHalyardCore::latencySamples() const noexcept {
    int delay = m_fftUp.latency();
    for (const HalfbandStage& stage : kCascadeStages.up) delay = (delay + stage.delay) * 2;
    for (const HalfbandStage& stage : kCascadeStages.down) delay = (delay + stage.delay) / 2;
    return (delay + m_fftDown.latency()) / 2;
}

// All hardnesses that mean the hard limit alone are one setting, so that a glide among them changes nothing.
ClipSettings CHalyardCore::settings() const noexcept { return {hardness < kHardOnlyFrom ? hardness : 1.0, residue}; }

void CHalyardCore::processBlock(const double* in, double* out, int sampleCount) noexcept {
    if (sampleCount < 1) return;
    const ScopedFlushToZero flushToZero;
    if (!isReady())
        std::fill_n(out, sampleCount, 0.0);
    else if (m_segments)
        processSegments(in, out, sampleCount);
    else
        processRings(in, out, sampleCount);
}

void CHalyardCore::processRings(const double* in, double* out, int sampleCount) noexcept {
    const ClipSettings now = settings();
    while (sampleCount > 0) {
        const int count = m_rings->subBlockLength(sampleCount);
        m_fftUp.process(in, count, m_rings->input());
        const double* clipped = m_rings->process(count, now);
        m_fftDown.process(clipped, 2 * count, out);
        in += count;
        out += count;
        sampleCount -= count;
    }
}

void CHalyardCore::processSegments(const double* in, double* out, int sampleCount) noexcept {
    const ClipSettings now = settings();
    bool hasTransformed = false;
    while (sampleCount > 0) {
        const int count = std::min(sampleCount, kHop - m_arrived);
        m_fftUp.write(in, count);
        m_fftDown.read(out, 2 * count);
        std::fill_n(m_arrivedWith.data() + m_arrived, count, now);
        m_arrived += count;
        in += count;
        out += count;
        sampleCount -= count;

        // The first sub-block of a hop brings a transform with it. A call that has just done the one at the end of the
        // hop before leaves it to the next call, so that the longest call stays short, unless too much would gather.
        const bool isTransformNext = m_clipped == 0;
        if (!(isTransformNext && hasTransformed) || m_arrived >= kMaxLag) clipWhatIsComplete();
        if (m_arrived == kHop) {
            m_fftUp.nextBlock();
            m_fftDown.nextBlock();
            m_arrived = m_clipped = 0;
            hasTransformed = true;
        }
    }
}

void CHalyardCore::clipWhatIsComplete() noexcept {
    constexpr int subBlock = CSegmentCascade::kSubBlock;
    alignas(kCacheLineBytes) double samples[2 * subBlock];
    while (m_arrived - m_clipped >= subBlock) {
        m_fftUp.read(samples, 2 * subBlock);
        m_segments->process(samples, m_arrivedWith.data() + m_clipped, samples);
        m_fftDown.write(samples, 2 * subBlock);
        m_clipped += subBlock;
    }
}

}  // namespace brt
