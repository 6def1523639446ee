// SPDX-License-Identifier: LicenseRef-Halyard
// An input port of a process: gathers what its links deliver, channel by channel, and mixes where several links bring
// the same channel number.
//
// Channels stand in the order of their numbers; the place of one among them is its position. `slot(position)` stays
// valid as long as the port: modules keep its address, and what it points to may change from block to block.
// Owner: its process. Threads: audio, or whoever builds the graph before there is one.
#pragma once

#include <array>

#include "Audio/CAudioLink.h"
#include "Audio/CAudioProcessDefBase.h"
#include "Core/COwnedArray.h"

namespace brt {

class CAudioProcessBase;

// A connection from an input port of a container on to one of its children.
struct CAudioPassThrough {
    CAudioProcessBase* destination;
    int destinationPort;
    CAudioLink* link;  // of the destination's port
};

class CAudioPort : public CBrtMemAllocator {
public:
    using CSlot = CAudioChannel*;

    explicit CAudioPort(int number) noexcept : m_number(number) { m_positions.fill(-1); }
    CAudioPort(const CAudioPort&) = delete;
    CAudioPort& operator=(const CAudioPort&) = delete;

    int number() const noexcept { return m_number; }
    bool isUsed() const noexcept { return !m_links.isEmpty() || !m_passThroughs.isEmpty(); }
    COwnedArray<CAudioLink>& links() noexcept { return m_links; }
    CSmallArray<CAudioPassThrough>& passThroughs() noexcept { return m_passThroughs; }

    // Channels of the present layout, by position.
    int channelCount() const noexcept { return m_channelCount; }
    const CSlot* slot(int position) const noexcept { return &m_slots[static_cast<std::size_t>(position)]; }
    const CAudioChannel& channel(int position) const noexcept { return *m_slots[static_cast<std::size_t>(position)]; }
    // The layout as those see it who take from this port: every channel has the latency of the whole.
    std::span<const CAudioChannel> table() const noexcept {
        return {m_table.data(), static_cast<std::size_t>(m_channelCount)};
    }

    // Takes in what the links say. True if a channel has come, gone, or changed its position or group.
    bool rebuild();
    // Writes the layout to those who take from this port.
    void writeTables(int latencySamples, double sampleRate);

    // One block.
    void mix(CAudioBufferPool& pool, EAudioComboMode how, int blockLength);
    void passThrough(int blockLength);
    void releaseBuffers();

private:
    // Of one channel number that several links bring.
    struct CMixNode {
        CAudioChannel result;
        CSmallArray<CAudioChannel*> sources;
    };

    void gather();
    static CAudioBufferRef mixed(CAudioBufferPool& pool, const CMixNode& node, EAudioComboMode how, int blockLength);

    const int m_number;
    COwnedArray<CAudioLink> m_links;
    CSmallArray<CAudioPassThrough> m_passThroughs;
    int m_channelCount = 0;
    std::array<CSlot, kAudioChannelLimit> m_slots{};
    std::array<CAudioChannel, kAudioChannelLimit> m_table{};
    std::array<int, kAudioChannelLimit> m_positions;      // by channel number; -1: none
    std::array<CMixNode, kAudioChannelLimit> m_mixNodes;  // by channel number
    CSmallArray<CMixNode*> m_mixing;                      // those with two sources or more
};

}  // namespace brt
