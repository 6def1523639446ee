// SPDX-License-Identifier: LicenseRef-Halyard
// Messages of a window to the product's instance: each is the number of a name, two bytes that count, and the bytes of
// its fields. Whatever they say, values stay in their limits, and windows understand all that comes back.
#include <cmath>

#include "Audio/CAudioInterfaceBase.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamRegistry.h"
#include "Audio/CParamMessage.h"
#include "Core/CApplication.h"
#include "Core/CError.h"
#include "Core/CMemoryReader.h"
#include "Core/CWriteSeqBuffer.h"
#include "Documents/ProductTags.h"
#include "Documents/Resources.h"
#include "Fuzz/FuzzTarget.h"
#include "Other/CAudioInterfaceClient.h"
#include "Other/CParamInterfaceBaseConnectorUni.h"
#include "Other/CParamInterfaceClientConnectorUni.h"

namespace brt::fuzz {

constexpr CStringView kNames[] = {
    toBase::kListenParam,
    toBase::kUnlistenParam,
    toBase::kChangeParam,
    toBase::kResetParam,
    toBase::kCreateUndoData,
    toBase::kRemoveUndoData,
    toBase::kSubmitUndoData,
    toBase::kRequestUndoHistory,
    toBase::kSetUndoHistoryPos,
    toBase::kListenRegistry,
    toBase::kUnlistenRegistry,
    toBase::kSetCurrentProgram,
    toBase::kRenamePreset,
    toBase::kActivateFactoryPreset,
    toBase::kActivatePreset,
    toBase::kRequestPreset,
    toBase::kRequestBank,
    toBase::kSetDefaultPreset,
    toBase::kActivateDefaultPreset,
    toBase::kExchangeShadowPreset,
    toBase::kUpdateShadowPreset,
    toBase::kListenViz,
    toBase::kUnlistenViz,
    toBase::kRequestVizData,
    toBase::kRequestExportSlotNames,
    toBase::kRequestInternalChannelCount,
    toBase::kRequestGroupCount,
    toBase::kRequestIoChannelCounts,
    toBase::kRequestSampleRate,
    toBase::kImportChannelLabels,
    "no-such-message",
};

void startOnce() {
    static const bool isStarted = [] {
        CApplication::start({productTags(), kHalyardResources});
        return CApplication::sharedObject() != nullptr;
    }();
    require(isStarted, "the application starts");
}

void send(CParamInterfaceBaseConnectorUni& connector, CStringView name, const std::uint8_t* fields, int size) {
    CParamMessage message(name);
    message.keep(message.stream().write(fields, size));
    std::unique_ptr<CParamPacket> packet;
    require(!discardError(message.finish(packet)), "a message is made");
    discardError(connector.processClientData(packet->bytes));  // most make no sense
}

void checkValues(CAudioParamCollector& collector) {
    CSmallArray<CAudioParam*> params;
    collector.listParams(params);
    for (CAudioParam* const param : params) {
        const CAudioParamStorage& control = param->control();
        require(control.groupCount() <= kAudioGroupLimit, "groups stay within their limit");
        for (int group = 0; group < control.groupCount(); ++group) {
            require(control.elementCount(group) <= kAudioElementLimit, "elements stay within their limit");
            for (const double value : control.values(group))
                require(control.format().isFloat() ? std::isfinite(value) : control.data().find(value) != nullptr,
                        "each value is a number, or stands for an item");
        }
    }
}

// Each position of the history, and whatever the programs hold, is a state like any other.
void checkHistory(CAudioInterfaceBase& base, CAudioParamCollector& collector) {
    CStringList labels;
    int position = 0;
    base.getHistory(labels, position);
    require(position >= 0 && position < labels.count(), "the position is one of the history");
    for (const int end : {0, labels.count() - 1, position}) {
        base.setHistoryPos(end, true);
        checkValues(collector);
    }
}

void checkPrograms(CAudioParamRegistry& registry, CAudioParamCollector& collector) {
    CWriteSeqBuffer stream(CWriteSeqBuffer::kStateBlockBytes);
    require(!discardError(registry.acquireBank(false, stream)), "the programs can be saved");
    CByteBuffer bytes;
    stream.moveTo(bytes);
    CMemoryReader reader(bytes.data(), bytes.size());
    require(!discardError(registry.activateBank(reader, true)), "what has been saved can be loaded");
    CAudioParam& shownName = collector.getParam("plugin.modMain.preset-name");
    for (int i = 0; i < registry.getProgramCount(); ++i) {
        registry.setCurrentProgram(i, nullptr);
        require(registry.getCurrentProgramName() == CString("qzkd:").append(shownName.getString(0, 0)),
                "the name that is shown is the program's");
        checkValues(collector);
    }
}

CObject* add(CObject& parent, const char* tag, const char* name, const char* attribute, const char* value) {
    CAttrMap attributes;
    attributes.findOrInsert(attribute).setText(value);
    CObject* child = nullptr;
    require(!discardError(parent.createChild(child, tag, name, kTemplateOptional, nullptr, &attributes)),
            "a window is made");
    return child;
}

}  // namespace brt::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace brt;
    fuzz::startOnce();
    CObject* root = nullptr;
    CObject* plugin = nullptr;
    CAudioParamCollector* collector = nullptr;
    CParamInterfaceBaseConnectorUni* connector = nullptr;
    CAudioInterfaceBase* base = nullptr;
    CAudioParamRegistry* registry = nullptr;
    fuzz::require(!discardError(CApplication::initRootObject(root, "")) &&
                      !discardError(root->createChild(plugin, "plugin", "plugin", kTemplateRequired)) &&
                      !discardError(root->findObjectChecked(collector, "plugin.param-collector")) &&
                      !discardError(root->findObjectChecked(connector, "plugin.interface-base-connector")) &&
                      !discardError(root->findObjectChecked(base, "plugin.interface-base")) &&
                      !discardError(root->findObjectChecked(registry, "plugin.param-registry")),
                  "an instance is made");
    collector->start();
    fuzz::add(*root, "other:param-interface-client-connector-uni", "window", "base-connector",
              "plugin.interface-base-connector");
    auto* const client = dynamic_cast<CAudioInterfaceClient*>(
        fuzz::add(*root, "audio:interface-client", "client", "client-connector", "^window"));

    while (size >= 3) {
        const CStringView name = fuzz::kNames[data[0] % std::size(fuzz::kNames)];
        const std::size_t length = std::min<std::size_t>(data[1] + 256U * data[2], size - 3);
        fuzz::send(*connector, name, data + 3, static_cast<int>(length));
        data += 3 + length;
        size -= 3 + length;
    }
    fuzz::checkValues(*collector);
    fuzz::checkHistory(*base, *collector);
    fuzz::checkPrograms(*registry, *collector);
    CPacketList packets;
    connector->takeMessages(1, packets);
    while (const std::unique_ptr<CParamPacket> packet = packets.takeFirst())
        fuzz::require(!discardError(client->handleMessage(packet->bytes)), "a window understands what comes");
    CObject::release(root);
    return 0;
}
