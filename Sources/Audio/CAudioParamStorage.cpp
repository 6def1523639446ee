// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioParamStorage.h"

#include <algorithm>
#include <utility>

#include "Audio/CAudioParamInfo.h"
#include "Audio/CAudioParamUpdate.h"

namespace brt {

std::span<const double> CAudioParamStorage::values(int group) const noexcept {
    if (static_cast<unsigned>(group) >= static_cast<unsigned>(m_groupCount)) return {};
    const CGroup& values = m_groups[group];
    return {values.values.begin(), values.values.end()};
}

std::span<const double> CAudioParamStorage::defaults() const noexcept {
    return {m_defaults.begin(), static_cast<std::size_t>(m_defaultCount * m_format.elementSize)};
}

CAudioParamUpdate CAudioParamStorage::describe(int group) const noexcept {
    const bool isWhole = group == kWholeParam;
    CAudioParamUpdate update;
    update.group = group;
    update.elementCount = isWhole ? m_defaultCount : elementCount(group);
    update.isSetCount = true;
    update.format = m_format;
    update.values = isWhole ? m_defaults.begin() : values(group).data();
    update.data = &m_data;
    return update;
}

void CAudioParamStorage::apply(const CAudioParamUpdate& update) { applyFrom(update, nullptr); }

void CAudioParamStorage::applyMoving(CAudioParamUpdateCopy& update) { applyFrom(update.update(), &update.data()); }

// With a donor items move from and to it; without one they are cloned and deleted.
void CAudioParamStorage::applyFrom(const CAudioParamUpdate& update, CAudioParamData* donor) {
    if (update.group == kWholeParam) return applyWhole(update, donor);
    if (!m_isValid || update.format != m_format) return;

    CGroup& group = growTo(update.group);
    const int size = m_format.elementSize;
    for (int element = group.elementCount; element < update.firstElement; ++element)
        for (int sub = 0; sub < size; ++sub) group.values.append(copyOfDefault(element, sub));
    group.elementCount = std::max(group.elementCount, update.firstElement);

    const int newCount = std::max(group.elementCount, update.endElement());
    group.values.setCount(newCount * size);
    for (int i = 0; i < update.valueCount(); ++i) {
        double& place = group.values[update.firstElement * size + i];
        if (m_format.isFloat()) {
            place = update.values[i];
        } else {
            dropItem(place, donor);
            place = takeItem(update.values[i], update, donor);
        }
    }
    group.elementCount = newCount;
    if (update.isSetCount) dropElements(group, update.endElement(), donor);
}

void CAudioParamStorage::applyWhole(const CAudioParamUpdate& update, CAudioParamData* donor) {
    for (int i = 0; i < m_groupCount; ++i) dropElements(m_groups[i], 0, donor);
    m_groupCount = 0;
    if (!m_format.isFloat())
        for (int i = 0; i < m_defaultCount; ++i) dropItem(m_defaults[i], donor);
    m_defaultCount = 0;
    m_format = update.format;
    if (update.elementCount == 0) return setFormat(update.format);

    m_isValid = true;
    m_defaults.setCount(update.valueCount());
    for (int i = 0; i < update.valueCount(); ++i)
        m_defaults[i] = m_format.isFloat() ? update.values[i] : takeItem(update.values[i], update, donor);
    m_defaultCount = update.elementCount;
}

// The value that stands here for the item that `value` stands for in the update.
double CAudioParamStorage::takeItem(double value, const CAudioParamUpdate& update, CAudioParamData* donor) {
    if (donor != nullptr)
        if (std::unique_ptr<CAudioParamDataItem> item = donor->take(value)) return m_data.add(std::move(item));
    const CAudioParamDataItem* const item = update.data != nullptr ? update.data->find(value) : nullptr;
    if (item != nullptr) return m_data.add(item->clone());
    return m_format.dataType == EAudioDataType::kString ? m_data.addString({})
                                                        : m_data.add(std::make_unique<CAudioParamDataItemRaw>());
}

void CAudioParamStorage::dropItem(double value, CAudioParamData* donor) {
    std::unique_ptr<CAudioParamDataItem> item = m_data.take(value);
    if (item && donor != nullptr) donor->add(std::move(item));
}

double CAudioParamStorage::copyOfDefault(int element, int subValue) {
    const double value = defaultValue(element, subValue);
    return m_format.isFloat() ? value : m_data.add(m_data.find(value)->clone());
}

CAudioParamStorage::CGroup& CAudioParamStorage::growTo(int group) {
    while (m_groups.count() <= group) m_groups.append(new CGroup);
    m_groupCount = std::max(m_groupCount, group + 1);
    return m_groups[group];
}

void CAudioParamStorage::dropElements(CGroup& group, int firstElement, CAudioParamData* donor) {
    const int keptValues = firstElement * m_format.elementSize;
    if (!m_format.isFloat())
        for (int i = keptValues; i < group.values.count(); ++i) dropItem(group.values[i], donor);
    group.values.setCount(std::min(keptValues, group.values.count()));
    group.elementCount = std::min(group.elementCount, firstElement);
}

void CAudioParamStorage::setFormat(const CAudioParamFormat& format) {
    clear();
    m_format = format;
    m_isValid = true;
    m_defaultCount = 1;
    m_defaults.setCount(format.elementSize);
    if (!format.isFloat()) m_defaults[0] = takeItem(0.0, {}, nullptr);
}

void CAudioParamStorage::clear() {
    for (int i = 0; i < m_groupCount; ++i) {
        m_groups[i].values.clear();
        m_groups[i].elementCount = 0;
    }
    m_groupCount = 0;
    m_data.clear();
    m_defaults.clear();
    m_defaultCount = 0;
    m_isValid = false;
}

void CAudioParamStorage::clampAll(const CAudioParamInfo& info) {
    if (!m_format.isFloat()) return;
    const auto clamp = [&](CSmallArray<double>& values) {
        for (int i = 0; i < values.count(); ++i) values[i] = info.limit(values[i], i % m_format.elementSize);
    };
    clamp(m_defaults);
    for (int i = 0; i < m_groupCount; ++i) clamp(m_groups[i].values);
}

void CAudioParamStorage::assign(const CAudioParamStorage& source) {
    clear();
    if (!source.m_isValid) return;
    apply(source.describe(kWholeParam));
    for (int group = 0; group < source.m_groupCount; ++group) apply(source.describe(group));
}

}  // namespace brt
