// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/GraphCommand.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "Audio/CAudioProcessDefBase.h"
#include "Modules/CModOutput.h"
#include "Tools/Halyard/CToolInstance.h"
#include "Tools/Halyard/ToolError.h"

namespace brt {
namespace {

using Process = CAudioProcessBase;

std::string utf8(CStringView text) { return CString(text).toUtf8(); }

// "0, 1 (group 0)  3 (group 1)" of channels in a row.
std::string channelsText(std::span<const CAudioChannel> channels) {
    std::string text;
    for (const CAudioChannel& channel : channels) {
        if (!text.empty()) text += ", ";
        text += std::to_string(channel.number) + " (group " + std::to_string(channel.group) + ", late by " +
                std::to_string(channel.latencySamples) + ")";
    }
    return text.empty() ? "none" : text;
}

std::vector<Process::CConnection> connectionsOf(const Process& process) {
    CSmallArray<Process::CConnection> list;
    process.listConnections(list);
    return {list.begin(), list.end()};
}

// Units of one stack share a path; the group tells them apart.
std::string labelOf(const Process& process) {
    std::string label = utf8(process.path());
    if (process.isStackMember()) label += " [group " + std::to_string(process.group()) + "]";
    return label;
}

void printText(const Process& process, int depth) {
    const std::string indent(static_cast<std::size_t>(2 * depth), ' ');
    std::printf("%s%s <%s>  in: %s", indent.c_str(), labelOf(process).c_str(), utf8(process.definition().tag()).c_str(),
                channelsText(process.mainPort().table()).c_str());
    if (!process.outputTable().empty()) std::printf("  out: %s", channelsText(process.outputTable()).c_str());
    std::printf("\n");
    for (const Process::CConnection& way : connectionsOf(process)) {
        std::printf("%s    -> %s", indent.c_str(), labelOf(*way.destination).c_str());
        if (way.destinationPort != 0) std::printf(" port %d", way.destinationPort);
        if (process.outputTable().empty() && !process.running().empty()) std::printf("  (from its input)");
        std::printf("\n");
    }
    for (const Process* const child : process.running()) printText(*child, depth + 1);
}

// Names of nodes, in the order in which they are asked for.
class CDotNodes {
public:
    std::string nameOf(const Process& process) {
        const auto place = std::find(m_processes.begin(), m_processes.end(), &process);
        const auto index = place - m_processes.begin();
        if (place == m_processes.end()) m_processes.push_back(&process);
        return "p" + std::to_string(index);
    }

private:
    std::vector<const Process*> m_processes;
};

void printDot(const Process& process, CDotNodes& nodes) {
    const bool isContainer = !process.running().empty();
    const std::string name = nodes.nameOf(process);
    std::printf("  %s [label=\"%s\\n%s\\nlate by %d\"%s];\n", name.c_str(), labelOf(process).c_str(),
                utf8(process.definition().tag()).c_str(), process.largestLatencySamples(),
                isContainer ? ", shape=ellipse" : "");
    for (const Process::CConnection& way : connectionsOf(process)) {
        std::printf("  %s -> %s", name.c_str(), nodes.nameOf(*way.destination).c_str());
        if (way.destinationPort != 0) std::printf(" [label=\"port %d\"]", way.destinationPort);
        std::printf(";\n");
    }
    for (const Process* const child : process.running()) printDot(*child, nodes);
}

void apply(CToolInstance& instance, const std::string& setting) {
    const std::size_t sign = setting.find('=');
    char* end = nullptr;
    const double value = sign == std::string::npos ? 0.0 : std::strtod(setting.c_str() + sign + 1, &end);
    if (sign == std::string::npos || end == setting.c_str() + sign + 1 || *end != '\0')
        throw CUsageError("graph: the setting '" + printable(setting) + "' is not of the form NAME=NUMBER");
    const CString name = CString::fromUtf8(setting.substr(0, sign));
    const CAudioParam* const param = instance.collector().findParam(name);
    if (param == nullptr || param->info() == nullptr || !param->info()->format.isFloat())
        throw CToolError("graph: there is no number called '" + printable(setting.substr(0, sign)) +
                         "' in an instance; 'halyard tree audio.modMain' shows the names");
    instance.set(name, value);
}

}  // namespace

int runGraph(const GraphRequest& request) {
    CToolInstance instance;
    instance.setLayout(request.channels, request.sampleRate);
    for (const std::string& setting : request.settings) apply(instance, setting);
    if (request.isWatched)
        for (const char* const meter :
             {"plugin.modMain.modHal.modHalyardMeter", "plugin.modMain.modMeterIODiff", "plugin.modMain.modMeterOut"})
            instance.watch(meter);
    instance.settle();
    if (request.isDot) {
        std::printf("digraph halyard {\n  rankdir=LR;\n  node [shape=box, fontname=\"sans-serif\"];\n");
        CDotNodes nodes;
        printDot(instance.graph().main(), nodes);
        printDot(instance.graph().output(), nodes);
        std::printf("}\n");
        return 0;
    }
    printText(instance.graph().main(), 0);
    printText(instance.graph().output(), 0);
    std::printf("in all late by %d samples\n", instance.latencySamples());
    return 0;
}

}  // namespace brt
