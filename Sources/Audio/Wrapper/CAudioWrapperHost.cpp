// SPDX-License-Identifier: LicenseRef-Halyard
// What a host does with an instance: activation, blocks, layout, modes, state.
#include <algorithm>
#include <bit>

#include "Audio/PresetStream.h"
#include "Audio/Wrapper/CAudioWrapper.h"
#include "Core/CError.h"
#include "Core/CMemoryReader.h"
#include "Platform/ScopedFlushToZero.h"

namespace brt {
namespace {

constexpr int kBestOversamplingMode = 3;
// Below and above which an offline mode has one step more or less.
constexpr double kLowRateHz = 72000.0;
constexpr double kHighRateHz = 144000.0;

std::uint32_t tagOf(EStateKind kind) noexcept { return kind == EStateKind::kBank ? kBankTag : appDataTag::kPreset; }

}  // namespace

// Blocks.

void CAudioWrapper::process(const void* const* inputs, void* const* outputs, int frameCount) {
    const ScopedFlushToZero flushToZero;
    const int latencyBefore = latencySamples();
    m_runner->process(inputs, outputs, frameCount);
    if (latencySamples() != latencyBefore) onLatencyChanged();
}

void CAudioWrapper::runSyncPass() {
    const int latencyBefore = latencySamples();
    catchUp();
    m_runner->runSyncPass();
    if (latencySamples() != latencyBefore) onLatencyChanged();
}

void CAudioWrapper::activate() {
    const ScopedFlushToZero flushToZero;
    if (isConnected() && m_routing.setHostChannelCount(m_routing.hostChannelCount())) updateDefaultRouting(false);
    if (!m_env->setActive(true)) return;
    m_interfaceBase->sendStartViz();
    if (!m_product.isVizAlwaysActive) m_interfaceBase->sendClearClient();
    runSyncPass();
}

void CAudioWrapper::deactivate() {
    const ScopedFlushToZero flushToZero;
    if (!m_env->setActive(false)) return;
    runSyncPass();
    m_graph->reset();
    if (!m_product.isVizAlwaysActive) m_interfaceBase->sendStopViz();
    m_vizCollector->finish();
    if (m_product.isVizAlwaysActive) m_interfaceBase->sendClearClient();
    m_collector->freeSpent();
}

void CAudioWrapper::onQueuedEvent1(const CHostEvent& event) {
    setExtParam(event.fields[0], static_cast<double>(std::bit_cast<float>(event.fields[1])));
}

void CAudioWrapper::onLatencyChanged() {
    m_isLatencyReported.store(false, std::memory_order_relaxed);
    m_isLatencyChanged.store(true, std::memory_order_release);
    m_hostLatencyChange->setFloat(1.0, 0, this);
}

void CAudioWrapper::setLatencyReported() {
    if (m_isLatencyReported.exchange(true, std::memory_order_acq_rel)) return;
    m_isLatencyChanged.store(false, std::memory_order_release);
    m_hostLatencyChange->setFloat(0.0, 0, this);
}

// Layout.

void CAudioWrapper::setLayout(const CHostLayout& layout, bool isInBlock) {
    m_runner->setLayout(layout);
    if (!isInBlock) catchUp();
}

void CAudioWrapper::catchUp() {
    if (m_isRateUntold.exchange(false, std::memory_order_acq_rel)) m_interfaceBase->sendSampleRate();
    if (m_isLayoutUntold.exchange(false, std::memory_order_acq_rel)) m_interfaceBase->sendIoChannelCounts();
    m_graph->makeSpares();
}

void CAudioWrapper::setEnvSampleRate(double sampleRateHz, bool isInBlock) {
    if (sampleRateHz == m_env->sampleRate() || !m_env->setSampleRate(sampleRateHz)) return;
    m_isRateUntold.store(true, std::memory_order_release);
    CHostLayout layout = m_runner->layout();
    layout.sampleRateHz = sampleRateHz;
    setLayout(layout, isInBlock);
}

void CAudioWrapper::setInputFormat(const CHostFormat& format, bool isInBlock) {
    CHostLayout layout = m_runner->layout();
    if (layout.input == format) return;
    if (layout.input.channelCount != format.channelCount) m_isLayoutUntold.store(true, std::memory_order_release);
    layout.input = format;
    setLayout(layout, isInBlock);
}

void CAudioWrapper::setOutputFormat(const CHostFormat& format, bool isInBlock) {
    CHostLayout layout = m_runner->layout();
    if (layout.output == format) return;
    if (layout.output.channelCount != format.channelCount) m_isLayoutUntold.store(true, std::memory_order_release);
    layout.output = format;
    setLayout(layout, isInBlock);
}

// Modes.

void CAudioWrapper::setHostOffline(bool isOffline) {
    if (m_lastOffline != isOffline) {
        m_lastOffline = isOffline;
        m_hostOffline->setFloat(isOffline ? 1.0 : 0.0, 0, this);
    }
    int mode = m_product.autoOversamplingMode - 1;
    if (isOffline) {
        const double rate = m_env->sampleRate();
        mode = m_oversamplingLevel + (rate < kLowRateHz ? 1 : 0) - (rate >= kHighRateHz ? 1 : 0);
        mode = std::clamp(mode, 0, kBestOversamplingMode);
    }
    if (m_lastOversamplingMode == mode) return;
    m_lastOversamplingMode = mode;
    m_hostOversamplingMode->setFloat(mode, 0, this);
}

void CAudioWrapper::setHostBpm(double beatsPerMinute) {
    if (m_hostBpmParam == nullptr || beatsPerMinute == m_hostBpm) return;
    m_hostBpm = beatsPerMinute;
    m_hostBpmParam->setFloat(beatsPerMinute, 0, this);
}

void CAudioWrapper::setHostRecording(bool isRecording) {
    if (m_hostRecParam == nullptr || m_lastRecording == isRecording) return;
    m_lastRecording = isRecording;
    m_hostRecParam->setFloat(isRecording ? 1.0 : 0.0, 0, this);
}

// State.

CError* CAudioWrapper::getState(CByteBuffer& state, EStateKind kind, bool withPrefix) {
    CWriteSeqBuffer stream(CWriteSeqBuffer::kStateBlockBytes);
    if (kind == EStateKind::kBank)
        BRT_TRY("", m_registry->acquireBank(false, stream));
    else
        BRT_TRY("", m_registry->acquirePreset(false, CAudioParamRegistry::kCurrent, CAudioParam::kAllGroups, stream));
    CByteBuffer plain;
    stream.moveTo(plain);
    constexpr std::uint8_t kPrefix[kStatePrefixBytes] = {};
    if (withPrefix) BRT_TRY("", stream.write(kPrefix, kStatePrefixBytes));
    BRT_TRY("", stream.writeCompressedData(plain, tagOf(kind)));
    stream.moveTo(state);
    catchUp();
    return nullptr;
}

CError* CAudioWrapper::setState(const void* bytes, int size, EStateKind kind, bool withPrefix) {
    if (withPrefix && size <= kStatePrefixBytes) return nullptr;
    CMemoryReader reader(bytes, size);
    if (withPrefix) BRT_TRY("", reader.skip(kStatePrefixBytes));
    CByteBuffer plain;
    BRT_TRY("", reader.readCompressedData(plain, tagOf(kind)));
    CMemoryReader content(plain.data(), plain.size());
    if (kind == EStateKind::kBank)
        BRT_TRY("", m_registry->activateBank(content, true));
    else
        BRT_TRY("", m_registry->activatePreset(content, true, CAudioParam::kAllGroups));
    catchUp();
    return nullptr;
}

}  // namespace brt
