// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/InfoCommand.h"

#include <nlohmann/json.hpp>

#include <cstdio>

#include "Tools/Halyard/CPluginInstance.h"
#include "Tools/Halyard/Decibels.h"
#include "Tools/Halyard/Printing.h"

namespace brt {
namespace {

using Json = nlohmann::ordered_json;

std::string versionText(std::intptr_t version) {
    return std::to_string(version >> 16) + "." + std::to_string(version >> 8 & 0xff) + "." +
           std::to_string(version & 0xff);
}

std::string codeText(std::int32_t code) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) text += static_cast<char>(code >> shift);
    return text;
}

Json flagsOf(std::int32_t flags) {
    struct Row {
        VstAEffectFlags flag;
        const char* name;
    };
    constexpr Row kRows[] = {{effFlagsHasEditor, "editor"},
                             {effFlagsCanReplacing, "32-bit samples"},
                             {effFlagsCanDoubleReplacing, "64-bit samples"},
                             {effFlagsProgramChunks, "state in chunks"}};
    Json names = Json::array();
    for (const Row& row : kRows)
        if ((flags & row.flag) != 0) names.push_back(row.name);
    return names;
}

Json describe(const CPluginInstance& instance) {
    const AEffect& effect = instance.effect();
    Json json = {{"name", instance.text(effGetEffectName, kVstMaxEffectNameLen)},
                 {"vendor", instance.text(effGetVendorString, kVstMaxVendorStrLen)},
                 {"product", instance.text(effGetProductString, kVstMaxProductStrLen)},
                 {"version", versionText(instance.call(effGetVendorVersion))},
                 {"code", codeText(effect.uniqueID)},
                 {"category", instance.call(effGetPlugCategory)},
                 {"interfaceVersion", instance.call(effGetVstVersion)},
                 {"inputs", effect.numInputs},
                 {"outputs", effect.numOutputs},
                 {"latencySamples", instance.latencySamples()},
                 {"stateBytes", instance.chunk(false).size()},
                 {"flags", flagsOf(effect.flags)}};
    for (int i = 0; i < effect.numPrograms; ++i)
        json["programs"].push_back(instance.text(effGetProgramNameIndexed, kVstMaxProgNameLen, i));
    for (int i = 0; i < effect.numParams; ++i)
        json["parameters"].push_back({{"name", instance.text(effGetParamName, kVstMaxParamStrLen, i)},
                                      {"value", instance.parameter(i)},
                                      {"display", instance.text(effGetParamDisplay, kVstMaxParamStrLen, i)},
                                      {"label", instance.text(effGetParamLabel, kVstMaxParamStrLen, i)}});
    return json;
}

void printText(const Json& json) {
    const auto text = [&json](const char* key) {
        return json[key].is_string() ? json[key].get<std::string>() : json[key].dump();
    };
    std::string flags;
    for (const Json& flag : json["flags"]) flags += (flags.empty() ? "" : ", ") + flag.get<std::string>();
    printTable({{"name", text("product") + " " + text("version")},
                {"code", text("code")},
                {"channels", text("inputs") + " in, " + text("outputs") + " out"},
                {"latency", text("latencySamples") + " samples"},
                {"state", text("stateBytes") + " bytes"},
                {"can", flags}});
    std::vector<std::vector<std::string>> rows = {{"", "", "", ""}, {"parameter", "value", "", "for hosts"}};
    for (const Json& parameter : json["parameters"])
        rows.push_back({parameter["name"], parameter["display"], parameter["label"],
                        formatFixed(parameter["value"].get<double>(), 6)});
    printTable(rows);
    std::printf("\nprograms\n");
    int index = 0;
    for (const Json& program : json["programs"]) std::printf("%d  %s\n", index++, program.get<std::string>().c_str());
}

}  // namespace

int runInfo(const InfoRequest& request) {
    const CPluginInstance instance(CPluginModule::load(request.plugin));
    const Json json = describe(instance);
    if (request.asJson)
        printJson(json);
    else
        printText(json);
    return 0;
}

}  // namespace brt
