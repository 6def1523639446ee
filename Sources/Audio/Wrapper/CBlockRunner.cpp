// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/Wrapper/CBlockRunner.h"

#include <algorithm>
#include <cmath>

#include "Audio/CAudioPort.h"
#include "Core/CSwapLock.h"

namespace brt {
namespace {

constexpr int kGroupLimit = 8;

constexpr auto at(int index) { return static_cast<std::size_t>(index); }

bool isSameGrid(const CHostLayout& a, const CHostLayout& b) noexcept {
    return a.sampleRateHz == b.sampleRateHz && a.input.channelCount == b.input.channelCount &&
           a.output.channelCount == b.output.channelCount;
}

// A whole number of a list on the audio side, within limits.
int numberAt(const CAudioParam& param, int element, int fallback, int limit) noexcept {
    const double value = param.audio().value(0, element, fallback);
    return std::clamp(static_cast<int>(std::lround(value)), 0, limit);
}

}  // namespace

CBlockRunner::CBlockRunner(CAudioGraph& graph, CAudioEnv& env, CAudioParamCollector& collector,
                           const CDefaultRouting& routing, CHostEventHandler& handler)
    : m_graph(graph), m_env(env), m_collector(collector), m_params(routing), m_handler(handler) {
    CAudioParam* const params[] = {&routing.inRouting(), &routing.grouping(), &routing.outRouting()};
    for (std::size_t i = 0; i < m_routingUsers.size(); ++i)
        m_routingUsers[i] = collector.addUser(*params[i], &m_isRoutingChanged, &m_changedGroups, CAudioParamUser::kAny,
                                              CAudioParamUser::kAny);
}

CBlockRunner::~CBlockRunner() {
    for (CAudioParamUser* const user : m_routingUsers) m_collector.removeUser(user);
}

// Layout.

CHostLayout CBlockRunner::layout() const noexcept {
    const CSwapLock lock(m_env.section());
    return m_nextLayout;
}

void CBlockRunner::setLayout(const CHostLayout& layout) noexcept {
    const CSwapLock lock(m_env.section());
    m_nextLayout = layout;
}

// True if the graph's channels may be others.
bool CBlockRunner::takeLayout() {
    const CHostLayout before = m_layout;
    m_layout = layout();
    const bool isChanged = m_isNew || !isSameGrid(before, m_layout);
    m_isNew = false;
    return isChanged;
}

CRoutingTable CBlockRunner::readRouting() const {
    CRoutingTable table;
    for (int i = 0; i < m_channelLimit; ++i) {
        CRoutingTable::CChannel& channel = table.channels[at(i)];
        const int input = numberAt(m_params.inRouting(), i, i + 1, kAudioChannelLimit) - 1;
        const int output = numberAt(m_params.outRouting(), i, i + 1, kAudioChannelLimit) - 1;
        channel.exists = input >= 0;
        if (!channel.exists) continue;
        channel.input = input < m_layout.input.channelCount ? input : -1;
        channel.output = output < m_layout.output.channelCount ? output : -1;
        channel.group = numberAt(m_params.grouping(), i, 0, kGroupLimit - 1);
    }
    return table;
}

void CBlockRunner::applyRouting(bool mayFade) {
    m_isRoutingChanged = 0;
    m_routing.setTarget(readRouting(), m_layout.sampleRateHz, mayFade);
    giveChannels();
}

void CBlockRunner::giveChannels() {
    std::array<CAudioChannel, kAudioChannelLimit> channels;
    const int count = m_routing.listChannels(channels);
    m_graph.setInput({channels.data(), at(count)}, m_layout.sampleRateHz);
}

void CBlockRunner::takeChanges(int frameCount, bool isFirst, bool mayFade) {
    if (!isFirst) {
        m_graph.takeUpdates();
    } else {
        const bool isLayoutChanged = takeLayout();
        // The stream's clock goes by the new rate already.
        if (isLayoutChanged) giveChannels();
        m_graph.beginBlock(frameCount);
        if (isLayoutChanged) return applyRouting(mayFade);
    }
    if (m_isRoutingChanged != 0) applyRouting(mayFade);
}

// Blocks.

bool CBlockRunner::handleDueEvents() {
    bool isAny = false;
    while (const CHostEvent* const event = m_events.takeDue(m_position)) {
        isAny = true;
        if (event->kind == CHostEvent::EKind::kMidi)
            m_handler.onQueuedEvent0(*event);
        else
            m_handler.onQueuedEvent1(*event);
    }
    return isAny;
}

// Up to the next event, and on the grid of chunks that begins with the block.
int CBlockRunner::chunkLength(int frameCount) const noexcept {
    const int gridEnd = (m_position / kAudioBlockLimit + 1) * kAudioBlockLimit;
    return m_events.nextFrame(std::min(frameCount, gridEnd)) - m_position;
}

void CBlockRunner::process(const void* const* inputs, void* const* outputs, int frameCount) {
    m_events.begin();
    m_position = 0;
    bool isFirst = true;
    while (m_position < frameCount) {
        const bool hadEvents = handleDueEvents();
        const int length = chunkLength(frameCount);
        if (isFirst || hadEvents) takeChanges(length, isFirst, true);
        runChunk(inputs, outputs, length);
        m_position += length;
        isFirst = false;
    }
    m_events.end();
}

void CBlockRunner::runChunk(const void* const* inputs, void* const* outputs, int frameCount) {
    m_routing.beginChunk(frameCount);
    for (const CAudioChannel& channel : m_graph.inputChannels()) {
        CAudioBufferRef buffer = m_graph.takeBuffer(frameCount);
        m_routing.mixInput(channel.number, m_layout.input, inputs, m_position, buffer.samples());
        m_graph.deliver(channel.number, std::move(buffer));
    }
    m_graph.run(frameCount);
    writeOutputs(outputs, frameCount);
    m_graph.endBlock();
    if (m_routing.endChunk()) giveChannels();
}

void CBlockRunner::writeOutputs(void* const* outputs, int frameCount) {
    static constexpr std::array<double, kAudioBlockLimit> kSilence{};
    std::array<const double*, kAudioChannelLimit> channels{};
    const CAudioPort& port = m_graph.outputPort();
    for (int i = 0; i < port.channelCount(); ++i) {
        const CAudioChannel& channel = port.channel(i);
        if (channel.buffer) channels[at(channel.number)] = channel.buffer.samples();
    }
    for (int i = 0; i < m_layout.output.channelCount; ++i) {
        const double* const samples =
            i < kAudioChannelLimit ? m_routing.mixOutput(i, channels, m_samples.data()) : nullptr;
        writeHostChannel(m_layout.output, outputs, i, m_position, frameCount,
                         samples != nullptr ? samples : kSilence.data());
    }
}

void CBlockRunner::runSyncPass() {
    m_events.begin();
    m_position = 0;
    takeChanges(1, true, false);
    m_routing.beginChunk(1);
    for (const CAudioChannel& channel : m_graph.inputChannels()) {
        CAudioBufferRef buffer = m_graph.takeBuffer(1);
        buffer.samples()[0] = 0.0;
        m_graph.deliver(channel.number, std::move(buffer));
    }
    m_graph.run(1);
    m_graph.endBlock();
    m_events.end();
}

}  // namespace brt
