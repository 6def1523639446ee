// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioParam.h"

#include <algorithm>
#include <cmath>

#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamFilter.h"

namespace brt {

CAudioParamUpdateData::CAudioParamUpdateData(CAudioParam& changed, const CAudioParamUpdate& change,
                                             const CAudioParamChangeContext& with)
    : param(changed), update(change), context(with) {
    sender = change.source;
    key = CUpdateFilter(&changed).number;
}

CAudioParam::CAudioParam(CAudioParamCollector& collector, CStringView name)
    : m_collector(collector), m_name(name), m_section(ELockRank::kParam, m_name) {}

CAudioParam::~CAudioParam() = default;

double CAudioParam::getFloat(int group, int element, double fallback) {
    const CRankedLock lock(m_section);
    return m_control.value(group, element, fallback);
}

CString CAudioParam::getString(int group, int element) {
    const CRankedLock lock(m_section);
    return m_control.data().text(m_control.value(group, element, 0.0));
}

CAudioParamUpdate CAudioParam::oneElement(int group, int element, const double* values) const noexcept {
    CAudioParamUpdate update;
    update.group = group;
    update.firstElement = element;
    update.elementCount = 1;
    update.format = m_control.format();
    update.values = values;
    return update;
}

void CAudioParam::setFloatAt(int group, int element, double value, const void* source,
                             const CAudioParamChangeContext& context) {
    const CRankedLock lock(m_section);
    if (!m_control.isValid() || !m_control.format().isFloat() || m_control.format().elementSize != 1) return;
    CAudioParamUpdate change = oneElement(group, element, &value);
    change.source = source;
    update(change, context);
}

void CAudioParam::setString(int group, int element, CStringView text, const void* source,
                            const CAudioParamChangeContext& context) {
    setItem(group, element, std::make_unique<CAudioParamDataItemString>(text), source, context);
}

void CAudioParam::setRaw(int group, int element, const CByteBuffer& bytes, const void* source,
                         const CAudioParamChangeContext& context) {
    setItem(group, element, std::make_unique<CAudioParamDataItemRaw>(bytes.data(), bytes.size()), source, context);
}

void CAudioParam::setItem(int group, int element, std::unique_ptr<CAudioParamDataItem> item, const void* source,
                          const CAudioParamChangeContext& context) {
    const bool isString = item->type() == CAudioParamDataItemString::kType;
    const CRankedLock lock(m_section);
    if (!m_control.isValid() ||
        m_control.format().dataType != (isString ? EAudioDataType::kString : EAudioDataType::kRaw))
        return;
    CAudioParamData data;
    const double value = data.add(std::move(item));
    CAudioParamUpdate change = oneElement(group, element, &value);
    change.source = source;
    change.data = &data;
    update(change, context);
}

// False for a change that can't be made. Maps places of a parameter that has a single group or element.
bool CAudioParam::admit(CAudioParamUpdate& update, const CAudioParamInfo& info) const noexcept {
    if (update.format != info.format) return false;
    if (update.group != kWholeParam) {
        if (update.format.isSingleGroup) update.group = 0;
        if (update.format.isSingleElement) {
            update.firstElement = 0;
            update.elementCount = std::min(update.elementCount, 1);
        }
        if (update.group < 0 || update.group >= kAudioGroupLimit) return false;
    }
    if (update.elementCount < 0 || update.elementCount > kAudioElementLimit || update.firstElement < 0 ||
        update.firstElement > kAudioElementLimit - update.elementCount)
        return false;
    return !update.format.isFloat() || std::all_of(update.values, update.values + update.valueCount(),
                                                   [](double value) { return std::isfinite(value); });
}

void CAudioParam::update(const CAudioParamUpdate& requested, const CAudioParamChangeContext& context) {
    const CRankedLock lock(m_section);
    const CAudioParamInfo* const ownInfo = info();
    CAudioParamUpdate change = requested;
    if (ownInfo == nullptr || !admit(change, *ownInfo)) return;
    if (change.source == nullptr) change.source = context.source;
    if (change.group != kWholeParam && change.firstElement > m_control.elementCount(change.group))
        return updateWidened(change, context);

    writeControl(change, *ownInfo, context);
    handOn(change, context);
    if (m_registry != nullptr) m_registry->followParam(*this, change, context);
    const CAudioParamUpdateData data(*this, change, context);
    m_collector.notify(&data);
    runFilters(change, context);
}

// The change begins behind the group's end: one that holds what lies between takes its place.
void CAudioParam::updateWidened(const CAudioParamUpdate& update, const CAudioParamChangeContext& context) {
    const bool isFloat = update.format.isFloat();
    const int size = update.format.elementSize;
    CSmallArray<double> values;
    CAudioParamData items;
    const auto append = [&](double value, const CAudioParamData* source) {
        if (isFloat) return values.append(value);
        const CAudioParamDataItem* const item = source != nullptr ? source->find(value) : nullptr;
        values.append(item != nullptr ? items.add(item->clone()) : 0.0);
    };
    CAudioParamUpdate wider = update;
    wider.firstElement = m_control.elementCount(update.group);
    wider.elementCount = update.endElement() - wider.firstElement;
    for (int element = wider.firstElement; element < update.firstElement; ++element)
        for (int sub = 0; sub < size; ++sub) append(m_control.defaultValue(element, sub), &m_control.data());
    for (int i = 0; i < update.valueCount(); ++i) append(update.values[i], update.data);
    wider.values = values.begin();
    wider.data = &items;
    this->update(wider, context);
}

void CAudioParam::writeControl(const CAudioParamUpdate& update, const CAudioParamInfo& info,
                               const CAudioParamChangeContext& context) {
    const bool isRecorded =
        context.undo != nullptr && update.group != kWholeParam && (info.isStorable || info.isPersistent);
    if (isRecorded) context.undo->recordBefore(m_name, update.group, m_control, false);
    m_control.apply(update);
    if (isRecorded) context.undo->recordAfter(m_name, update.group, m_control, false);
}

void CAudioParam::handOn(const CAudioParamUpdate& update, const CAudioParamChangeContext& context) {
    if (context.isDirect) {
        CAudioParamUpdateCopy change(update);
        return applyToAudio(change);
    }
    auto* const entry = new CAudioParamQueueEntry(*this, update);
    if (context.batch != nullptr) return context.batch->append(entry);
    CAudioParamQueue single;
    single.append(entry);
    m_collector.handOver(single);
}

// A filter may take this one's place in the list only by leaving it, which needs the lock that is held here.
void CAudioParam::runFilters(const CAudioParamUpdate& update, const CAudioParamChangeContext& context) {
    for (int i = 0; i < m_filters.count(); ++i) m_filters[i]->run(update, context);
}

void CAudioParam::removeFilter(CAudioParamFilter& filter) {
    const int index = m_filters.find(&filter);
    if (index >= 0) m_filters.removeAt(index);
}

void CAudioParam::addRegistry(CAudioParamRegistryBase& registry) {
    const CRankedLock lock(m_section);
    if (m_registries.find(&registry) < 0) m_registries.append(&registry);
}

void CAudioParam::removeRegistry(CAudioParamRegistryBase& registry) {
    const CRankedLock lock(m_section);
    const int index = m_registries.find(&registry);
    if (index >= 0) m_registries.removeAt(index);
}

void CAudioParam::tellRegistries(int group, const CAudioParamChangeContext& context) {
    for (CAudioParamRegistryBase* const registry : m_registries) registry->onUserChange(*this, group, context);
}

void CAudioParam::listDependents(CSmallArray<CAudioParam*>& params) const {
    for (const CAudioParamFilter* const filter : m_filters)
        for (CAudioParam* const param : filter->destinations())
            if (params.find(param) < 0) params.append(param);
}

// A reset names places as updates do: of a single group or element there is the first alone.
void CAudioParam::mapPlace(int& group, int& element) const noexcept {
    if (group == kWholeParam) return;
    if (m_control.format().isSingleGroup && group > 0) group = 0;
    if (m_control.format().isSingleElement && element > 0) element = 0;
}

void CAudioParam::resetToDefault(int group, int element, const CAudioParamChangeContext& context,
                                 bool useFirstDefault) {
    const CRankedLock lock(m_section);
    if (!m_control.isValid()) return;
    mapPlace(group, element);
    const int groupCount = std::max(m_control.groupCount(), m_defaults.groupCount());
    if (group == kAllGroups) {
        for (int g = 0; g < groupCount; ++g) resetGroup(g, context);
        return;
    }
    if (group < 0 || group >= groupCount) return;
    if (element == kAllElements) return resetGroup(group, context);

    const int fromGroup = useFirstDefault ? 0 : group;
    const int fromElement = useFirstDefault ? 0 : element;
    const bool isThere = fromElement < m_defaults.elementCount(fromGroup);
    const CAudioParamStorage& from = isThere ? m_defaults : m_control;
    // Whole elements, so that all sub-values come along.
    CSmallArray<double> values;
    const int elementSize = from.format().elementSize;
    const auto first = static_cast<std::size_t>(fromElement) * static_cast<std::size_t>(elementSize);
    for (int sub = 0; sub < elementSize; ++sub)
        values.append(isThere ? from.values(fromGroup)[first + static_cast<std::size_t>(sub)]
                              : from.defaultValue(fromElement, sub));
    CAudioParamUpdate change = oneElement(group, element, values.begin());
    change.data = &from.data();
    // The items of the reset belong to this parameter itself, and are copied before it changes.
    const CAudioParamUpdateCopy copy(change);
    update(copy.update(), context);
}

// As a whole, to the values that a reset means; without elements where there are none.
void CAudioParam::resetGroup(int group, const CAudioParamChangeContext& context) {
    CAudioParamUpdate change = m_defaults.describe(group);
    change.format = m_control.format();
    update(change, context);
}

void CAudioParam::resetToDefinition(int group, int element, bool isLastElement,
                                    const CAudioParamChangeContext& context) {
    const CRankedLock lock(m_section);
    if (!m_control.isValid()) return;
    mapPlace(group, element);
    if (group == kAllGroups) {
        const int groupCount = std::max(m_control.groupCount(), 1);
        for (int g = 0; g < groupCount; ++g) resetGroupToDefinition(g, context);
        return;
    }
    if (group == kWholeParam) return loadDefault(m_control.defaults().data(), m_control.data(), element, true, context);
    if (element == kAllElements) return resetGroupToDefinition(group, context);

    CAudioParamUpdate change = oneElement(group, element, m_control.defaults().data());
    change.isSetCount = isLastElement;
    change.data = &m_control.data();
    const CAudioParamUpdateCopy copy(change);
    update(copy.update(), context);
}

// Group 0 gets the defaults; any other becomes empty, and so reads them.
void CAudioParam::resetGroupToDefinition(int group, const CAudioParamChangeContext& context) {
    CAudioParamUpdate change = m_control.describe(kWholeParam);
    change.group = group;
    if (group != 0) change.elementCount = 0;
    const CAudioParamUpdateCopy copy(change);
    update(copy.update(), context);
}

void CAudioParam::setInfo(const CAudioParamInfo& newInfo, const CAudioParamChangeContext& context) {
    const CRankedLock lock(m_section);
    if (info() != nullptr && info()->isSameAs(newInfo)) return;
    m_info.store(&newInfo, std::memory_order_release);
    const bool mayFollow = newInfo.format.isFloat() && newInfo.format.elementSize == 1;
    m_registry =
        mayFollow && !newInfo.registryName.isEmpty() ? m_collector.findRegistry(newInfo.registryName) : nullptr;

    const int groupCount = newInfo.defaults.groupCount();
    for (int group = 0; group < groupCount; ++group) {
        CAudioParamUpdate change = newInfo.defaults.describe(group);
        if (group == 0) change.group = kWholeParam;
        m_defaults.apply(change);
        update(change, context);
    }
}

void CAudioParam::applyToAudio(CAudioParamUpdateCopy& change) {
    m_audio.applyMoving(change);
    tellUsers(change.update());
}

void CAudioParam::tellUsers(const CAudioParamUpdate& update) noexcept {
    const bool isWhole = update.group == kWholeParam;
    const std::uint32_t groupBit = isWhole ? ~0U : 1U << update.group;
    for (CAudioParamUser* user = m_firstUser; user != nullptr; user = user->next) {
        const bool isInGroup = isWhole || user->group == CAudioParamUser::kAny || user->group == update.group ||
                               (update.format.isSingleGroup && update.group == 0);
        // A count that was set concerns all elements behind it too: they may be gone.
        const int element = update.format.isSingleElement ? 0 : user->element;
        const bool isInRange = isWhole || user->element == CAudioParamUser::kAny ||
                               (element >= update.firstElement && (update.isSetCount || element < update.endElement()));
        if (!isInGroup || !isInRange) continue;
        *user->updateNeeded = 1;
        *user->changedGroups = groupBit;
    }
}

}  // namespace brt
