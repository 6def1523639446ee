// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioProcessStack.h"

#include <algorithm>
#include <cmath>

#include "Audio/CAudioProcessDefBase.h"
#include "Core/CError.h"

namespace brt {

CAudioProcessStack::CAudioProcessStack() { setContainer(); }
CAudioProcessStack::~CAudioProcessStack() = default;

CError* CAudioProcessStack::init() {
    BRT_TRY(path(), CAudioProcessBase::init());
    const CStringView name = definition().stackParam();
    if (!name.isEmpty()) m_stackSize = &bindParam(name, true, true);
    return nullptr;
}

void CAudioProcessStack::update() {
    const bool isSizeNew = m_stackSize != nullptr && m_stackSize->changedGroups != 0;
    if (!isUpdateInProgress() && !isSizeNew) return;

    for (CChain* const chain : m_chains) chain->isWanted = false;
    for (const CAudioChannel& channel : mainPort().table()) chainFor(channel).isWanted = true;
    for (int i = m_chains.count() - 1; i >= 0; --i) {
        if (m_chains[i].isWanted) continue;
        resize(m_chains[i], 0);
        m_chains.removeAt(i);
    }
    m_running.clear();
    for (CChain* const chain : m_chains) {
        resize(*chain, unitCount(*chain));
        feed(*chain);
        for (CAudioProcessBase* const unit : chain->units) m_running.append(unit);
    }
}

CAudioProcessStack::CChain* CAudioProcessStack::findChain(const CAudioChannel& channel) const noexcept {
    const bool isByChannel = definition().isChannelStack();
    for (CChain* const chain : m_chains)
        if (chain->group == channel.group && (!isByChannel || chain->channelNumber == channel.number)) return chain;
    return nullptr;
}

CAudioProcessStack::CChain& CAudioProcessStack::chainFor(const CAudioChannel& channel) {
    if (CChain* const chain = findChain(channel)) return *chain;
    auto* const made = new CChain;
    made->group = channel.group;
    made->channelNumber = definition().isChannelStack() ? channel.number : -1;
    int place = 0;
    while (place < m_chains.count() &&
           (m_chains[place].group < made->group ||
            (m_chains[place].group == made->group && m_chains[place].channelNumber < made->channelNumber)))
        ++place;
    return *m_chains.insertAt(place, made);
}

int CAudioProcessStack::unitCount(const CChain& chain) const noexcept {
    if (m_stackSize == nullptr) return 1;
    const double wanted = m_stackSize->values->value(chain.group, 0, 1.0);
    return static_cast<int>(std::lround(std::clamp(wanted, 1.0, static_cast<double>(kMaxUnits))));
}

void CAudioProcessStack::resize(CChain& chain, int count) {
    while (chain.units.count() > count) removeUnit(chain);
    while (chain.units.count() < count) {
        const int before = chain.units.count();
        makeUnit(chain);
        if (chain.units.count() == before) return;  // logged; the chain stays shorter
    }
}

void CAudioProcessStack::makeUnit(CChain& chain) {
    std::unique_ptr<CAudioProcessBase> unit;
    const int index = chain.units.count();
    CError* const error =
        definition().createInstance(unit, path(), context(), chain.group, index, EProcessRole::kStackMember);
    if (error != nullptr) {
        logError(error);
        discardError(error);  // the rest of the graph plays on
        return;
    }
    if (index == 0) {
        chain.input = unit->addInput(0);
    } else {
        CAudioProcessBase& last = chain.units[index - 1];
        removeOutputChild(last, 0, 0);
        last.connect(*unit, 0, 0);
    }
    addOutputChild(*unit, 0, 0);
    chain.units.append(std::move(unit));
}

void CAudioProcessStack::removeUnit(CChain& chain) {
    const int index = chain.units.count() - 1;
    CAudioProcessBase& unit = chain.units[index];
    removeOutputChild(unit, 0, 0);
    if (index > 0) {
        chain.units[index - 1].disconnect(unit, 0, 0);
        addOutputChild(chain.units[index - 1], 0, 0);
    }
    unit.detach();
    chain.units.removeAt(index);
    if (index == 0) chain.input = nullptr;
}

// Tells the first unit which channels it gets.
void CAudioProcessStack::feed(CChain& chain) {
    if (chain.input == nullptr) return;
    std::array<CAudioChannel, kAudioChannelLimit> table{};
    std::size_t count = 0;
    for (const CAudioChannel& channel : mainPort().table())
        if (findChain(channel) == &chain) table[count++] = channel;
    chain.input->setTable({table.data(), count}, sampleRate());
}

void CAudioProcessStack::process() {
    prepare();
    const CAudioPort& port = mainPort();
    for (CChain* const chain : m_chains) {
        if (chain->input == nullptr) continue;
        chain->input->beginDelivery(blockLength());
        for (int i = 0; i < port.channelCount(); ++i)
            if (port.channel(i).group == chain->group)
                chain->input->deliver(port.channel(i).number, port.channel(i).buffer);
    }
    releaseInputs();
    for (CAudioProcessBase* const unit : m_running) unit->process();
}

void CAudioProcessStack::reset() {
    CAudioProcessBase::reset();
    for (CAudioProcessBase* const unit : m_running) unit->reset();
}

void CAudioProcessStack::detach() {
    for (CChain* const chain : m_chains) resize(*chain, 0);
    m_chains.clear();
    m_running.clear();
    CAudioProcessBase::detach();
}

}  // namespace brt
