// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioLink.h"

#include <algorithm>

namespace brt {

void CAudioLink::setTable(std::span<const CAudioChannel> table, double sampleRate) {
    releaseBuffers();
    m_count = 0;
    m_places = {};
    for (const CAudioChannel& channel : table) {
        if (channel.port != m_sourcePort || channel.number < 0 || channel.number >= kAudioChannelLimit) continue;
        m_channels[static_cast<std::size_t>(m_count)] = channel;
        m_channels[static_cast<std::size_t>(m_count)].buffer.reset();
        m_places[static_cast<std::size_t>(channel.number)] = static_cast<std::int8_t>(++m_count);
    }
    m_sampleRate = sampleRate;
    ++m_destinationChanges;
}

void CAudioLink::deliver(int channelNumber, CAudioBufferRef buffer) noexcept {
    const int place = m_places[static_cast<std::size_t>(channelNumber)];
    if (place > 0) m_channels[static_cast<std::size_t>(place - 1)].buffer = std::move(buffer);
}

void CAudioLink::releaseBuffers() noexcept {
    for (CAudioChannel& channel : channels()) channel.buffer.reset();
    m_blockLength = 0;
}

// A channel that goes loses its delay; one that is new starts without a fade.
void CAudioLink::align(CAudioBufferPool& pool, int latencySamples, bool isRateNew) {
    m_hasDelays = false;
    for (int number = 0; number < kAudioChannelLimit; ++number) {
        std::unique_ptr<CDSPModDelay>& delay = m_delays[static_cast<std::size_t>(number)];
        const int place = m_places[static_cast<std::size_t>(number)];
        const std::uint32_t bit = 1U << number;
        const bool isPlaying = !isRateNew && (m_playing & bit) != 0;
        m_playing = place > 0 ? m_playing | bit : m_playing & ~bit;
        if (place == 0 || isRateNew || (delay != nullptr && delay->isTransparent())) delay.reset();
        if (place == 0) continue;
        const int needed = latencySamples - m_channels[static_cast<std::size_t>(place - 1)].latencySamples;
        if (delay == nullptr && needed > 0)
            delay = std::make_unique<CDSPModDelay>(pool, m_sampleRate, isPlaying ? 0 : needed);
        if (delay != nullptr) delay->setDelay(needed);
        m_hasDelays = m_hasDelays || delay != nullptr;
    }
}

void CAudioLink::runDelays(CAudioBufferPool& pool, int blockLength) {
    if (!m_hasDelays) return;
    for (CAudioChannel& channel : channels()) {
        CDSPModDelay* const delay = m_delays[static_cast<std::size_t>(channel.number)].get();
        if (delay == nullptr || delay->isTransparent()) continue;
        if (!channel.buffer) channel.buffer = pool.takeSilentBlock(blockLength);
        // Others may hold the buffer too: they must not see it delayed.
        CAudioBufferRef source = std::move(channel.buffer);
        CAudioBufferRef result = source.isUnique() ? source : pool.takeBlock(blockLength);
        delay->process(source.samples(), result.samples(), blockLength);
        channel.buffer = std::move(result);
    }
}

void CAudioLink::resetDelays() {
    for (const std::unique_ptr<CDSPModDelay>& delay : m_delays)
        if (delay != nullptr) delay->reset();
}

}  // namespace brt
