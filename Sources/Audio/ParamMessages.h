// SPDX-License-Identifier: LicenseRef-Halyard
// The words that a window and its instance exchange: names of messages, and handles. A message is its name as a stored
// string, and its fields behind it, as CParamMessage.h writes and reads them.
//
// A client is one window's end. It makes the handles of what it listens to and of its open undo records: its own number
// in the upper half, a count in the lower. So an answer finds its way from the handle alone.
// Threads: any; constants.
#pragma once

#include <cstdint>

#include "Core/CStringView.h"

namespace brt {

// 0 is the handle of nothing.
using ParamHandle = std::uint32_t;

constexpr int kAllClients = -1;
constexpr int kLastClientId = 0xFFFE;  // from 1; of the counts of a client too

constexpr int clientOf(ParamHandle handle) noexcept { return static_cast<int>(handle >> 16); }
constexpr ParamHandle makeHandle(int clientId, int number) noexcept {
    return static_cast<ParamHandle>(clientId) << 16 | static_cast<ParamHandle>(number);
}

// Counts on, from the last number to 1, and leaves out what is in use; 0 if everything is.
template <class IsUsed>
int nextFreeNumber(int& last, IsUsed isUsed) {
    for (int tries = 0; tries < kLastClientId; ++tries) {
        last = last >= kLastClientId ? 1 : last + 1;
        if (!isUsed(last)) return last;
    }
    return 0;
}

// From a client to the instance.
namespace toBase {
constexpr CStringView kCreateUndoData = "create-undo-data";
constexpr CStringView kRemoveUndoData = "remove-undo-data";
constexpr CStringView kSubmitUndoData = "submit-undo-data";
constexpr CStringView kRequestUndoHistory = "request-undo-history";
constexpr CStringView kSetUndoHistoryPos = "set-undo-history-pos";
constexpr CStringView kListenParam = "listen-param";
constexpr CStringView kUnlistenParam = "unlisten-param";
constexpr CStringView kChangeParam = "change-param";
constexpr CStringView kResetParam = "reset-param";
constexpr CStringView kListenRegistry = "listen-registry";
constexpr CStringView kUnlistenRegistry = "unlisten-registry";
constexpr CStringView kSetCurrentProgram = "set-current-program";
constexpr CStringView kRenamePreset = "rename-preset";
constexpr CStringView kActivateFactoryPreset = "activate-factory-preset";
constexpr CStringView kActivatePreset = "activate-preset";
constexpr CStringView kRequestPreset = "request-preset";
constexpr CStringView kRequestBank = "request-bank";
constexpr CStringView kSetDefaultPreset = "set-default-preset";
constexpr CStringView kActivateDefaultPreset = "activate-default-preset";
constexpr CStringView kExchangeShadowPreset = "exchange-shadow-preset";
constexpr CStringView kUpdateShadowPreset = "update-shadow-preset";
constexpr CStringView kListenViz = "listen-viz";
constexpr CStringView kUnlistenViz = "unlisten-viz";
constexpr CStringView kRequestVizData = "request-viz-data";
constexpr CStringView kRequestExportSlotNames = "request-export-slot-names";
constexpr CStringView kRequestInternalChannelCount = "request-internal-channel-count";
constexpr CStringView kRequestGroupCount = "request-group-count";
constexpr CStringView kRequestIoChannelCounts = "request-io-channel-counts";
constexpr CStringView kRequestSampleRate = "request-sample-rate";
constexpr CStringView kImportChannelLabels = "import-channel-labels";
}  // namespace toBase

// From the instance to a client, or to all.
namespace toClient {
constexpr CStringView kUpdateUndoHistory = "update-undo-history";
constexpr CStringView kUpdateParamInfo = "update-param-info";
constexpr CStringView kUpdateParam = "update-param";
constexpr CStringView kUpdateRegistry = "update-registry";
constexpr CStringView kRegistryData = "registry-data";
constexpr CStringView kStartViz = "start-viz";
constexpr CStringView kStopViz = "stop-viz";
constexpr CStringView kClearClient = "clear-client";
constexpr CStringView kUpdateInternalChannelCount = "update-internal-channel-count";
constexpr CStringView kUpdateGroupCount = "update-group-count";
constexpr CStringView kUpdateIoChannelCounts = "update-io-channel-counts";
constexpr CStringView kUpdateSampleRate = "update-sample-rate";
constexpr CStringView kVizData = "viz-data";
constexpr CStringView kExportSlotNames = "export-slot-names";
}  // namespace toClient

}  // namespace brt
