// SPDX-License-Identifier: LicenseRef-Halyard
// The running graph of one instance: the process "modMain" of the shared document, what feeds it, and the output that
// gathers what it delivers.
//
//     graph.warmUp();                             // once; and graph.makeSpares() whenever there is time
//     graph.setInput(channels, 48000.0);          // the layout; again whenever it changes
//     graph.process(inputs, outputs, frames);     // at most 512 samples, with the changes that wait
//
// Who has more to do in a block than that takes its steps one by one:
//
//     graph.beginBlock(frames);                   // the changes that wait; then `setInput`, if these ask for it
//     graph.deliver(channel, buffer);             // for each of `inputChannels`
//     graph.run();   ... outputPort() ...   graph.endBlock();
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
    // [audio] The steps of a block. Between `run` and `endBlock` the output's port can be read; a channel without a
    // buffer is silent.
    void beginBlock(int frames);
    // Changes that have come meanwhile, for a chunk behind the first.
    void takeUpdates();
    std::span<CAudioChannel> inputChannels() noexcept { return m_input->channels(); }
    CAudioBufferRef takeBuffer(int frames) { return m_pool.takeBlock(frames); }
    void deliver(int channelNumber, CAudioBufferRef buffer) noexcept {
        m_input->deliver(channelNumber, std::move(buffer));
    }
    void run(int frames);
    const CAudioPort& outputPort() const noexcept;
    void endBlock();

    // [audio] To silence.
    void reset();

    CAudioProcessBase& main() const noexcept { return *m_main; }
    CModOutput& output() const noexcept;
    CAudioBufferPool& pool() noexcept { return m_pool; }
    CHalyardCoreStock& cores() noexcept { return m_cores; }

private:
    CAudioBufferPool m_pool;
    CHalyardCoreStock m_cores;
    CAudioProcessContext m_context;
    CAudioParamQueue m_updates;
    std::unique_ptr<CAudioProcessBase> m_main;
    std::unique_ptr<CAudioProcessBase> m_output;
    CAudioLink* m_input = nullptr;  // the main process's
    double m_sampleRate = 44100.0;  // of the input
    double m_runSeconds = 0.0;      // of the block at hand
};

}  // namespace brt
