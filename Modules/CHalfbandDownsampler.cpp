// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CHalfbandDownsampler.h"

#include <algorithm>

namespace brt {

CHalfbandDownsampler::CHalfbandDownsampler(const HalfbandStage& stage) noexcept
    : m_taps(stage.filter.taps),
      m_base(stage.base),
      m_mirrorLen(stage.mirrorLen),
      m_delay(stage.delay),
      m_filter(filterFor(stage.filter.tapCount)) {
    reset();
}

CHalfbandDownsampler::Filter CHalfbandDownsampler::filterFor(int tapCount) noexcept {
    switch (tapCount) {
    case 3: return &CHalfbandDownsampler::filter<3>;
    case 4: return &CHalfbandDownsampler::filter<4>;
    case 5: return &CHalfbandDownsampler::filter<5>;
    case 6: return &CHalfbandDownsampler::filter<6>;
    default: BRT_ASSERT(tapCount == 14); return &CHalfbandDownsampler::filter<14>;
    }
}

void CHalfbandDownsampler::reset() noexcept {
    m_pending = 0;
    m_writePos = 0;
    m_readPos = kRingLength - m_mirrorLen;
    std::fill_n(m_ring + m_readPos, m_mirrorLen, 0.0);
}

void CHalfbandDownsampler::process(const double* src, int count, double* dst) noexcept {
    while (count > 0) {
        const int chunk = std::min({kRingLength - m_writePos, kRingLength - m_mirrorLen - m_pending, count});
        std::copy_n(src, chunk, m_ring + m_writePos);
        if (m_writePos < m_mirrorLen)
            std::copy_n(src, std::min(m_mirrorLen - m_writePos, chunk), m_ring + kRingLength + m_writePos);
        m_writePos = (m_writePos + chunk) % kRingLength;

        m_pending += chunk;
        const int outputs = (m_pending + 1) / 2;
        (this->*m_filter)(outputs, dst);
        m_pending -= 2 * outputs;
        src += chunk;
        dst += outputs;
        count -= chunk;
    }
}

template <int tapCount>
void CHalfbandDownsampler::filter(int count, double* dst) noexcept {
    // Copies that no write to `dst` can change.
    double taps[tapCount];
    std::copy_n(m_taps, tapCount, taps);
    int readPos = m_readPos;
    for (int i = 0; i < count; ++i) {
        const double* centre = m_ring + readPos + m_base;
        double sum = centre[0];
        for (int j = 0; j < tapCount; ++j) sum += taps[j] * (centre[2 * j + 1] + centre[-2 * j - 1]);
        dst[i] = sum;
        readPos = (readPos + 2) % kRingLength;
    }
    m_readPos = readPos;
}

}  // namespace brt
