// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioPort.h"

#include <algorithm>

namespace brt {

void CAudioPort::gather() {
    for (CMixNode& node : m_mixNodes) {
        node.sources.clear();
        node.result.buffer.reset();
    }
    for (CAudioLink* const link : m_links)
        for (CAudioChannel& channel : link->channels())
            m_mixNodes[static_cast<std::size_t>(channel.number)].sources.append(&channel);
}

bool CAudioPort::rebuild() {
    gather();
    bool isChanged = false;
    int position = 0;
    for (std::size_t number = 0; number < kAudioChannelLimit; ++number) {
        CMixNode& node = m_mixNodes[number];
        const int oldPosition = std::exchange(m_positions[number], node.sources.isEmpty() ? -1 : position);
        isChanged = isChanged || oldPosition != m_positions[number];
        if (node.sources.isEmpty()) continue;
        const CAudioChannel& first = *node.sources[0];
        CAudioChannel& row = m_table[static_cast<std::size_t>(position)];
        isChanged = isChanged || row.group != first.group || row.number != first.number;
        row.number = node.result.number = first.number;
        row.group = node.result.group = first.group;
        m_slots[static_cast<std::size_t>(position)] = node.sources.count() > 1 ? &node.result : node.sources[0];
        ++position;
    }
    m_channelCount = position;
    m_mixing.clear();
    for (CMixNode& node : m_mixNodes)
        if (node.sources.count() > 1) m_mixing.append(&node);
    return isChanged;
}

void CAudioPort::writeTables(int latencySamples, double sampleRate) {
    for (CAudioChannel& row : m_table) row.latencySamples = latencySamples;
    for (const CAudioPassThrough& way : m_passThroughs) way.link->setTable(table(), sampleRate);
}

void CAudioPort::mix(CAudioBufferPool& pool, EAudioComboMode how, int blockLength) {
    for (CMixNode* const node : m_mixing) node->result.buffer = mixed(pool, *node, how, blockLength);
}

// Silent sources add nothing; but the maximum of a signal and silence is not the signal.
CAudioBufferRef CAudioPort::mixed(CAudioBufferPool& pool, const CMixNode& node, EAudioComboMode how, int blockLength) {
    CAudioBufferRef result;
    for (CAudioChannel* const source : node.sources) {
        if (!source->buffer && how != EAudioComboMode::kMaximum) continue;
        const CAudioBufferRef next = source->buffer ? source->buffer : pool.takeSilentBlock(blockLength);
        if (!result) {
            result = next;
            continue;
        }
        const CAudioBufferRef sum = result.isUnique() ? result : pool.takeBlock(blockLength);
        const double* const a = result.samples();
        const double* const b = next.samples();
        double* const out = sum.samples();
        if (how == EAudioComboMode::kMaximum)
            for (int i = 0; i < blockLength; ++i) out[i] = std::max(a[i], b[i]);
        else
            for (int i = 0; i < blockLength; ++i) out[i] = a[i] + b[i];
        result = sum;
    }
    if (!result || how != EAudioComboMode::kAverage) return result;
    const CAudioBufferRef mean = result.isUnique() ? result : pool.takeBlock(blockLength);
    const double scale = 1.0 / node.sources.count();
    std::transform(result.samples(), result.samples() + blockLength, mean.samples(),
                   [scale](double value) { return value * scale; });
    return mean;
}

void CAudioPort::passThrough(int blockLength) {
    for (const CAudioPassThrough& way : m_passThroughs) {
        way.link->beginDelivery(blockLength);
        for (int i = 0; i < m_channelCount; ++i) way.link->deliver(channel(i).number, channel(i).buffer);
    }
}

void CAudioPort::releaseBuffers() {
    for (CMixNode* const node : m_mixing) node->result.buffer.reset();
    for (CAudioLink* const link : m_links) link->releaseBuffers();
}

}  // namespace brt
