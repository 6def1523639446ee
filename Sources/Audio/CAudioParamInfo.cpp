// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioParamInfo.h"

#include <algorithm>
#include <cmath>

#include "Audio/CAudioParamConverter.h"
#include "Audio/Converters/ConverterNumber.h"
#include "Audio/StreamNumbers.h"
#include "Core/CAppData.h"
#include "Core/CMemoryReader.h"

namespace brt {
namespace {

constexpr int kShortNameLength = 7;
constexpr int kMostStates = 1024;

// Names of the presets of the first bank in a list of banks, each behind its ":".
CError* readPresetNames(CInputStream& stream, CStringList& names) {
    int bankCount = 0;
    int presetCount = 0;
    CString bankName;
    BRT_TRY("", readCount(stream, bankCount, kMostStates, 8));
    if (bankCount == 0) return nullptr;
    BRT_TRY("", stream.readString(bankName));
    BRT_TRY("", readCount(stream, presetCount, kMostStates, 8));
    for (int i = 0; i < presetCount; ++i) {
        CString name;
        int entryCount = 0;
        BRT_TRY("", stream.readString(name));
        BRT_TRY("", readCount(stream, entryCount, 1 << 16, 8));
        for (int entry = 0; entry < entryCount; ++entry) {
            CString key;
            int blockBytes = 0;
            BRT_TRY("", stream.readString(key));
            BRT_TRY("", readCount(stream, blockBytes, 1 << 24, 1));
            BRT_TRY("", stream.skip(blockBytes));
        }
        names.append(name.slice(name.find(u':') + 1));
    }
    return nullptr;
}

}  // namespace

double CAudioParamInfo::limit(double value, int subValue) const noexcept {
    const double a = minimum(subValue);
    const double b = maximum(subValue);
    if (std::isnan(value)) return a;
    return a <= b ? std::clamp(value, a, b) : std::clamp(value, b, a);
}

bool CAudioParamInfo::isSameAs(const CAudioParamInfo& other) const noexcept {
    return name == other.name && format == other.format;
}

CError* CAudioParamInfo::parseConverterNames(const CObject& owner) {
    converters.clear();
    for (const CString* const converterName : converterNames) {
        if (converterName->isEmpty()) continue;
        const auto* const found = dynamic_cast<const CAudioParamConverter*>(owner.findObject(*converterName));
        if (found == nullptr)
            return makeError(nullptr, __FILE__, __LINE__, owner.getFullName(),
                             "@brtstr_CAudioParamInfo_parseConverterNames_ConverterNotFound Audio parameter converter "
                             "'%1' not found.",
                             *converterName);
        converters.append(found);
    }
    if (converters.count() < format.elementSize)
        return makeError(
            nullptr, __FILE__, __LINE__, owner.getFullName(),
            "@brtstr_CAudioParamInfo_parseConverterNames_NotEnoughConverters Not enough converters defined "
            "%1 (should be %2).",
            converters.count(), format.elementSize);
    return nullptr;
}

CError* CAudioParamInfo::parseMinMaxValues(CStringView minimums, CStringView maximums, CStringView context) {
    minValues.clear();
    maxValues.clear();
    if (!format.isFloat()) {
        constexpr double kNoMaximum = 8388608.0;
        minValues.append(0.0);
        maxValues.append(kNoMaximum);
        return nullptr;
    }
    CStringList low;
    CStringList high;
    CString(minimums).split(low, u' ', true, true);
    CString(maximums).split(high, u' ', true, true);
    if (low.count() < format.elementSize)
        return makeError(nullptr, __FILE__, __LINE__, context,
                         "@brtstr_CAudioParamInfo_parseMinMaxValues_NotEnoughMin Not enough minimum values defined %1 "
                         "(should be %2).",
                         low.count(), format.elementSize);
    if (high.count() < format.elementSize)
        return makeError(nullptr, __FILE__, __LINE__, context,
                         "@brtstr_CAudioParamInfo_parseMinMaxValues_NotEnoughMax Not enough maximum values defined %1 "
                         "(should be %2).",
                         high.count(), format.elementSize);
    for (int i = 0; i < format.elementSize; ++i) {
        bool ok = false;
        minValues.append(converters[i]->parseRaw(*this, i, low[i], ok));
        maxValues.append(converters[i]->parseRaw(*this, i, high[i], ok));
        if (minValues[i] == maxValues[i])
            return makeError(nullptr, __FILE__, __LINE__, context,
                             "@brtstr_CAudioParamInfo_parseMinMaxValues_Zero Zero default min-max values difference "
                             "detected in element %1.",
                             i);
    }
    return nullptr;
}

CError* CAudioParamInfo::parseStateNames(CStringView text, CStringView context) {
    const auto add = [this](CStringView longName, CStringView shortName) {
        longStateNames.append(longName.trimmed());
        shortStateNames.append(shortName.trimmed());
    };
    if (text.isEmpty()) return nullptr;
    if (text.startsWith("@")) {
        const bool isInGlobalStore = text.startsWith("@/");
        CAppData& store = isInGlobalStore ? CAppData::global() : CAppData::local();
        CByteBuffer bytes;
        store.getData(text.slice(isInGlobalStore ? 2 : 1), bytes, appDataTag::kPresetList);
        CStringList names;
        CMemoryReader stream(bytes.data(), bytes.size());
        const bool isDamaged = !bytes.isEmpty() && discardError(readPresetNames(stream, names));  // told below
        if (isDamaged || names.isEmpty())
            return makeError(nullptr, __FILE__, __LINE__, context,
                             "@brtstr_CAudioParamInfo_parseStateNames_NoData No state names data available in '%1'.",
                             text);
        for (const CString* const entry : names) {
            const int semicolon = entry->find(u';');
            if (semicolon < 0)
                add(*entry, entry->slice(0, kShortNameLength));
            else
                add(entry->slice(0, semicolon), entry->slice(semicolon + 1));
        }
        return nullptr;
    }
    CStringList entries;
    CString(text).split(entries, u';', false, true);
    for (const CString* const entry : entries) {
        CStringList parts;
        entry->split(parts, u'|', false, true);
        const CStringView longName = parts.isEmpty() ? CStringView() : parts[0].view().trimmed();
        const CStringView shortName = parts.count() < 2 ? longName : parts[1].view().trimmed();
        add(longName, shortName.slice(0, kShortNameLength));
    }
    return nullptr;
}

void CAudioParamInfo::parseSwitches(CStringView values, CStringView names) {
    CStringList valueTexts;
    CString(values).split(valueTexts, u',', false, true);
    CString(names).split(switchNames, u',', false, true);
    for (const CString* const text : valueTexts) {
        bool ok = false;
        switchValues.append(parseNumber(text->view().trimmed(), ok));
    }
    while (switchNames.count() < switchValues.count()) switchNames.append("");
}

bool CAudioParamInfo::matchSwitchName(CStringView text, double& value) const {
    if (switchValues.isEmpty() || switchNames.isEmpty() || switchNames[0].isEmpty() || !(switchNames[0] == text))
        return false;
    value = switchValues[0];
    return true;
}

bool CAudioParamInfo::formatSwitch(CString& text, double value) const {
    if (switchValues.isEmpty() || switchNames.isEmpty() || switchNames[0].isEmpty()) return false;
    constexpr double kTolerance = 0.005;
    const double distance = std::abs(value - switchValues[0]);
    if (!(distance < kTolerance * switchValues[0] || distance < kTolerance)) return false;
    text = switchNames[0];
    return true;
}

}  // namespace brt
