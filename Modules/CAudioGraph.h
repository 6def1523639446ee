// SPDX-License-Identifier: LicenseRef-Halyard
// The running graph of one instance: the process "modMain" of the shared document, what feeds it, and the output that
// gathers what it delivers.
//
//     graph.warmUp();                             // once; and graph.makeSpares() whenever there is time
//     graph.setInput(channels, 48000.0);          // the layout; again whenever it changes
//     graph.process(inputs, outputs, frames);     // at most 512 samples, with the changes that wait
//
// Owner: whoever drives an instance. Its collector and environment outlive it. Threads: `start` and the destructor
// while nobody processes; the rest is the audio thread's, where no other is told.
#pragma once

#include <memory>
#include <span>

#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioProcessBase.h"
#include "Modules/CHalyardCoreStock.h"

namespace brt {

class CAudioProcessDefBase;
class CModOutput;

class CAudioGraph {
public:
    CAudioGraph(CAudioEnv& env, CAudioParamCollector& collector, CAudioVizCollector* viz);
    ~CAudioGraph();
    CAudioGraph(const CAudioGraph&) = delete;
    CAudioGraph& operator=(const CAudioGraph&) = delete;

    // [init] Makes the processes; `path` is the full name of the main one.
    [[nodiscard]] CError* start(const CAudioProcessDefBase& main, CStringView mainPath,
                                const CAudioProcessDefBase& output, CStringView outputPath);

    // [init] Plays a moment of silence through more channels and groups than it is going to have, so that the memory
    // lies ready of which the audio thread builds when the routing changes. Leaves a layout without channels.
    void warmUp();
    // [any] Replaces what changes of the routing have taken. Not on the audio thread.
    void makeSpares() { m_cores.fill(); }

    // [audio] The channels that come in, by number, with their groups.
    void setInput(std::span<const CAudioChannel> channels, double sampleRate);

    // [audio] One block, with the changes that wait; the environment's stream goes on by it. `inputs` one pointer for
    // each channel of the layout, `outputs` one for each channel number that is wanted, 0 upward; a channel that the
    // graph does not deliver is silent. REQUIRES: frames <= 512.
    void process(const double* const* inputs, double* const* outputs, int outputCount, int frames);
    // [audio] To silence.
    void reset();

    CAudioProcessBase& main() const noexcept { return *m_main; }
    CModOutput& output() const noexcept;
    CAudioBufferPool& pool() noexcept { return m_pool; }
    CHalyardCoreStock& cores() noexcept { return m_cores; }

private:
    void beginBlock(int frames);

    CAudioBufferPool m_pool;
    CHalyardCoreStock m_cores;
    CAudioProcessContext m_context;
    CAudioParamQueue m_updates;
    std::unique_ptr<CAudioProcessBase> m_main;
    std::unique_ptr<CAudioProcessBase> m_output;
    CAudioLink* m_input = nullptr;  // the main process's
    double m_sampleRate = 44100.0;  // of the input
};

}  // namespace brt
