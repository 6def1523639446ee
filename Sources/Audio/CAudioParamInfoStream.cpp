// SPDX-License-Identifier: LicenseRef-Halyard
// The stored form of a definition, which windows get.
#include <cmath>

#include "Audio/CAudioParamConverter.h"
#include "Audio/CAudioParamInfo.h"
#include "Audio/StreamNumbers.h"

namespace brt {
namespace {

constexpr int kMostNames = 4096;

CError* damagedInfo(CStringView what, std::int64_t number) {
    return makeError(nullptr, __FILE__, __LINE__, "",
                     "@brtstr_CAudioParamInfo_load_Damaged A parameter's definition can't be used: %1 %2.", what,
                     number);
}

CError* saveNames(COutputStream& stream, const CStringList& longNames, const CStringList& shortNames) {
    BRT_TRY("", writeI32(stream, longNames.count()));
    for (int i = 0; i < longNames.count(); ++i) {
        BRT_TRY("", stream.writeString(longNames[i]));
        BRT_TRY("", stream.writeString(shortNames[i]));
    }
    return nullptr;
}

CError* readName(CInputStream& stream, CStringList& names) {
    CString text;
    BRT_TRY("", stream.readString(text));
    names.append(text);
    return nullptr;
}

CError* loadFormat(CInputStream& stream, CAudioParamFormat& format) {
    std::int32_t dataType = 0;
    BRT_TRY("", readI32(stream, format.elementSize));
    BRT_TRY("", readI32(stream, dataType));
    BRT_TRY("", readBool(stream, format.isSingleGroup));
    BRT_TRY("", readBool(stream, format.isSingleElement));
    if (dataType < 0 || dataType > static_cast<std::int32_t>(EAudioDataType::kRaw))
        return damagedInfo("its data type is", dataType);
    format.dataType = static_cast<EAudioDataType>(dataType);
    if (format.elementSize < 1 || format.elementSize > (format.isFloat() ? kAudioElementSizeLimit : 1))
        return damagedInfo("its element size is", format.elementSize);
    return nullptr;
}

}  // namespace

CError* CAudioParamInfo::save(COutputStream& stream) const {
    BRT_TRY(name, writeU32(stream, kVersion));
    BRT_TRY(name, writeBool(stream, isGlobal));
    BRT_TRY(name, writeBool(stream, isStorable));
    BRT_TRY(name, writeBool(stream, isPersistent));
    BRT_TRY(name, stream.writeString(visualName));
    BRT_TRY(name, stream.writeString(name));
    BRT_TRY(name, stream.writeString(registryName));
    BRT_TRY(name, writeI32(stream, format.elementSize));
    BRT_TRY(name, writeI32(stream, static_cast<std::int32_t>(format.dataType)));
    BRT_TRY(name, writeBool(stream, format.isSingleGroup));
    BRT_TRY(name, writeBool(stream, format.isSingleElement));
    for (int i = 0; i < format.elementSize; ++i) {
        BRT_TRY(name, stream.writeString(i < converterNames.count() ? converterNames[i] : CString()));
        BRT_TRY(name, writeF64(stream, minValues[i]));
        BRT_TRY(name, writeF64(stream, maxValues[i]));
    }
    BRT_TRY(name, saveNames(stream, longStateNames, shortStateNames));
    BRT_TRY(name, writeI32(stream, switchValues.count()));
    for (int i = 0; i < switchValues.count(); ++i) {
        BRT_TRY(name, writeF64(stream, switchValues[i]));
        BRT_TRY(name, stream.writeString(switchNames[i]));
    }
    BRT_TRY(name, defaults.saveDataSet(stream, -1));
    return nullptr;
}

CError* CAudioParamInfo::load(CInputStream& stream, const CObject& owner) {
    std::uint32_t version = 0;
    BRT_TRY("", readU32(stream, version));
    if (version != kVersion)
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CAudioParamInfo_load_VersionError Unsupported data set version %1.", version);
    BRT_TRY("", readBool(stream, isGlobal));
    BRT_TRY("", readBool(stream, isStorable));
    BRT_TRY("", readBool(stream, isPersistent));
    BRT_TRY("", stream.readString(visualName));
    BRT_TRY("", stream.readString(name));
    BRT_TRY("", stream.readString(registryName));
    BRT_TRY(name, loadFormat(stream, format));
    converterNames.clear();
    minValues.setCount(format.elementSize);
    maxValues.setCount(format.elementSize);
    for (int i = 0; i < format.elementSize; ++i) {
        BRT_TRY(name, readName(stream, converterNames));
        BRT_TRY(name, readF64(stream, minValues[i]));
        BRT_TRY(name, readF64(stream, maxValues[i]));
        if (!std::isfinite(maxValues[i] - minValues[i]) || maxValues[i] == minValues[i])
            return damagedInfo("there is no range for sub-value", i);
    }
    BRT_TRY(name, parseConverterNames(owner));

    longStateNames.clear();
    shortStateNames.clear();
    switchValues.clear();
    switchNames.clear();
    int stateCount = 0;
    BRT_TRY(name, readCount(stream, stateCount, kMostNames, 8));
    for (int i = 0; i < stateCount; ++i) {
        BRT_TRY(name, readName(stream, longStateNames));
        BRT_TRY(name, readName(stream, shortStateNames));
    }
    int switchCount = 0;
    BRT_TRY(name, readCount(stream, switchCount, kMostNames, 12));
    switchValues.setCount(switchCount);
    for (int i = 0; i < switchCount; ++i) {
        BRT_TRY(name, readF64(stream, switchValues[i]));
        if (!std::isfinite(switchValues[i])) return damagedInfo("there is no number for switch", i);
        BRT_TRY(name, readName(stream, switchNames));
    }
    defaults.clear();
    BRT_TRY(name, defaults.loadDataSet(stream, format));
    return nullptr;
}

}  // namespace brt
