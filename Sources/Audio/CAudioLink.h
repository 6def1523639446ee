// SPDX-License-Identifier: LicenseRef-Halyard
// One connection of the graph: what an output port of one process delivers to an input port of another.
// Owner: the destination's port. Threads: audio, or whoever builds the graph before there is one.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>

#include "Audio/CAudioBuffer.h"
#include "Audio/CDSPModDelay.h"

namespace brt {

constexpr int kAudioChannelLimit = 16;  // channel numbers
constexpr int kAudioTableLimit = 32;    // channels that a process delivers, over all its ports

struct CAudioChannel {
    int number = 0;
    int group = 0;
    int latencySamples = 0;    // since the plug-in's input
    int port = 0;              // of the process that delivers it
    CAudioBufferRef buffer{};  // of the present block; empty: silence
};

class CAudioLink : public CBrtMemAllocator {
public:
    // `destinationChanges` is raised by each change of the table.
    CAudioLink(int sourcePort, std::int32_t& destinationChanges)
        : m_sourcePort(sourcePort), m_destinationChanges(destinationChanges) {}
    CAudioLink(const CAudioLink&) = delete;
    CAudioLink& operator=(const CAudioLink&) = delete;

    // What comes over this link from now on: those channels of the table that the source's port delivers.
    void setTable(std::span<const CAudioChannel> table, double sampleRate);

    std::span<CAudioChannel> channels() noexcept { return {m_channels.data(), static_cast<std::size_t>(m_count)}; }
    double sampleRate() const noexcept { return m_sampleRate; }
    // Samples that came in this block; 0: nobody has delivered anything yet.
    int blockLength() const noexcept { return m_blockLength; }

    // One block. A channel that is not in the table is dropped.
    void beginDelivery(int blockLength) noexcept { m_blockLength = blockLength; }
    void deliver(int channelNumber, CAudioBufferRef buffer) noexcept;
    // Ends the block.
    void releaseBuffers() noexcept;

    // Brings every channel to that latency: those that have played already with a fade.
    void align(CAudioBufferPool& pool, int latencySamples, bool isRateNew);
    void runDelays(CAudioBufferPool& pool, int blockLength);
    void resetDelays();

private:
    const int m_sourcePort;
    std::int32_t& m_destinationChanges;
    double m_sampleRate = 1.0;
    int m_blockLength = 0;
    int m_count = 0;
    std::array<CAudioChannel, kAudioTableLimit> m_channels;
    std::array<std::int8_t, kAudioChannelLimit> m_places{};                  // of a channel number in the table, plus 1
    std::array<std::unique_ptr<CDSPModDelay>, kAudioChannelLimit> m_delays;  // by channel number; null: none needed
    std::uint32_t m_playing = 0;  // a bit for each channel number that has been aligned at this rate
    bool m_hasDelays = false;
};

}  // namespace brt
