// SPDX-License-Identifier: LicenseRef-Halyard
// How a parameter stands in presets, and how it comes back from one.
#include <algorithm>

#include "Audio/CAudioParam.h"
#include "Core/CError.h"
#include "Core/CInputStream.h"
#include "Core/COutputStream.h"
#include "Core/Log.h"

namespace brt {

CError* CAudioParamBlock::load(CInputStream& stream, const CAudioParamInfo& info) {
    BRT_TRY(info.name, stream.readString(definitionName));
    BRT_TRY(definitionName, values.loadDataSet(stream, info.format));
    values.clampAll(info);
    return nullptr;
}

CError* CAudioParam::saveToStream(COutputStream& stream, int group) {
    const CRankedLock lock(m_section);
    BRT_ASSERT(info() != nullptr);
    BRT_TRY(m_name, stream.writeString(info()->name));
    BRT_TRY(m_name, m_control.saveDataSet(stream, group));
    return nullptr;
}

CError* CAudioParam::loadFromStream(CInputStream& stream, bool toDefaults, const CAudioParamChangeContext& context,
                                    int group, int element, bool isLastElement) {
    const CRankedLock lock(m_section);
    BRT_ASSERT(info() != nullptr);
    CAudioParamBlock block;
    BRT_TRY(m_name, block.load(stream, *info()));
    loadBlock(block, toDefaults, context, group, element, isLastElement);
    return nullptr;
}

void CAudioParam::loadBlock(const CAudioParamBlock& block, bool toDefaults, const CAudioParamChangeContext& context,
                            int group, int element, bool isLastElement) {
    const CRankedLock lock(m_section);
    const CAudioParamStorage& values = block.values;
    if (toDefaults) return m_defaults.assign(values);
    if (group == kAllGroups) {
        const int groupCount = std::max(m_control.groupCount(), values.groupCount());
        for (int g = 0; g < groupCount; ++g) update(values.describe(g), context);
        return;
    }
    if (values.elementCount(0) == 0) return;
    if (group == kWholeParam) return loadDefault(values.values(0).data(), values.data(), element, false, context);
    CAudioParamUpdate change = values.describe(0);
    change.group = group;
    if (element != kAllElements) {
        change.firstElement = element;
        change.elementCount = 1;
        change.isSetCount = isLastElement;
    }
    update(change, context);
}

// One element of the defaults: the first one replaces all, the one behind the last is added.
void CAudioParam::loadDefault(const double* values, const CAudioParamData& data, int element, bool isReset,
                              const CAudioParamChangeContext& context) {
    const int expected = m_control.defaultCount();
    if (element != 0 && element != expected) {
        if (isReset)
            logLine("Unexpected Element %i (expected %i), param '%s'.", element, expected, m_name);
        else
            logLine("%s // Unexpected LoadElement %i (expected %i).", m_name, element, expected);
        return;
    }
    CAudioParamStorage next;
    CAudioParamUpdate change = m_control.describe(kWholeParam);
    change.group = 0;
    if (element == 0) change.elementCount = 0;
    next.setFormat(m_control.format());
    next.apply(change);
    CAudioParamUpdate added = oneElement(0, element, values);
    added.data = &data;
    next.apply(added);
    CAudioParamUpdate whole = next.describe(0);
    whole.group = kWholeParam;
    update(whole, context);
}

}  // namespace brt
