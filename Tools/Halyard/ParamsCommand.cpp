// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/ParamsCommand.h"

#include <algorithm>
#include <cstdio>

#include "Audio/CAudioExtParam.h"
#include "Audio/CAudioExtParamList.h"
#include "Audio/CAudioParamConverter.h"
#include "Core/CError.h"
#include "Tools/Halyard/CToolInstance.h"
#include "Tools/Halyard/Printing.h"
#include "Tools/Halyard/ToolError.h"
#include "Tools/NearName.h"

namespace brt {
namespace {

using Row = std::vector<std::string>;

std::string utf8(CStringView text) { return CString(text).toUtf8(); }

std::string textOf(const CAudioParamInfo& info, double value, EAudioTextMode mode) {
    CString text;
    info.converter()->format(text, info, 0, value, info.defaults.data(), mode);
    return text.toUtf8();
}

std::string defaultsText(const CAudioParamInfo& info) {
    if (info.format.dataType == EAudioDataType::kRaw) return "(bytes)";
    std::string text;
    for (int element = 0; element < info.defaults.defaultCount(); ++element)
        text += (element > 0 ? "," : "") + textOf(info, info.defaults.defaultValue(element), EAudioTextMode::kPlain);
    return text;
}

std::string rangeText(const CAudioParamInfo& info) {
    if (info.format.dataType == EAudioDataType::kString) return "text";
    if (info.format.dataType == EAudioDataType::kRaw) return "bytes";
    return textOf(info, info.minimum(), EAudioTextMode::kPlain) + " to " +
           textOf(info, info.maximum(), EAudioTextMode::kPlain);
}

std::string flagsText(const CAudioParamInfo& info) {
    std::string text;
    const auto add = [&](bool isSet, const char* name) {
        if (isSet) text += (text.empty() ? "" : " ") + std::string(name);
    };
    add(info.isStorable, "storable");
    add(info.isPersistent, "persistent");
    add(info.format.isSingleGroup, "single-group");
    add(info.format.isSingleElement, "single-element");
    return text;
}

// A list of all has room for so many letters; who asks for one parameter gets all of them.
std::string shortened(std::string text) {
    constexpr std::size_t kRoom = 24;
    const std::string ending = "...";
    return text.size() <= kRoom ? text : text.substr(0, kRoom - ending.size()) + ending;
}

// "1 Gain" for a parameter that hosts see.
std::string hostText(const CAudioExtParamList& list, const CAudioParam& param) {
    std::string text;
    for (int index = 0; index < list.params().count(); ++index)
        if (&list.params()[index]->param() == &param)
            text += (text.empty() ? "" : ", ") + std::to_string(index) + " " + utf8(list.params()[index]->getName());
    return text;
}

// Those with a definition, in the order of their names.
std::vector<CAudioParam*> definedParams(const CToolInstance& instance) {
    CSmallArray<CAudioParam*> all;
    instance.collector().listParams(all);
    std::vector<CAudioParam*> defined;
    std::copy_if(all.begin(), all.end(), std::back_inserter(defined),
                 [](const CAudioParam* param) { return param->info() != nullptr; });
    return defined;
}

CStringView lastPart(CStringView name) {
    int start = name.length();
    while (start > 0 && name[start - 1] != u'.') --start;
    return name.slice(start, name.length() - start);
}

// By the full name, or by an end of it that only one parameter has.
CAudioParam& findParam(const std::vector<CAudioParam*>& params, const std::string& wanted) {
    const CString name = CString::fromUtf8(wanted);
    CString end = ".";
    end += name;
    CNearName near(name);
    std::vector<CAudioParam*> found;
    for (CAudioParam* const param : params) {
        if (param->name() == name) return *param;
        if (param->name().view().endsWith(end)) found.push_back(param);
        near.consider(param->name());
        near.consider(lastPart(param->name()));
    }
    if (found.size() == 1) return *found[0];
    if (found.empty())
        throw CToolError("params: an instance has no parameter " + brt::quoted(wanted) + near.question());
    std::string names;
    for (const CAudioParam* const param : found) names += (names.empty() ? "" : ", ") + utf8(param->name());
    throw CToolError("params: " + brt::quoted(wanted) + " may be any of " + names + "; give more of the name");
}

std::string numberText(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.10g", value);
    return text;
}

void printValues(const CAudioParam& param, const std::vector<std::string>& values) {
    const CAudioParamInfo& info = *param.info();
    if (!info.format.isFloat())
        throw CToolError("params: " + brt::quoted(utf8(param.name())) + " holds no number; it has only one view");
    std::vector<Row> rows = {{"typed", "internal", "normalised", "plain", "short", "medium", "precise"}};
    for (const std::string& typed : values) {
        bool ok = false;
        const double value = info.converter()->parseClamped(info, 0, CString::fromUtf8(typed), ok);
        if (!ok)
            throw CToolError("params: " + brt::quoted(utf8(param.name())) + " can't take " + brt::quoted(typed) +
                             "; its range is " + rangeText(info) + " " + utf8(info.converter()->label()));
        Row row = {printable(typed), numberText(value), numberText(info.converter()->internalToNormal(info, 0, value))};
        for (const EAudioTextMode mode :
             {EAudioTextMode::kPlain, EAudioTextMode::kShort, EAudioTextMode::kMedium, EAudioTextMode::kPrecise})
            row.push_back(textOf(info, value, mode));
        rows.push_back(std::move(row));
    }
    printTable(rows);
}

}  // namespace

int runParams(const ParamsRequest& request) {
    CToolInstance instance;
    instance.setLayout(2, 48000.0);  // the graph defines its parameters as it builds itself
    const std::vector<CAudioParam*> params = definedParams(instance);
    std::vector<CAudioParam*> listed = params;
    if (!request.name.empty()) {
        listed = {&findParam(params, request.name)};
        if (!request.values.empty()) return printValues(*listed[0], request.values), 0;
    }
    const CAudioExtParamList& hostList = instance.hostParams();
    std::vector<Row> rows = {{"name", "range", "default", "unit", "flags", "host"}};
    for (const CAudioParam* const param : listed) {
        const CAudioParamInfo& info = *param->info();
        rows.push_back({utf8(param->name()), rangeText(info),
                        request.name.empty() ? shortened(defaultsText(info)) : defaultsText(info),
                        info.converter() != nullptr ? utf8(info.converter()->label()) : "", flagsText(info),
                        hostText(hostList, *param)});
    }
    printTable(rows);
    return 0;
}

}  // namespace brt
