// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Docc/CPresetValues.h"

#include <sstream>
#include <vector>

#include "Audio/CAudioParamDef.h"
#include "Audio/CAudioParamUpdate.h"
#include "Core/CByteBuffer.h"
#include "Core/CWriteSeqBuffer.h"
#include "Core/NumberText.h"
#include "Tools/Docc/ThrowError.h"
#include "Tools/NearName.h"

namespace brt {
namespace {

constexpr std::string_view kNamePlace = "{name}";

std::string quoted(std::string_view text) { return "'" + std::string(text) + "'"; }

CString wide(std::string_view text) { return CString::fromUtf8(text); }

bool isKept(const CAudioParamInfo& info) { return info.isStorable || info.isPersistent; }

std::string textOf(const CAudioParamInfo& info, double value) {
    CString text;
    info.converter()->format(text, info, 0, value, info.defaults.data(), EAudioTextMode::kPlain);
    return text.toUtf8();
}

// "from 0.0 to 24.0 dB"
std::string rangeText(const CAudioParamInfo& info) {
    const std::string unit = info.converter()->label().toUtf8();
    return "from " + textOf(info, info.minimum()) + " to " + textOf(info, info.maximum()) +
           (unit.empty() ? "" : " " + unit);
}

// Keys of all parameters below an object that presets can hold.
void considerKeys(CNearName& near, const CObject& object, const CString& prefix) {
    for (const CObject* const child : object.children()) {
        const CString key = CString(prefix).append(child->getShortName());
        const auto* const definition = dynamic_cast<const CAudioParamDef*>(child);
        if (definition != nullptr && isKept(definition->info())) near.consider(key);
        considerKeys(near, *child, CString(key).append("."));
    }
}

std::string withName(std::string_view value, std::string_view name) {
    std::string text(value);
    for (std::size_t at = text.find(kNamePlace); at != std::string::npos; at = text.find(kNamePlace, at + name.size()))
        text.replace(at, kNamePlace.size(), name);
    return text;
}

// The value in the form in which definitions have theirs: no blanks around elements.
std::string joinElements(std::string_view value, std::vector<std::string>& elements) {
    std::string joined;
    for (std::size_t start = 0; start <= value.size();) {
        const std::size_t end = std::min(value.find_first_of(",;", start), value.size());
        std::string_view element = value.substr(start, end - start);
        while (element.starts_with(' ') || element.starts_with('\t')) element.remove_prefix(1);
        while (element.ends_with(' ') || element.ends_with('\t')) element.remove_suffix(1);
        elements.emplace_back(element);
        joined += element;
        if (end < value.size()) joined += value[end];
        start = end + 1;
    }
    return joined;
}

}  // namespace

bool CPresetValues::fail(const PresetLine& line, const std::string& message) {
    m_diagnostics.error(line.valuePlace, message);
    return false;
}

void CPresetValues::setDefinitions(const PresetLine& line) {
    m_definitions = m_shared.findObject(wide(line.value));
    if (m_definitions == nullptr) fail(line, "the shared document has no object " + quoted(line.value));
}

void CPresetValues::setGroups(const PresetLine& line) {
    std::int64_t count = 0;
    if (parseInteger(wide(line.value), count) && count >= 1 && count <= kAudioGroupLimit)
        m_groupCount = static_cast<int>(count);
    else
        fail(line, quoted(line.value) + " is no number of groups from 1 to " + std::to_string(kAudioGroupLimit));
}

void CPresetValues::addNumbers(const PresetLine& line) {
    std::istringstream words{std::string(line.value)};
    std::string key, low, high, more;
    words >> key >> low >> high;
    double minimum = 0.0;
    double maximum = 0.0;
    if (!parseDouble(wide(low), minimum) || !parseDouble(wide(high), maximum) || minimum >= maximum || words >> more) {
        fail(line, "write a key, its least and its greatest number here, as 'numbers = ms-pairs 0 16'");
        return;
    }
    if (m_definitions == nullptr) {
        fail(line, "'definitions' must stand before 'numbers'");
        return;
    }
    if (m_numbers.contains(key) || m_definitions->findObject(CString(".").append(wide(key))) != nullptr) {
        fail(line, "key " + quoted(key) + " is defined already");
        return;
    }
    auto info = std::make_unique<CAudioParamInfo>();
    info->name = CString(m_definitions->getFullName()).append(".").append(wide(key));
    info->isStorable = true;
    info->format.isSingleGroup = true;
    info->converters.append(&m_plainNumber);
    info->minValues.append(minimum);
    info->maxValues.append(maximum);
    m_numbers.emplace(key, std::move(info));
}

const CAudioParamInfo* CPresetValues::findDefinition(const PresetLine& line) {
    if (m_definitions == nullptr) return nullptr;
    if (const auto it = m_numbers.find(line.key); it != m_numbers.end()) return it->second.get();
    const CString key = wide(line.key);
    const auto* const definition =
        dynamic_cast<const CAudioParamDef*>(m_definitions->findObject(CString(".").append(key)));
    if (definition != nullptr && isKept(definition->info())) return &definition->info();
    if (definition != nullptr) {
        m_diagnostics.error(
            line.place, "no preset holds " + quoted(line.key) + ": its definition is neither storable nor persistent");
        return nullptr;
    }
    CNearName near(key);
    considerKeys(near, *m_definitions, "");
    for (const auto& [name, info] : m_numbers) near.consider(wide(name));
    m_diagnostics.error(line.place, "unknown key " + quoted(line.key) + near.question());
    return nullptr;
}

bool CPresetValues::compile(CByteBuffer& block, const PresetLine& line, std::string_view presetName) {
    const CAudioParamInfo* const info = findDefinition(line);
    if (info == nullptr) return false;
    if (info->format.dataType == EAudioDataType::kRaw)
        return fail(line, quoted(line.key) + " holds bytes, which no text can stand for");
    CAudioParamStorage storage;
    if (line.hasValue) {
        if (!parse(storage, *info, line, withName(line.value, presetName))) return false;
    } else {
        if (!info->defaults.isValid())
            return fail(
                line, quoted(line.key) + " has no default; give it a value, as '" + std::string(line.key) + " = 0,0'");
        storage.assign(info->defaults);
    }
    spreadOverGroups(storage);
    CWriteSeqBuffer bytes(CWriteSeqBuffer::kStringBlockBytes);
    throwIf(bytes.writeString(info->name));
    throwIf(storage.saveDataSet(bytes, -1));
    bytes.moveTo(block);
    return true;
}

bool CPresetValues::parse(CAudioParamStorage& storage, const CAudioParamInfo& info, const PresetLine& line,
                          const std::string& value) {
    if (info.format.elementSize > 1)
        return fail(line, quoted(line.key) + " has elements of several numbers, which can't be written here yet");
    std::vector<std::string> elements;
    const std::string text = joinElements(value, elements);
    for (const std::string& element : elements)
        if (info.format.isFloat() && !checkElement(info, line, element)) return false;
    throwIf(storage.parseDefValues(info, wide(text), info.name));

    if (info.format.isSingleGroup && storage.groupCount() > 1)
        return fail(line, quoted(line.key) + " has one value for all channel groups; leave out ';'");
    if (storage.groupCount() > kAudioGroupLimit)
        return fail(line, "there are more than " + std::to_string(kAudioGroupLimit) + " channel groups");
    for (int group = 0; group < storage.groupCount(); ++group) {
        if (info.format.isSingleElement && storage.elementCount(group) > 1)
            return fail(line, quoted(line.key) + " is a single value; leave out ','");
        if (storage.elementCount(group) > kAudioElementLimit)
            return fail(line, "there are more than " + std::to_string(kAudioElementLimit) + " elements");
    }
    return true;
}

bool CPresetValues::checkElement(const CAudioParamInfo& info, const PresetLine& line, const std::string& element) {
    const CAudioParamConverter& converter = *info.converter();
    const CString text = wide(element);
    bool ok = false;
    const double value = converter.parseRaw(info, 0, text, ok);
    double number = 0.0;
    // Numbers have words behind them where users type them. Here such a word is a slip.
    const bool isWord = info.matchSwitchName(text, number) || converter.isDiscrete();
    if (!ok || !(isWord || parseDouble(text, number)))
        return fail(line,
                    quoted(element) + " is no value of " + quoted(line.key) + "; write a number " + rangeText(info));
    // The ends of a range take the same way from text as the value does.
    if (info.limit(value) != value)
        return fail(line,
                    quoted(element) + " is out of the range of " + quoted(line.key) + ", which is " + rangeText(info));
    return true;
}

void CPresetValues::spreadOverGroups(CAudioParamStorage& storage) const {
    if (storage.format().isSingleGroup || storage.groupCount() != 1) return;
    for (int group = 1; group < m_groupCount; ++group) {
        CAudioParamUpdate update = storage.describe(0);
        update.group = group;
        update.isSetCount = true;
        storage.apply(update);
    }
}

}  // namespace brt
