// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioProcessBase.h"

#include <algorithm>

#include "Audio/CAudioEnv.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamFilter.h"
#include "Audio/CAudioProcessDefBase.h"
#include "Core/CError.h"

namespace brt {

CAudioProcessBase::CAudioProcessBase() { m_ports.append(new CAudioPort(0)); }

CAudioProcessBase::~CAudioProcessBase() {
    for (CAudioParamBinding* const binding : m_bindings)
        if (binding->user != nullptr) context().collector.removeUser(binding->user);
    m_filters.clear();
    for (const CString* const name : m_aliases) context().collector.removeAlias(*name);
}

CError* CAudioProcessBase::init() { return nullptr; }

void CAudioProcessBase::reset() {
    for (CAudioPort* const port : m_ports)
        for (CAudioLink* const link : port->links()) link->resetDelays();
}

void CAudioProcessBase::detach() {
    while (!m_outgoing.isEmpty()) {
        const COutgoing last = m_outgoing.last();
        disconnect(*last.destination, last.destinationPort, last.sourcePort);
    }
    for (CAudioPort* const port : m_ports) {
        while (!port->passThroughs().isEmpty()) {
            const CAudioPassThrough last = port->passThroughs().last();
            disconnectThrough(port->number(), *last.destination, last.destinationPort);
        }
        port->links().clear();
    }
    ++m_changes;
}

// One block.

void CAudioProcessBase::prepare() {
    m_blockLength = deliveredLength();
    if (m_changes > 0 && rebuildInputs()) m_updateInProgress = m_allParamsChanged = true;
    if (m_updateInProgress || m_updateNeeded != 0) {
        if (m_allParamsChanged)
            for (CAudioParamBinding* const binding : m_bindings) binding->changedGroups = ~0U;
        advanceTimedEvents();
        update();
        m_allParamsChanged = m_updateInProgress = false;
        for (CAudioParamBinding* const binding : m_bindings) binding->changedGroups = 0;
        m_updateNeeded = m_timedEvents.isEmpty() ? 0 : 1;
    }
    for (CAudioPort* const port : m_ports) {
        for (CAudioLink* const link : port->links()) link->runDelays(pool(), m_blockLength);
        port->mix(pool(), definition().inputComboMode(), m_blockLength);
        port->passThrough(m_blockLength);
    }
}

// A link may come from where nothing runs; the others tell how long the block is. 0 without any.
int CAudioProcessBase::deliveredLength() const noexcept {
    int length = 0;
    for (CAudioPort* const port : m_ports)
        for (const CAudioLink* const link : port->links()) length = std::max(length, link->blockLength());
    return length;
}

void CAudioProcessBase::releaseInputs() {
    for (CAudioPort* const port : m_ports) port->releaseBuffers();
}

bool CAudioProcessBase::rebuildInputs() {
    m_changes = 0;
    const double oldRate = m_sampleRate;
    const int oldLatency = m_largestLatency;
    findLatencies();
    const bool isRateNew = m_sampleRate != oldRate;
    bool isChanged = removeUnusedPorts() || isRateNew || m_largestLatency != oldLatency;
    const bool isForAll = isChanged;
    for (CAudioPort* const port : m_ports) {
        const bool isPortChanged = port->rebuild();
        isChanged = isChanged || isPortChanged;
        if (isPortChanged || isForAll) port->writeTables(m_largestLatency, m_sampleRate);
        for (CAudioLink* const link : port->links()) link->align(pool(), m_largestLatency, isRateNew);
    }
    return isChanged;
}

void CAudioProcessBase::findLatencies() noexcept {
    bool isFirst = true;
    m_largestLatency = m_smallestLatency = 0;
    for (CAudioPort* const port : m_ports) {
        for (CAudioLink* const link : port->links()) {
            for (const CAudioChannel& channel : link->channels()) {
                m_largestLatency =
                    isFirst ? channel.latencySamples : std::max(m_largestLatency, channel.latencySamples);
                m_smallestLatency =
                    isFirst ? channel.latencySamples : std::min(m_smallestLatency, channel.latencySamples);
                if (isFirst) m_sampleRate = link->sampleRate();
                isFirst = false;
            }
        }
    }
}

bool CAudioProcessBase::removeUnusedPorts() {
    bool isAnyGone = false;
    for (int i = m_ports.count() - 1; i > 0; --i) {
        if (m_ports[i].isUsed()) continue;
        m_ports.removeAt(i);
        isAnyGone = true;
    }
    return isAnyGone;
}

void CAudioProcessBase::addTimedEvent(double seconds, bool* flag) {
    m_timedEvents.append({seconds, flag});
    m_updateNeeded = 1;
}

void CAudioProcessBase::removeTimedEvents(const bool* flag) noexcept {
    for (int i = m_timedEvents.count() - 1; i >= 0; --i)
        if (m_timedEvents[i].flag == flag) m_timedEvents.removeAt(i);
}

// An event whose time came to its end in the block before is due now.
void CAudioProcessBase::advanceTimedEvents() noexcept {
    for (int i = m_timedEvents.count() - 1; i >= 0; --i) {
        CTimedEvent& event = m_timedEvents[i];
        if (event.secondsLeft > 0.0) {
            event.secondsLeft -= m_blockLength / m_sampleRate;
        } else {
            *event.flag = true;
            m_timedEvents.removeAt(i);
        }
    }
}

// Delivery.

void CAudioProcessBase::setOutputTable(std::span<const CAudioChannel> table, double sampleRate) {
    m_outputCount = static_cast<int>(std::min(table.size(), m_outputTable.size()));
    std::copy_n(table.begin(), m_outputCount, m_outputTable.begin());
    for (CAudioChannel& channel : m_outputTable) channel.buffer.reset();
    m_outputSampleRate = sampleRate;
    for (const COutgoing& outgoing : m_outgoing)
        if (outgoing.link != nullptr) outgoing.link->setTable(outputTable(), sampleRate);
}

void CAudioProcessBase::beginDelivery() {
    for (const COutgoing& outgoing : m_outgoing) outgoing.link->beginDelivery(m_blockLength);
}

void CAudioProcessBase::deliver(int port, int channelNumber, CAudioBufferRef buffer) {
    const COutgoing* last = nullptr;
    for (const COutgoing& outgoing : m_outgoing) {
        if (outgoing.sourcePort != port) continue;
        if (last != nullptr) last->link->deliver(channelNumber, buffer);
        last = &outgoing;
    }
    if (last != nullptr) last->link->deliver(channelNumber, std::move(buffer));
}

// Parameters.

CError* CAudioProcessBase::addAlias(CStringView name, CStringView target) {
    BRT_TRY(path(), context().collector.addAlias(name, target));
    m_aliases.append(name);
    return nullptr;
}

CAudioParamBinding& CAudioProcessBase::bindParamByFullName(CStringView fullName, bool useAllGroups,
                                                           bool useAllElements) {
    CAudioParam& param = context().collector.getParam(fullName);
    const int boundGroup = useAllGroups ? CAudioParamUser::kAny : group();
    const int boundElement = useAllElements ? CAudioParamUser::kAny : stackIndex();
    CAudioParamBinding& binding = *m_bindings.append(new CAudioParamBinding);
    binding.values = &param.audio();
    binding.user =
        context().collector.addUser(param, &m_updateNeeded, &binding.changedGroups, boundGroup, boundElement);
    if (!param.audio().isValid()) return binding;
    const int groupCount = param.audio().groupCount();
    if (boundGroup == CAudioParamUser::kAny)
        binding.changedGroups = groupCount >= 32 ? ~0U : (1U << groupCount) - 1;
    else if (boundGroup < groupCount)
        binding.changedGroups = 1U << boundGroup;
    return binding;
}

}  // namespace brt
