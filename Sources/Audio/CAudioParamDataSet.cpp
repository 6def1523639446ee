// SPDX-License-Identifier: LicenseRef-Halyard
// How a storage turns into text and bytes: the defaults of a definition, and the data set of presets and messages.
#include <algorithm>
#include <cmath>

#include "Audio/CAudioParamConverter.h"
#include "Audio/CAudioParamInfo.h"
#include "Audio/CAudioParamStorage.h"
#include "Audio/CAudioParamUpdate.h"
#include "Audio/StreamNumbers.h"

namespace brt {
namespace {

constexpr std::uint32_t kDataSetVersion = 1;

CError* damagedSet(CStringView what, std::int64_t number) {
    return makeError(nullptr, __FILE__, __LINE__, "",
                     "@brtstr_CAudioParamStorage_load_Damaged Parameter values can't be used: %1 %2.", what, number);
}

// One update of a group under construction.
CAudioParamUpdate wholeGroup(int group, const CAudioParamFormat& format, const CSmallArray<double>& values,
                             const CAudioParamData& items) {
    CAudioParamUpdate update;
    update.group = group;
    update.elementCount = values.count() / format.elementSize;
    update.isSetCount = true;
    update.format = format;
    update.values = values.begin();
    update.data = &items;
    return update;
}

}  // namespace

CError* CAudioParamStorage::parseToken(const CAudioParamInfo& info, CStringView token, int subValue, double& value) {
    if (m_format.dataType == EAudioDataType::kString) return value = m_data.addString(token), nullptr;
    if (m_format.dataType == EAudioDataType::kRaw)
        return value = m_data.add(std::make_unique<CAudioParamDataItemRaw>()), nullptr;
    bool ok = false;
    if (subValue < m_format.elementSize) value = info.converters[subValue]->parseRaw(info, subValue, token, ok);
    if (!ok)
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CAudioParamStorage_parseDefValues_Error Default values parsing error.");
    return nullptr;
}

CError* CAudioParamStorage::parseDefValues(const CAudioParamInfo& info, CStringView text, CStringView context) {
    clear();
    m_format = info.format;
    if (text.isEmpty() && m_format.isFloat()) return nullptr;

    const auto endsToken = [&](char16_t unit) {
        return unit == ',' || unit == ';' || (unit == ' ' && m_format.elementSize >= 2);
    };
    int group = 0;
    int subValue = 0;
    int tokenStart = 0;
    for (int i = 0; i <= text.length(); ++i) {
        const char16_t unit = i < text.length() ? text[i] : u';';
        if (!endsToken(unit)) continue;
        double value = 0.0;
        BRT_TRY(context, parseToken(info, text.slice(tokenStart, i - tokenStart), subValue, value));
        growTo(group).values.append(value);
        tokenStart = i + 1;
        ++subValue;
        if (unit == ' ') continue;
        if (subValue != m_format.elementSize)
            return makeError(
                nullptr, __FILE__, __LINE__, context,
                "@brtstr_CAudioParamStorage_parseDefValues_NoElements Not enough default elements at pos %1.", i);
        subValue = 0;
        ++m_groups[group].elementCount;
        if (unit == ';') ++group;
    }
    setDefaultsFromFirstGroup();
    return nullptr;
}

void CAudioParamStorage::setDefaultsFromFirstGroup() {
    if (elementCount(0) == 0) return;
    if (!m_format.isFloat())
        for (int i = 0; i < m_defaultCount; ++i) dropItem(m_defaults[i], nullptr);
    const CGroup& first = m_groups[0];
    m_defaults.setCount(first.values.count());
    for (int i = 0; i < first.values.count(); ++i)
        m_defaults[i] = m_format.isFloat() ? first.values[i] : m_data.add(m_data.find(first.values[i])->clone());
    m_defaultCount = first.elementCount;
    m_isValid = true;
}

CError* CAudioParamStorage::saveDataSet(COutputStream& stream, int group) const {
    const int firstGroup = group < 0 ? 0 : group;
    const int endGroup = group < 0 ? m_groupCount : group + 1;
    BRT_TRY("", writeU32(stream, kDataSetVersion));
    BRT_TRY("", writeI32(stream, m_format.elementSize));
    BRT_TRY("", writeI32(stream, static_cast<std::int32_t>(m_format.dataType)));
    BRT_TRY("", writeI32(stream, endGroup - firstGroup));

    if (!m_format.isFloat()) {
        CAudioParamData items;
        for (int g = firstGroup; g < endGroup; ++g)
            for (const double value : values(g)) items.add(m_data.find(value)->clone());
        BRT_TRY("", items.save(stream));
    }
    std::uint32_t lastItem = 0;
    for (int g = firstGroup; g < endGroup; ++g) {
        BRT_TRY("", writeI32(stream, elementCount(g)));
        for (const double value : values(g)) {
            if (m_format.isFloat())
                BRT_TRY("", writeF64(stream, value));
            else
                BRT_TRY("", writeU32(stream, ++lastItem));
        }
    }
    return nullptr;
}

CError* CAudioParamStorage::loadDataSet(CInputStream& stream, const CAudioParamFormat& format) {
    std::uint32_t version = 0;
    std::int32_t elementSize = 0;
    std::int32_t dataType = 0;
    BRT_TRY("", readU32(stream, version));
    if (version != kDataSetVersion)
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "brtstr_CAudioParamStorage_load_VersionError Unsupported data set version %1.", version);
    BRT_TRY("", readI32(stream, elementSize));
    BRT_TRY("", readI32(stream, dataType));
    const auto ownDataType = static_cast<std::int32_t>(format.dataType);
    if (elementSize != format.elementSize || dataType != ownDataType)
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CAudioParamStorage_load_FormatError Unsupported storage format (esize=%1, dtype=%2; "
                         "should be: esize=%3, dtype=%4).",
                         elementSize, dataType, format.elementSize, ownDataType);
    int groupCount = 0;
    BRT_TRY("", readCount(stream, groupCount, kAudioGroupLimit, 4));

    CAudioParamStorage loaded;
    if (m_isValid && m_format == format)
        loaded.apply(describe(kWholeParam));
    else
        loaded.setFormat(format);
    CAudioParamData items;
    if (!format.isFloat()) BRT_TRY("", items.load(stream));
    for (int group = 0; group < groupCount; ++group) BRT_TRY("", loaded.loadGroup(stream, group, items));
    loaded.setDefaultsFromFirstGroup();
    assign(loaded);
    return nullptr;
}

CError* CAudioParamStorage::loadGroup(CInputStream& stream, int group, const CAudioParamData& items) {
    int count = 0;
    const int elementBytes = m_format.isFloat() ? 8 * m_format.elementSize : 4;
    BRT_TRY("", readCount(stream, count, kAudioElementLimit, elementBytes));
    CSmallArray<double> values;
    for (int i = 0; i < count * m_format.elementSize; ++i) {
        double value = 0.0;
        if (m_format.isFloat()) {
            BRT_TRY("", readF64(stream, value));
            if (!std::isfinite(value)) return damagedSet("there is no number at place", i);
        } else {
            std::uint32_t id = 0;
            BRT_TRY("", readU32(stream, id));
            value = id;
            if (items.find(value) == nullptr) return damagedSet("there is no item", id);
        }
        values.append(value);
    }
    // Where there is one group or element, the others of a set would end up in its place.
    if (m_format.isSingleGroup && group > 0) return nullptr;
    CAudioParamUpdate whole = wholeGroup(group, m_format, values, items);
    if (m_format.isSingleElement) whole.elementCount = std::min(whole.elementCount, 1);
    apply(whole);
    return nullptr;
}

}  // namespace brt
