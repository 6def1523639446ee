// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/Wrapper/CChannelRouting.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace brt {
namespace {

constexpr auto at(int index) { return static_cast<std::size_t>(index); }

}  // namespace

void CChannelRouting::CMatrix::fadeTo(const CGains& target, double weight) {
    for (std::size_t i = 0; i < from.size(); ++i)
        for (std::size_t j = 0; j < from[i].size(); ++j) from[i][j] += (to[i][j] - from[i][j]) * weight;
    to = target;
}

// The raised cosine: half a wave, without a corner at either end.
double CChannelRouting::weightAt(int position) const noexcept {
    if (position >= m_fadeLength) return 1.0;
    return 0.5 - 0.5 * std::cos(std::numbers::pi * position / m_fadeLength);
}

void CChannelRouting::setTarget(const CRoutingTable& table, double sampleRateHz, bool mayFade) {
    if (table == m_table && mayFade) return;
    const double weight = weightAt(m_fadePosition);
    std::array<int, kAudioChannelLimit> sharers{};
    for (const CRoutingTable::CChannel& channel : table.channels)
        if (channel.exists && channel.output >= 0) ++sharers[at(channel.output)];

    CGains inputs{};
    CGains outputs{};
    for (int i = 0; i < kAudioChannelLimit; ++i) {
        const CRoutingTable::CChannel& channel = table.channels[at(i)];
        if (!channel.exists) {
            inputs[at(i)] = m_inputs.to[at(i)];  // one that goes keeps what it hears until it has faded
            continue;
        }
        if (channel.input >= 0) inputs[at(i)][at(channel.input)] = 1.0;
        if (channel.output >= 0) outputs[at(channel.output)][at(i)] = 1.0 / sharers[at(channel.output)];
    }
    m_inputs.fadeTo(inputs, weight);
    m_outputs.fadeTo(outputs, weight);
    // The group of a channel that fades out stays what it was.
    for (int i = 0; i < kAudioChannelLimit; ++i) {
        const int group = m_table.channels[at(i)].group;
        m_table.channels[at(i)] = table.channels[at(i)];
        if (!table.channels[at(i)].exists) m_table.channels[at(i)].group = group;
    }
    m_fadeLength = mayFade ? static_cast<int>(std::lround(kFadeSeconds * sampleRateHz)) : 0;
    m_fadePosition = 0;
}

bool CChannelRouting::isLeaving(int channel) const noexcept {
    if (!isFading() || m_table.channels[at(channel)].exists) return false;
    return std::any_of(m_outputs.from.begin(), m_outputs.from.end(),
                       [channel](const auto& gains) { return gains[at(channel)] > 0.0; });
}

int CChannelRouting::listChannels(std::array<CAudioChannel, kAudioChannelLimit>& channels) const {
    int count = 0;
    for (int i = 0; i < kAudioChannelLimit; ++i) {
        if (!m_table.channels[at(i)].exists && !isLeaving(i)) continue;
        CAudioChannel channel;
        channel.number = i;
        channel.group = m_table.channels[at(i)].group;
        channels[at(count++)] = std::move(channel);
    }
    return count;
}

void CChannelRouting::beginChunk(int frameCount) noexcept {
    m_frameCount = frameCount;
    if (!isFading()) return;
    for (int i = 0; i < frameCount; ++i) m_weights[at(i)] = weightAt(m_fadePosition + i);
}

void CChannelRouting::addWeighted(double from, double to, const double* source, double* sum) const noexcept {
    if (!isFading()) {
        for (int i = 0; i < m_frameCount; ++i) sum[i] += to * source[i];
    } else {
        for (int i = 0; i < m_frameCount; ++i) sum[i] += (from + (to - from) * m_weights[at(i)]) * source[i];
    }
}

void CChannelRouting::mixInput(int channel, const CHostFormat& format, const void* const* inputs, int first,
                               double* samples) noexcept {
    const auto& from = m_inputs.from[at(channel)];
    const auto& to = m_inputs.to[at(channel)];
    const int hostCount = std::min<int>(format.channelCount, kAudioChannelLimit);
    if (!isFading()) {
        // One input at most, as it is.
        for (int host = 0; host < hostCount; ++host)
            if (to[at(host)] > 0.0) return readHostChannel(format, inputs, host, first, m_frameCount, samples);
    }
    std::fill_n(samples, m_frameCount, 0.0);
    for (int host = 0; isFading() && host < hostCount; ++host) {
        if (from[at(host)] == 0.0 && to[at(host)] == 0.0) continue;
        readHostChannel(format, inputs, host, first, m_frameCount, m_hostSamples.data());
        addWeighted(from[at(host)], to[at(host)], m_hostSamples.data(), samples);
    }
}

const double* CChannelRouting::mixOutput(int output, const std::array<const double*, kAudioChannelLimit>& channels,
                                         double* samples) const noexcept {
    const auto& from = m_outputs.from[at(output)];
    const auto& to = m_outputs.to[at(output)];
    int sourceCount = 0;
    int lastSource = 0;
    for (int i = 0; i < kAudioChannelLimit; ++i) {
        if (channels[at(i)] == nullptr || (to[at(i)] == 0.0 && (!isFading() || from[at(i)] == 0.0))) continue;
        ++sourceCount;
        lastSource = i;
    }
    if (sourceCount == 0) return nullptr;
    if (sourceCount == 1 && to[at(lastSource)] == 1.0 && (!isFading() || from[at(lastSource)] == 1.0))
        return channels[at(lastSource)];
    std::fill_n(samples, m_frameCount, 0.0);
    for (int i = 0; i < kAudioChannelLimit; ++i)
        if (channels[at(i)] != nullptr) addWeighted(from[at(i)], to[at(i)], channels[at(i)], samples);
    return samples;
}

bool CChannelRouting::endChunk() noexcept {
    if (!isFading()) return false;
    bool hasLeaving = false;
    for (int i = 0; i < kAudioChannelLimit; ++i) hasLeaving |= isLeaving(i);
    m_fadePosition += m_frameCount;
    return hasLeaving && !isFading();
}

}  // namespace brt
