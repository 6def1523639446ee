// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/PresetValue.h"

#include <algorithm>

#include "Audio/CAudioParam.h"
#include "Audio/CAudioParamConverter.h"
#include "Audio/CAudioParamDef.h"
#include "Audio/PresetStream.h"
#include "Audio/StreamNumbers.h"
#include "Core/CApplication.h"
#include "Core/NumberText.h"
#include "Tools/Halyard/ToolError.h"

namespace brt {
namespace {

constexpr int kFormatPlace = 4;  // in a data set, behind its version

const CAudioParamInfo* findInfo(const CString& name) {
    const auto* const definition = dynamic_cast<const CAudioParamDef*>(CApplication::sharedObject()->findObject(name));
    return definition != nullptr ? &definition->info() : nullptr;
}

// The format that a data set has by its own account. The stream stays where it is.
CError* readFormat(CAudioParamFormat& format, CMemoryReader& stream) {
    std::int32_t dataType = 0;
    std::int64_t start = 0;
    BRT_TRY("", stream.getPosition(start));
    BRT_TRY("", stream.skip(kFormatPlace));
    BRT_TRY("", readI32(stream, format.elementSize));
    BRT_TRY("", readI32(stream, dataType));
    const bool isSound = format.elementSize >= 1 && format.elementSize <= kAudioElementSizeLimit && dataType >= 0 &&
                         dataType <= static_cast<int>(EAudioDataType::kRaw);
    if (!isSound)
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "Values of %1 sub-values of type %2 are none of this program.", format.elementSize, dataType);
    format.dataType = static_cast<EAudioDataType>(dataType);
    BRT_TRY("", stream.setPosition(start));
    return nullptr;
}

CError* readBlock(CAudioParamBlock& block, const CAudioParamInfo*& info, const CString& key, const CByteBuffer& bytes) {
    CMemoryReader stream(bytes.data(), bytes.size());
    BRT_TRY(key, stream.readString(block.definitionName));
    info = findInfo(block.definitionName);
    const CString end = CString(".").append(key);
    if (info != nullptr && !block.definitionName.view().endsWith(end)) info = nullptr;
    CAudioParamFormat format;
    if (info != nullptr)
        format = info->format;
    else
        BRT_TRY(key, readFormat(format, stream));
    BRT_TRY(key, block.values.loadDataSet(stream, format));
    BRT_TRY(key, expectEnd(stream));
    return nullptr;
}

std::string itemText(const CAudioParamDataItem& item) {
    if (const auto* const string = dynamic_cast<const CAudioParamDataItemString*>(&item))
        return string->text().toUtf8();
    if (const auto* const raw = dynamic_cast<const CAudioParamDataItemRaw*>(&item))
        return "(" + std::to_string(raw->bytes().size()) + " bytes)";
    return "";
}

std::string textOf(const CAudioParamStorage& values, const CAudioParamInfo* info, int subValue, double value) {
    if (!values.format().isFloat()) return itemText(*values.data().find(value));
    if (info == nullptr) return shortestText(value).toUtf8();
    CString text;
    info->converters[subValue]->format(text, *info, subValue, value, values.data(), EAudioTextMode::kPlain);
    return text.toUtf8();
}

void addGroup(PresetValue& value, const CAudioParamStorage& values, const CAudioParamInfo* info, int group) {
    std::vector<std::string>& texts = value.texts.emplace_back();
    std::vector<double>& numbers = value.numbers.emplace_back();
    const int size = values.format().elementSize;
    int place = 0;
    for (const double number : values.values(group)) {
        const int subValue = place++ % size;
        if (value.isNumber) numbers.push_back(number);
        const std::string text = textOf(values, info, subValue, number);
        if (subValue == 0)
            texts.push_back(text);
        else
            texts.back() += " " + text;
    }
}

std::string joined(const std::vector<std::string>& elements) {
    std::string text;
    for (std::size_t i = 0; i < elements.size(); ++i) text += (i > 0 ? "," : "") + elements[i];
    return text;
}

}  // namespace

PresetValue readPresetValue(const CString& key, const CByteBuffer& bytes) {
    PresetValue value;
    value.key = key.toUtf8();
    CAudioParamBlock block;
    const CAudioParamInfo* info = nullptr;
    CError* const error = readBlock(block, info, key, bytes);
    value.definition = block.definitionName.toUtf8();
    value.isKnown = info != nullptr;
    if (value.isKnown) {
        value.visualName = info->visualName.toUtf8();
        if (info->converter() != nullptr) value.unit = info->converter()->label().toUtf8();
    }
    if (error != nullptr) {
        value.fault = error->message().toUtf8();
        discardError(error);  // told as a part of the value
        return value;
    }
    value.isNumber = block.values.format().isFloat();
    for (int group = 0; group < block.values.groupCount(); ++group) addGroup(value, block.values, info, group);
    return value;
}

std::string valueText(const PresetValue& value) {
    if (!value.fault.empty()) return "(damaged: " + value.fault + ")";
    if (value.texts.empty()) return "(none)";
    const bool isSame = std::all_of(value.texts.begin(), value.texts.end(),
                                    [&](const auto& group) { return group == value.texts.front(); });
    std::string text = joined(value.texts.front());
    if (isSame && value.texts.size() > 1)
        return printable(text + " in all " + std::to_string(value.texts.size()) + " groups");
    for (std::size_t group = 1; group < value.texts.size(); ++group) text += ";" + joined(value.texts[group]);
    return printable(text);
}

}  // namespace brt
