// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CAudioGraph.h"

#include <algorithm>
#include <array>

#include "Audio/CAudioEnv.h"
#include "Audio/CAudioProcessDefBase.h"
#include "Audio/CAudioVizCollector.h"
#include "Core/CError.h"
#include "Modules/CModOutput.h"

namespace brt {

CAudioGraph::CAudioGraph(CAudioEnv& env, CAudioParamCollector& collector, CAudioVizCollector* viz)
    : m_context{env, collector, m_pool, viz, &m_cores} {}

CAudioGraph::~CAudioGraph() {
    if (m_main) m_main->detach();
    if (m_output) m_output->detach();
}

CModOutput& CAudioGraph::output() const noexcept { return static_cast<CModOutput&>(*m_output); }

CError* CAudioGraph::start(const CAudioProcessDefBase& main, CStringView mainPath, const CAudioProcessDefBase& output,
                           CStringView outputPath) {
    BRT_TRY(mainPath, main.createInstance(m_main, mainPath, m_context, 0, 0, EProcessRole::kWhole));
    BRT_TRY(outputPath, output.createInstance(m_output, outputPath, m_context, 0, 0, EProcessRole::kWhole));
    if (dynamic_cast<CModOutput*>(m_output.get()) == nullptr)
        return makeError(nullptr, __FILE__, __LINE__, outputPath,
                         "@brtstr_CAudioGraph_start_NoOutput The process '%1' is no output.", outputPath);
    m_input = m_main->addInput(0);
    m_main->connect(*m_output, 0, 0);
    return nullptr;
}

void CAudioGraph::warmUp() {
    constexpr int kChannels = 4;  // two, and two more
    constexpr int kGroups = 2;
    constexpr int kBlocks = 4;  // until all delay lines are full
    constexpr int kFadeBuffers = 16;
    std::array<CAudioChannel, kChannels> table{};
    const std::array<double, kAudioBlockLimit> silence{};
    std::array<const double*, kChannels> inputs;
    inputs.fill(silence.data());
    for (int i = 0; i < kChannels; ++i) {
        table[static_cast<std::size_t>(i)].number = i;
        table[static_cast<std::size_t>(i)].group = i * kGroups / kChannels;
    }
    setInput(table, 48000.0);
    for (int i = 0; i < kBlocks; ++i) process(inputs.data(), nullptr, 0, kAudioBlockLimit);
    {
        std::array<CAudioBufferRef, kFadeBuffers> buffers;
        for (CAudioBufferRef& buffer : buffers) buffer = m_pool.takeBlock(kAudioBlockLimit);
    }
    setInput({}, 48000.0);
    process(inputs.data(), nullptr, 0, 0);
    makeSpares();
}

void CAudioGraph::setInput(std::span<const CAudioChannel> channels, double sampleRate) {
    m_input->setTable(channels, sampleRate);
    m_sampleRate = sampleRate;
}

// In the order that CAudioEnv.h tells; the stream stands where the block before has left it.
void CAudioGraph::beginBlock(int frames) {
    CAudioEnv& env = m_context.env;
    env.beginBlock(env.streamSeconds() + frames / m_sampleRate);
    CAudioVizCollector* const viz = m_context.viz;
    VizSlot* const listened = viz != nullptr ? viz->takePending() : nullptr;
    m_context.collector.takeUpdates(m_updates);
    if (viz != nullptr) viz->applyPending(listened);
    m_context.collector.applyUpdates(m_updates);
}

void CAudioGraph::takeUpdates() {
    m_context.collector.takeUpdates(m_updates);
    m_context.collector.applyUpdates(m_updates);
}

void CAudioGraph::run(int frames) {
    m_input->beginDelivery(frames);
    m_main->process();
    output().begin();
    m_runSeconds = frames / m_sampleRate;
}

const CAudioPort& CAudioGraph::outputPort() const noexcept { return output().mainPort(); }

void CAudioGraph::endBlock() {
    output().end();
    m_context.env.setStreamSeconds(m_context.env.streamSeconds() + m_runSeconds);
}

void CAudioGraph::process(const double* const* inputs, double* const* outputs, int outputCount, int frames) {
    beginBlock(frames);
    int place = 0;
    for (const CAudioChannel& channel : inputChannels()) {
        CAudioBufferRef buffer = takeBuffer(frames);
        std::copy_n(inputs[place++], frames, buffer.samples());
        deliver(channel.number, std::move(buffer));
    }
    run(frames);

    for (int i = 0; i < outputCount; ++i) std::fill_n(outputs[i], frames, 0.0);
    const CAudioPort& port = outputPort();
    for (int i = 0; i < port.channelCount(); ++i) {
        const CAudioChannel& channel = port.channel(i);
        if (channel.number < outputCount && channel.buffer)
            std::copy_n(channel.buffer.samples(), frames, outputs[channel.number]);
    }
    endBlock();
}

void CAudioGraph::reset() {
    m_main->reset();
    m_output->reset();
}

}  // namespace brt
