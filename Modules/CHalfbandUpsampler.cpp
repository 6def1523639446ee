// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CHalfbandUpsampler.h"

#include <algorithm>

namespace brt {

CHalfbandUpsampler::CHalfbandUpsampler(const HalfbandStage& stage) noexcept
    : m_base(stage.base),
      m_delay(stage.delay),
      m_mirrorLen(stage.mirrorLen),
      m_filter(filterFor(stage.filter.tapCount)) {
    std::copy_n(stage.filter.taps, stage.filter.tapCount, m_taps);
    reset();
}

CHalfbandUpsampler::Filter CHalfbandUpsampler::filterFor(int tapCount) noexcept {
    switch (tapCount) {
    case 3: return &CHalfbandUpsampler::filter<3>;
    case 4: return &CHalfbandUpsampler::filter<4>;
    case 5: return &CHalfbandUpsampler::filter<5>;
    case 6: return &CHalfbandUpsampler::filter<6>;
    default: BRT_ASSERT(tapCount == 14); return &CHalfbandUpsampler::filter<14>;
    }
}

void CHalfbandUpsampler::reset() noexcept {
    m_writePos = 0;
    m_readPos = kRingLength - m_mirrorLen;
    std::fill_n(m_ring + m_readPos, m_mirrorLen, 0.0);
}

int CHalfbandUpsampler::room() const noexcept { return std::min(kRingLength - m_writePos, kRingLength - m_mirrorLen); }

void CHalfbandUpsampler::process(const double* src, int count, double* dst) noexcept {
    while (count > 0) {
        const int chunk = std::min(room(), count);
        if (src != writePointer()) std::copy_n(src, chunk, writePointer());
        if (m_writePos < m_mirrorLen)
            std::copy_n(src, std::min(m_mirrorLen - m_writePos, chunk), m_ring + kRingLength + m_writePos);
        m_writePos = (m_writePos + chunk) % kRingLength;
        (this->*m_filter)(chunk, dst);
        src += chunk;
        dst += 2 * chunk;
        count -= chunk;
    }
}

template <int tapCount>
void CHalfbandUpsampler::filter(int count, double* dst) noexcept {
    // Copies that no write to `dst` can change.
    double taps[tapCount];
    std::copy_n(m_taps, tapCount, taps);
    int readPos = m_readPos;
    for (int i = 0; i < count; ++i) {
        const double* centre = m_ring + readPos + m_base;
        double between = 0.0;
        for (int j = 0; j < tapCount; ++j) between += taps[j] * (centre[-j] + centre[1 + j]);
        dst[2 * i] = centre[0];
        dst[2 * i + 1] = between;
        readPos = (readPos + 1) % kRingLength;
    }
    m_readPos = readPos;
}

}  // namespace brt
