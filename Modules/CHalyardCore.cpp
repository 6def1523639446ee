// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CHalyardCore.h"

#include <algorithm>
#include <new>

#include "Modules/ClipCurve.h"
#include "Modules/HalfbandStages.h"
#include "Platform/ScopedFlushToZero.h"

namespace brt {

CHalyardCore::CHalyardCore(ProcessorBuild build)
    : m_build(build), m_fftUp(build), m_fftDown(build), m_rings(new (std::nothrow) CRingCascade(kCascadeStages)) {
    BRT_ASSERT(m_fftUp.latency() == kFftUpLatency);
    reset();
}

CHalyardCore::~CHalyardCore() = default;

bool CHalyardCore::isReady() const noexcept { return m_fftUp.isReady() && m_fftDown.isReady() && m_rings; }

void CHalyardCore::reset() noexcept {
    m_fftUp.reset();
    m_fftDown.reset();
    if (m_rings) m_rings->reset();
}

void CHalyardCore::processBlock(const double* in, double* out, int sampleCount) noexcept {
    if (sampleCount < 1) return;
    if (!isReady()) {
        std::fill_n(out, sampleCount, 0.0);
        return;
    }
    const ScopedFlushToZero flushToZero;
    const ClipSettings settings = {hardness, residue};
    while (sampleCount > 0) {
        const int count = m_rings->subBlockLength(sampleCount);
        m_fftUp.process(in, count, m_rings->input());
        const double* clipped = m_rings->process(count, settings);
        m_fftDown.process(clipped, 2 * count, out);
        in += count;
        out += count;
        sampleCount -= count;
    }
}

int CHalyardCore::latencySamples() const noexcept {
    int delay = m_fftUp.latency();
    for (const HalfbandStage& stage : kCascadeStages.up) delay = (delay + stage.delay) * 2;
    for (const HalfbandStage& stage : kCascadeStages.down) delay = (delay + stage.delay) / 2;
    return (delay + m_fftDown.latency()) / 2;
}

}  // namespace brt
