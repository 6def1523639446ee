// SPDX-License-Identifier: LicenseRef-Halyard
// Runs a host's blocks through the graph of an instance: in chunks, cut where an event is due, between the host's
// samples and the graph's channels.
//
// What has changed since the last block, by whomever, is taken over at the first chunk: parameters, displays, layout,
// routing. Owner: the wrapper. Threads: as told; the host keeps activation and blocks apart.
#pragma once

#include <array>

#include "Audio/Wrapper/CChannelRouting.h"
#include "Audio/Wrapper/CDefaultRouting.h"
#include "Audio/Wrapper/CHostEventQueue.h"
#include "Modules/CAudioGraph.h"

namespace brt {

// What the host has said of its channels.
struct CHostLayout {
    double sampleRateHz = 44100.0;
    CHostFormat input;
    CHostFormat output;
};

// Hears what is due within a block. [audio]
class CHostEventHandler {
public:
    virtual void onQueuedEvent0(const CHostEvent& event) = 0;
    virtual void onQueuedEvent1(const CHostEvent& event) = 0;

protected:
    ~CHostEventHandler() = default;
};

class CBlockRunner {
public:
    // All outlive this object.
    CBlockRunner(CAudioGraph& graph, CAudioEnv& env, CAudioParamCollector& collector, const CDefaultRouting& routing,
                 CHostEventHandler& handler);
    ~CBlockRunner();
    CBlockRunner(const CBlockRunner&) = delete;
    CBlockRunner& operator=(const CBlockRunner&) = delete;

    // [any] The layout; holds from the next block or pass on.
    CHostLayout layout() const noexcept;
    void setLayout(const CHostLayout& layout) noexcept;
    // [init]
    void setChannelLimit(int channelCount) noexcept { m_channelLimit = channelCount; }

    // [audio] For the next block.
    void queueEvent(const CHostEvent& event) { m_events.append(event); }
    // [audio] A block; the buffers as the formats say. Both may be the same memory.
    void process(const void* const* inputs, void* const* outputs, int frameCount);
    // One silent sample, outside of any block, with the changes that wait. Routing changes without a fade.
    void runSyncPass();

private:
    bool handleDueEvents();
    int chunkLength(int frameCount) const noexcept;
    void takeChanges(int frameCount, bool isFirst, bool mayFade);
    bool takeLayout();
    void applyRouting(bool mayFade);
    CRoutingTable readRouting() const;
    void giveChannels();
    void runChunk(const void* const* inputs, void* const* outputs, int frameCount);
    void writeOutputs(void* const* outputs, int frameCount);

    CAudioGraph& m_graph;
    CAudioEnv& m_env;
    CAudioParamCollector& m_collector;
    const CDefaultRouting& m_params;
    CHostEventHandler& m_handler;
    int m_channelLimit = 1;

    CHostLayout m_nextLayout;  // under the environment's lock
    CHostLayout m_layout;      // [audio]
    bool m_isNew = true;       // the graph has no channels yet
    CChannelRouting m_routing;
    CHostEventQueue m_events;
    int m_position = 0;  // in the host's block
    // Raised when the parameters of the routing change.
    std::uint8_t m_isRoutingChanged = 0;
    std::uint32_t m_changedGroups = 0;
    std::array<CAudioParamUser*, 3> m_routingUsers{};
    std::array<double, kAudioBlockLimit> m_samples{};
};

}  // namespace brt
