// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CDSPModDelay.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace brt {

CRaisedCosine::CRaisedCosine(int lengthSamples) noexcept {
    const double step = std::numbers::pi / std::max(lengthSamples, 1);
    m_previous = 0.5 * std::cos(step);  // the cosine is even: one step before the beginning
    m_factor = 2.0 * std::cos(step);
}

CDSPModDelay::CDSPModDelay(CAudioBufferPool& pool, double sampleRate, int delaySamples)
    : m_pool(pool),
      m_fadeSamples(std::max(1, static_cast<int>(std::lround(kFadeSeconds * sampleRate)))),
      m_delay(delaySamples),
      m_fade(m_fadeSamples) {
    growRing();
}

// Enough that a step never overwrites what it is about to read. What has been written keeps its distance.
void CDSPModDelay::growRing() {
    const int longest = std::max({m_delay, m_oldDelay, m_fadeSamples});
    const int needed = (kBlockSamples + longest + kStepSamples - 1) / kBlockSamples;
    const int added = needed - m_blocks.count();
    if (added <= 0) return;
    // New ones go between the newest sample and the oldest, which is the one at the write position.
    const int offset = m_write % kBlockSamples;
    const int place = m_write / kBlockSamples + (offset > 0 ? 1 : 0);
    for (int i = 0; i < added; ++i) m_blocks.insertAt(place, new CBlock);
    // A block may hold both: the oldest samples, behind the write position, move on to the last of the new blocks.
    if (offset == 0 || !m_blocks[place - 1].buffer) return;
    double* const split = m_blocks[place - 1].buffer.samples();
    CAudioBufferRef& oldest = m_blocks[place - 1 + added].buffer;
    oldest = m_pool.takeSilent(kBlockSamples);
    std::copy_n(split + offset, kBlockSamples - offset, oldest.samples() + offset);
    std::fill_n(split + offset, kBlockSamples - offset, 0.0);
}

double* CDSPModDelay::at(int position) {
    CAudioBufferRef& block = m_blocks[position / kBlockSamples].buffer;
    if (!block) block = m_pool.takeSilent(kBlockSamples);
    return block.samples() + position % kBlockSamples;
}

int CDSPModDelay::readPosition(int delaySamples) const noexcept {
    const int position = m_write - delaySamples;
    return position < 0 ? position + ringSamples() : position;
}

void CDSPModDelay::setDelay(int delaySamples) {
    if (m_fadeLeft > 0) {
        m_pending = delaySamples;
    } else if (delaySamples != m_delay) {
        startFade(delaySamples);
    }
}

void CDSPModDelay::startFade(int delaySamples) {
    m_oldDelay = std::exchange(m_delay, delaySamples);
    m_fadeLeft = m_fadeSamples;
    m_fade = CRaisedCosine(m_fadeSamples);
    growRing();
}

void CDSPModDelay::process(const double* in, double* out, int count) {
    while (count > 0) {
        const auto leftInBlock = [](int position) { return kBlockSamples - position % kBlockSamples; };
        int step = std::min({count, kStepSamples, leftInBlock(m_write), leftInBlock(readPosition(m_delay))});
        if (m_fadeLeft > 0) step = std::min({step, m_fadeLeft, leftInBlock(readPosition(m_oldDelay))});
        processStep(in, out, step);
        in += step;
        out += step;
        count -= step;
    }
}

void CDSPModDelay::processStep(const double* in, double* out, int count) {
    std::copy_n(in, count, at(m_write));
    const double* const fresh = at(readPosition(m_delay));
    if (m_fadeLeft > 0) {
        const double* const old = at(readPosition(m_oldDelay));
        for (int i = 0; i < count; ++i) {
            const double weight = m_fade.next();
            out[i] = weight * old[i] + (1.0 - weight) * fresh[i];
        }
        m_fadeLeft -= count;
    } else {
        std::copy_n(fresh, count, out);
    }
    m_write = (m_write + count) % ringSamples();
    if (m_fadeLeft > 0 || m_pending < 0) return;
    const int delay = std::exchange(m_pending, -1);
    if (delay != m_delay) startFade(delay);
}

void CDSPModDelay::reset() {
    for (CBlock* const block : m_blocks) block->buffer.reset();
    m_write = 0;
    m_fadeLeft = 0;
    if (m_pending >= 0) m_delay = std::exchange(m_pending, -1);
    growRing();
}

}  // namespace brt
