// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioModule.h"

#include <atomic>

#include "Audio/CAudioProcessTerminalBase.h"
#include "Core/Log.h"

namespace brt {
namespace {

constinit std::atomic<std::uint32_t> s_guardSeed{0};

}  // namespace

void CGuardSignal::seed() noexcept {
    // The counter runs over more bits than it gives out: the sequence is that of a counter of 31 bits.
    m_state = (s_guardSeed.fetch_add(1, std::memory_order_relaxed) + 1) & 0x7fffffffU;
}

void CGuardSignal::fill(double* samples, int count) noexcept {
    constexpr std::uint32_t kSignBit = 0x800000;
    constexpr double kStep = 2.384185791015625e-18;  // makes 2e-11 of that bit
    std::uint32_t state = m_state;
    for (int i = 0; i < count; ++i) {
        state = state * 30013 + 30011;
        samples[i] = static_cast<double>(state & kSignBit) * kStep - 1e-11;
    }
    m_state = state;
}

CAudioModule::CAudioModule(CAudioProcessTerminalBase& process) : m_process(process) {}

const CAudioProcessContext& CAudioModule::context() const noexcept { return m_process.context(); }
CAudioBufferPool& CAudioModule::pool() const noexcept { return m_process.pool(); }

void CAudioModule::bind(CParamSlot& slot, int index) {
    slot.values = m_process.paramValues(index);
    if (slot.values == nullptr) return logLine("%s // regModuleParam error %i", m_process.path(), index);
    if (m_slots.count() <= index) m_slots.setCount(index + 1);
    m_slots[index] = &slot;
}

CAudioBufferRef CAudioModule::inputBuffer(int index) {
    // Written by nobody in this block: all who take it share one silent buffer.
    CAudioChannel& channel = **m_inputs[static_cast<std::size_t>(index)];
    if (!channel.buffer) channel.buffer = pool().takeSilentBlock(m_blockLength);
    return channel.buffer;
}

const double* CAudioModule::inputSamples(int index) { return inputBuffer(index).samples(); }

void CAudioModule::setLatency(int output, int samples) {
    CAudioChannel& channel = m_outputs[static_cast<std::size_t>(output)];
    const int latency = m_latencyBase + samples;
    if (channel.latencySamples == latency) return;
    channel.latencySamples = latency;
    m_process.requestOutputTable();
}

const CAudioPort::CSlot* CAudioModule::findPartner() const noexcept {
    const CAudioPort* const port = m_process.findPort(1);
    const CAudioPort::CSlot* partner = nullptr;
    for (int i = 0; port != nullptr && i < port->channelCount(); ++i) {
        if (port->channel(i).group != m_group) continue;
        partner = port->slot(i);
        if (port->channel(i).number == m_channelNumber) break;
    }
    return partner;
}

}  // namespace brt
