// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioParamUpdate.h"

#include <cmath>

#include "Audio/StreamNumbers.h"

namespace brt {

void CAudioParamUpdateCopy::assign(const CAudioParamUpdate& source) {
    m_update = source;
    m_values.clear();
    m_values.setCount(source.valueCount());
    m_data.clear();
    for (int i = 0; i < source.valueCount(); ++i) {
        double value = source.values[i];
        if (!source.format.isFloat()) {
            const CAudioParamDataItem* const item = source.data != nullptr ? source.data->find(value) : nullptr;
            value = item != nullptr ? m_data.add(item->clone()) : 0.0;
        }
        m_values[i] = value;
    }
    m_update.values = m_values.begin();
    m_update.data = &m_data;
}

CError* CAudioParamUpdateCopy::save(COutputStream& stream) const {
    BRT_TRY("", writeI32(stream, m_update.group));
    BRT_TRY("", writeI32(stream, m_update.firstElement));
    BRT_TRY("", writeI32(stream, m_update.elementCount));
    BRT_TRY("", writeBool(stream, m_update.isSetCount));
    BRT_TRY("", writeI32(stream, m_update.format.elementSize));
    BRT_TRY("", writeI32(stream, static_cast<std::int32_t>(m_update.format.dataType)));
    BRT_TRY("", writeBool(stream, m_update.format.isSingleGroup));
    BRT_TRY("", writeBool(stream, m_update.format.isSingleElement));
    for (const double value : m_values) {
        if (m_update.format.isFloat())
            BRT_TRY("", writeF64(stream, value));
        else
            BRT_TRY("", writeU32(stream, static_cast<std::uint32_t>(value)));
    }
    return m_update.format.isFloat() ? nullptr : m_data.save(stream);
}

CError* CAudioParamUpdateCopy::load(CInputStream& stream, EUpdateScope scope) {
    CError* const error = loadFrom(stream, scope);
    if (error) {
        m_update = {};
        m_values.clear();
        m_data.clear();
        return makeError(error, __FILE__, __LINE__, "", "");
    }
    m_update.values = m_values.begin();
    m_update.data = &m_data;
    return nullptr;
}

CError* CAudioParamUpdateCopy::loadFrom(CInputStream& stream, EUpdateScope scope) {
    const auto damaged = [](CStringView what, std::int64_t number) {
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CAudioParamUpdate_load_Damaged A parameter change can't be used: its %1 is %2.", what,
                         number);
    };
    m_update = {};
    m_values.clear();
    std::int32_t dataType = 0;
    BRT_TRY("", readI32(stream, m_update.group));
    BRT_TRY("", readI32(stream, m_update.firstElement));
    BRT_TRY("", readCount(stream, m_update.elementCount, kAudioElementLimit, 0));
    BRT_TRY("", readBool(stream, m_update.isSetCount));
    BRT_TRY("", readI32(stream, m_update.format.elementSize));
    BRT_TRY("", readI32(stream, dataType));
    BRT_TRY("", readBool(stream, m_update.format.isSingleGroup));
    BRT_TRY("", readBool(stream, m_update.format.isSingleElement));
    m_update.format.dataType = static_cast<EAudioDataType>(dataType);
    const bool isWhole = scope == EUpdateScope::kGroupOrWhole && m_update.group == kWholeParam;
    if (!isWhole && (m_update.group < 0 || m_update.group >= kAudioGroupLimit)) return damaged("group", m_update.group);
    if (dataType < 0 || dataType > static_cast<std::int32_t>(EAudioDataType::kRaw))
        return damaged("data type", dataType);
    const int sizeLimit = m_update.format.isFloat() ? kAudioElementSizeLimit : 1;
    if (m_update.format.elementSize < 1 || m_update.format.elementSize > sizeLimit)
        return damaged("element size", m_update.format.elementSize);
    if (m_update.firstElement < 0 || m_update.firstElement > kAudioElementLimit - m_update.elementCount)
        return damaged("first element", m_update.firstElement);

    for (int i = 0; i < m_update.valueCount(); ++i) {
        double value = 0.0;
        std::uint32_t id = 0;
        if (m_update.format.isFloat()) {
            BRT_TRY("", readF64(stream, value));
            if (!std::isfinite(value)) return damaged("number that is none, at place", i);
        } else {
            BRT_TRY("", readU32(stream, id));
            value = id;
        }
        m_values.append(value);
    }
    if (m_update.format.isFloat()) return nullptr;
    BRT_TRY("", m_data.load(stream));
    for (const double value : m_values)
        if (m_data.find(value) == nullptr) return damaged("missing item", static_cast<std::int64_t>(value));
    return nullptr;
}

}  // namespace brt
