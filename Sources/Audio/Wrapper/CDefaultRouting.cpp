// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/Wrapper/CDefaultRouting.h"

#include <algorithm>
#include <array>

#include "Audio/CAudioLink.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamLocks.h"

namespace brt {
namespace {

constexpr int kGroupCount = 8;
constexpr int kListLength = 8;  // of the lists of numbers, at least
// What the first group may be called, for the names to be nobody's own.
constexpr CStringView kFirstGroupNames[] = {"1", "G1", "G-1", "MONO", "STEREO", "ALL CH", "MULTI"};

CStringView textAt(const CAudioParam& param, int element) {
    const CAudioParamStorage& control = param.control();
    return control.data().text(control.value(0, element, 0.0));
}

int numberAt(const CAudioParam& param, int element) { return static_cast<int>(param.control().value(0, element, 0.0)); }

int listLength(const CAudioParam& param) { return std::max(param.control().elementCount(0), kListLength); }

// The channel that an element stands for, from 1, as long as there is a host channel for it.
bool countsUpTo(const CAudioParam& param, int channelCount) {
    for (int i = 0; i < listLength(param); ++i)
        if (numberAt(param, i) != (i < channelCount ? i + 1 : 0)) return false;
    return true;
}

int groupOf(int channel, int channelCount) {
    return channel < channelCount ? 0 : std::min(channel / 2, kGroupCount - 1);
}

template <class ValueAt>
void writeNumbers(CAudioParam& param, int count, const CAudioParamChangeContext& context, ValueAt valueAt) {
    CSmallArray<double> values;
    for (int i = 0; i < count; ++i) values.append(valueAt(i));
    CAudioParamUpdate update;
    update.elementCount = count;
    update.isSetCount = true;
    update.format = param.control().format();
    update.values = values.begin();
    param.update(update, context);
}

template <class TextAt>
void writeTexts(CAudioParam& param, int count, const CAudioParamChangeContext& context, TextAt textOf) {
    CAudioParamData items;
    CSmallArray<double> values;
    for (int i = 0; i < count; ++i) values.append(items.addString(textOf(i)));
    CAudioParamUpdate update;
    update.elementCount = count;
    update.isSetCount = true;
    update.format = param.control().format();
    update.values = values.begin();
    update.data = &items;
    param.update(update, context);
}

CString groupName(int group, int channelCount) {
    if (group == 0) return channelCount == 1 ? "MONO" : channelCount == 2 ? "STEREO" : "MULTI";
    CString number;
    CString::fromInt(number, std::int64_t{group} + 1);
    return CString("G-").append(number);
}

}  // namespace

// Runs once the thread that changed the routing holds no lock.
class CDefaultRouting::CNewsCall final : public CDeferredCall {
public:
    explicit CNewsCall(CDefaultRouting& routing) noexcept : m_routing(routing) {}
    void run() override { m_routing.m_watcher->onRoutingChanged(); }
    bool absorb(const CDeferredCall& later) override {
        const auto* const call = dynamic_cast<const CNewsCall*>(&later);
        return call != nullptr && &call->m_routing == &m_routing;
    }

private:
    CDefaultRouting& m_routing;
};

void CDefaultRouting::attach(CAudioParamCollector& collector, CStringView path, CRoutingWatcher& watcher) {
    m_collector = &collector;
    m_watcher = &watcher;
    const auto param = [&](CStringView name) -> CAudioParam* {
        return &collector.getParam(CString(path).append(".").append(name));
    };
    m_inChannelNames = param("io-params.in-channel-names");
    m_groupNames = param("io-params.group-names");
    m_inRouting = param("io-params.in-routing");
    m_grouping = param("io-params.grouping");
    m_outRouting = param("io-params.out-routing");
    m_channelCounts = param("channel-counts");
    m_inRoutingListener.attach(&collector, CUpdateFilter(m_inRouting));
    m_groupingListener.attach(&collector, CUpdateFilter(m_grouping));
}

void CDefaultRouting::detach() {
    m_inRoutingListener.detach();
    m_groupingListener.detach();
}

void CDefaultRouting::setHostChannels(int channelCount, const CStringList& names) {
    setHostChannelCount(channelCount);
    const CRankedLock lock(m_inChannelNames->section());
    m_names.clear();
    for (const CString* const name : names) m_names.append(name->view());
}

bool CDefaultRouting::setHostChannelCount(int channelCount) noexcept {
    m_hostChannelCount.store(channelCount, std::memory_order_relaxed);
    return channelCount != m_routedChannelCount.load(std::memory_order_relaxed);
}

void CDefaultRouting::listRoutingParams(CSmallArray<CAudioParam*>& params) {
    for (CAudioParam* const param : {m_inChannelNames, m_groupNames, m_inRouting, m_grouping, m_outRouting})
        params.append(param);
}

// In one batch, under all locks.
template <class Write>
void CDefaultRouting::change(CAudioParamUndoData* undo, Write write) {
    CSmallArray<CAudioParam*> params;
    listRoutingParams(params);
    const CAudioParamLocks locks({params.begin(), static_cast<std::size_t>(params.count())});
    CAudioParamQueue batch;
    write(CAudioParamChangeContext{.undo = undo, .batch = &batch, .source = this});
    m_collector->handOver(batch);
}

void CDefaultRouting::update(bool isForced) {
    if (isForced) m_wasForced.store(true, std::memory_order_relaxed);
    change(nullptr, [this](const CAudioParamChangeContext& context) { updateRouting(context); });
}

void CDefaultRouting::importChannelLabels(CAudioParamUndo* undo) {
    m_wasForced.store(true, std::memory_order_relaxed);
    auto record = std::make_unique<CAudioParamUndoRecord>("Channel label import");
    change(undo != nullptr ? record.get() : nullptr, [this](const CAudioParamChangeContext& context) {
        writeChannelNames(context);
        updateRouting(context);
    });
    if (undo != nullptr) undo->submit(std::move(record));
}

void CDefaultRouting::updateRouting(const CAudioParamChangeContext& context) {
    if (!m_wasForced.load(std::memory_order_relaxed) || !isUntouched()) return;
    writeChannelNames(context);
    writeRouting(context);
}

bool CDefaultRouting::isUntouched() const {
    for (const CAudioParam* const texts : {m_inChannelNames, m_groupNames})
        if (!texts->control().isValid() || texts->control().format().dataType != EAudioDataType::kString) return false;
    for (const CAudioParam* const numbers : {m_inRouting, m_grouping, m_outRouting})
        if (!numbers->control().isValid() || !numbers->control().format().isFloat()) return false;
    if (!hasDefaultGroupNames()) return false;

    int channelCount = 0;
    while (channelCount < listLength(*m_inRouting) && numberAt(*m_inRouting, channelCount) != 0) ++channelCount;
    if (!countsUpTo(*m_inRouting, channelCount) || !countsUpTo(*m_outRouting, channelCount)) return false;
    for (int i = 0; i < listLength(*m_grouping); ++i)
        if (numberAt(*m_grouping, i) != groupOf(i, channelCount)) return false;
    return true;
}

bool CDefaultRouting::hasDefaultGroupNames() const {
    const CStringView first = textAt(*m_groupNames, 0);
    if (std::find(std::begin(kFirstGroupNames), std::end(kFirstGroupNames), first) == std::end(kFirstGroupNames))
        return false;
    for (int group = 1; group < kGroupCount; ++group) {
        CString number;
        CString::fromInt(number, std::int64_t{group} + 1);
        const CStringView name = textAt(*m_groupNames, group);
        if (!(number == name) && !(CString("G").append(number) == name) && !(CString("G-").append(number) == name))
            return false;
    }
    return true;
}

void CDefaultRouting::writeChannelNames(const CAudioParamChangeContext& context) {
    if (m_names.isEmpty()) return;
    writeTexts(*m_inChannelNames, m_names.count(), context, [this](int i) { return m_names[i].view(); });
}

void CDefaultRouting::writeRouting(const CAudioParamChangeContext& context) {
    const int channelCount = hostChannelCount();
    m_routedChannelCount.store(channelCount, std::memory_order_relaxed);
    writeTexts(*m_groupNames, kGroupCount, context, [=](int i) { return groupName(i, channelCount); });
    const auto channelNumber = [=](int i) { return i < channelCount ? i + 1.0 : 0.0; };
    const int length = std::max(listLength(*m_inRouting), channelCount);
    writeNumbers(*m_inRouting, length, context, channelNumber);
    writeNumbers(*m_outRouting, length, context, channelNumber);
    writeNumbers(*m_grouping, length, context, [=](int i) { return groupOf(i, channelCount); });
}

// On the thread of the change, under the parameter's lock.
void CDefaultRouting::onRoutingChanged(const CUpdateData* data) {
    static_cast<void>(data);
    deferCall(std::unique_ptr<CDeferredCall>(new CNewsCall(*this)));
}

void CDefaultRouting::updateChannelCounts() {
    std::array<int, kGroupCount> counts{};
    for (int i = 0; i < m_internalChannelCount; ++i) {
        if (m_inRouting->getFloat(0, i, i + 1.0) < 0.5) continue;
        const auto group = static_cast<int>(m_grouping->getFloat(0, i, 0.0));
        if (group >= 0 && group < kGroupCount) ++counts[static_cast<std::size_t>(group)];
    }
    for (int group = 0; group < kGroupCount; ++group) {
        const double count = counts[static_cast<std::size_t>(group)];
        if (m_channelCounts->getFloat(group, 0, -1.0) != count) m_channelCounts->setFloat(count, group, this);
    }
}

}  // namespace brt
