// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/PresetCommand.h"

#include <nlohmann/json.hpp>

#include <cstdio>

#include "Tools/Halyard/CPendingFile.h"
#include "Tools/Halyard/CToolInstance.h"
#include "Tools/Halyard/PresetFile.h"
#include "Tools/Halyard/PresetValue.h"
#include "Tools/Halyard/Printing.h"
#include "Tools/Halyard/ToolError.h"

namespace brt {
namespace {

using Json = nlohmann::ordered_json;

std::string idOf(const CAudioPreset& preset) {
    CString id, name;
    CAudioPreset::splitName(preset.name(), id, name);
    return id.toUtf8();
}

std::string nameOf(const CAudioPreset& preset) {
    CString id, name;
    CAudioPreset::splitName(preset.name(), id, name);
    return name.toUtf8();
}

std::vector<PresetValue> valuesOf(const CAudioPreset& preset) {
    std::vector<PresetValue> values;
    for (const auto& [key, block] : preset.entries()) values.push_back(readPresetValue(key, block));
    return values;
}

Json valueJson(const PresetValue& value) {
    Json json;
    json["key"] = value.key;
    json["isKnown"] = value.isKnown;
    json["definition"] = value.definition;
    if (!value.visualName.empty()) json["name"] = value.visualName;
    if (!value.unit.empty()) json["unit"] = value.unit;
    if (!value.fault.empty()) {
        json["fault"] = value.fault;
        return json;
    }
    json["groups"] = value.texts;
    if (value.isNumber) json["internal"] = value.numbers;
    return json;
}

Json presetJson(const CAudioPreset& preset, int index, bool withValues) {
    Json json;
    json["index"] = index;
    json["id"] = idOf(preset);
    json["name"] = nameOf(preset);
    json["valueCount"] = preset.entries().count();
    if (!withValues) return json;
    json["values"] = Json::array();
    for (const PresetValue& value : valuesOf(preset)) json["values"].push_back(valueJson(value));
    return json;
}

// `chosen`: of all banks together; -1: all.
Json fileJson(const PresetFile& file, int chosen, bool withValues) {
    Json json;
    json["file"] = file.name;
    json["form"] = formName(file.form);
    json["banks"] = Json::array();
    int index = 0;
    for (const CAudioPresetBank* const bank : file.banks) {
        Json& bankJson = json["banks"].emplace_back();
        bankJson["name"] = bank->name().toUtf8();
        bankJson["presets"] = Json::array();
        for (const CAudioPreset* const preset : bank->presets()) {
            if (chosen < 0 || chosen == index) bankJson["presets"].push_back(presetJson(*preset, index, withValues));
            ++index;
        }
    }
    return json;
}

// "a bank, 7 presets", "a preset".
std::string sizeText(EPresetForm form, int presetCount) {
    return formText(form) + (isPresetForm(form) ? "" : ", " + countText(presetCount, "preset"));
}

void printList(const PresetFile& file) {
    std::printf("%s: %s\n", printable(file.name).c_str(), sizeText(file.form, file.presetCount()).c_str());
    int index = 0;
    for (const CAudioPresetBank* const bank : file.banks) {
        if (!bank->name().isEmpty()) std::printf("  bank '%s'\n", printable(bank->name().toUtf8()).c_str());
        std::vector<std::vector<std::string>> rows;
        for (const CAudioPreset* const preset : bank->presets())
            rows.push_back({"  " + std::to_string(index++), printable(idOf(*preset)), printable(nameOf(*preset)),
                            countText(preset->entries().count(), "value")});
        if (!rows.empty()) printTable(rows);
    }
}

// What a reader wants to know of a value beside the value.
std::string remarkOf(const PresetValue& value) {
    if (value.isKnown) return value.visualName;
    return "(unknown key" + (value.definition.empty() ? "" : ", stored as " + printable(value.definition)) + ")";
}

void printPreset(const CAudioPreset& preset, int index) {
    std::printf("%d  %s\n", index, printable(preset.name().toUtf8()).c_str());
    std::vector<std::vector<std::string>> rows;
    for (const PresetValue& value : valuesOf(preset))
        rows.push_back({"  " + printable(value.key), valueText(value), value.unit, remarkOf(value)});
    if (!rows.empty()) printTable(rows);
}

// The form that a file's name asks for.
EPresetForm formOfName(const std::filesystem::path& path, bool isOnePreset) {
    std::string ending = path.extension().string();
    for (char& c : ending)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    if (ending == ".cpf") return EPresetForm::kPreset;
    if (ending == ".cbf") return EPresetForm::kBank;
    if (ending == ".chunk") return isOnePreset ? EPresetForm::kPresetChunk : EPresetForm::kBankChunk;
    if (ending == ".fxp") return EPresetForm::kFxp;
    if (ending == ".fxb") return EPresetForm::kFxb;
    throw CUsageError("preset convert: the name of " + brt::quoted(path) +
                      " tells no form; let it end in .cpf, .cbf, .chunk, .fxp or .fxb");
}

// The presets of a request, as one bank.
void collect(CAudioPresetBank& bank, const PresetFile& file, const std::string& wanted) {
    if (!wanted.empty()) {
        bank.presets().append(new CAudioPreset)->assign(file.preset(findPreset(file, wanted)));
        bank.setName("Bank");
        return;
    }
    if (file.banks.count() != 1)
        throw CToolError(brt::quoted(file.name) + " has " + countText(file.banks.count(), "bank") +
                         "; choose a preset with --preset");
    bank.assign(file.banks[0]);
    if (isPresetForm(file.form)) bank.setName("Bank");
    if (bank.count() == 0) throw CToolError(brt::quoted(file.name) + " holds no preset");
}

}  // namespace

int runPresetList(const PresetListRequest& request) {
    startApplication();
    Json json = Json::array();
    for (const std::string& name : request.files) {
        PresetFile file;
        readPresetFile(file, name);
        if (request.asJson)
            json.push_back(fileJson(file, -1, false));
        else
            printList(file);
    }
    if (request.asJson) printJson(json);
    return 0;
}

int runPresetShow(const PresetShowRequest& request) {
    startApplication();
    PresetFile file;
    readPresetFile(file, request.file);
    const int chosen = request.preset.empty() ? -1 : findPreset(file, request.preset);
    if (request.asJson) {
        printJson(fileJson(file, chosen, true));
        return 0;
    }
    for (int index = 0; index < file.presetCount(); ++index)
        if (chosen < 0 || chosen == index) printPreset(file.preset(index), index);
    return 0;
}

int runPresetConvert(const PresetConvertRequest& request) {
    startApplication();
    PresetFile file;
    readPresetFile(file, request.input);
    const bool isOnePreset = !request.preset.empty() || isPresetForm(file.form);
    const EPresetForm form = formOfName(request.output, isOnePreset);
    CAudioPresetBank bank;
    collect(bank, file, request.preset);
    if (isPresetForm(form) && bank.count() > 1)
        throw CToolError(brt::quoted(file.name) + " holds " + countText(bank.count(), "preset") + "; choose one for " +
                         brt::quoted(request.output) + " with --preset");
    checkDestination(request.output, request.mayReplace);
    writePresetFile(request.output, form, bank);
    std::printf("%s: %s\n", printable(request.output.string()).c_str(), sizeText(form, bank.count()).c_str());
    return 0;
}

}  // namespace brt
