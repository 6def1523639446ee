// SPDX-License-Identifier: LicenseRef-Halyard
// Messages about the history: records that clients gather, and what clients know of its steps.
#include <algorithm>

#include "Audio/CParamInterfaceBase.h"
#include "Audio/CParamInterfaceBase_p.h"
#include "Core/CError.h"

namespace brt {

bool CParamInterfaceBase::beginEdit(CAudioParam&, int, int) { return false; }
void CParamInterfaceBase::endEdit(CAudioParam&, int, int) {}

// Open records.

CParamInterfaceBase::COpenRecord* CParamInterfaceBase::findOpenRecord(ParamHandle handle) const {
    const std::unique_ptr<COpenRecord>* const found = m_openRecords.find(handle);
    return found != nullptr ? found->get() : nullptr;
}

std::unique_ptr<CParamInterfaceBase::COpenRecord> CParamInterfaceBase::takeOpenRecord(ParamHandle handle) {
    std::unique_ptr<COpenRecord>* const found = m_openRecords.find(handle);
    if (found == nullptr) return nullptr;
    std::unique_ptr<COpenRecord> open = std::move(*found);
    m_openRecords.erase(handle);
    endEdits(*open);
    return open;
}

void CParamInterfaceBase::beginEdits(COpenRecord& open, CAudioParam& param, const CAudioParamUpdate& update) {
    const int group = update.format.isSingleGroup ? 0 : update.group;
    const int first = update.format.isSingleElement ? 0 : update.firstElement;
    const int end = update.format.isSingleElement ? std::min(update.elementCount, 1) : update.endElement();
    for (int element = first; element < end; ++element) {
        const auto key = static_cast<std::uint32_t>(element * 256 + group);
        const COrderedSet<std::uint32_t>* const held = open.edits.find(&param);
        if (held != nullptr && held->contains(key)) continue;
        if (beginEdit(param, element, group)) open.edits.findOrInsert(&param).insert(key);
    }
}

// All that a reset writes.
void CParamInterfaceBase::beginResetEdits(COpenRecord& open, CAudioParam& param, int group, int element) {
    const CAudioParamStorage& control = param.control();
    const CAudioParamStorage& values = param.resetValues();
    const int groupCount = std::max(control.groupCount(), values.groupCount());
    const bool isAllGroups = group == CAudioParam::kAllGroups;
    const bool isWhole = isAllGroups || element == CAudioParam::kAllElements;
    const int first = isAllGroups ? 0 : control.format().isSingleGroup ? 0 : group;
    for (int g = first; g < (isAllGroups ? groupCount : std::min(first + 1, groupCount)); ++g) {
        CAudioParamUpdate written;
        written.format = control.format();
        written.group = g;
        written.firstElement = isWhole ? 0 : element;
        written.elementCount = isWhole ? std::max(control.elementCount(g), values.elementCount(g)) : 1;
        beginEdits(open, param, written);
    }
}

void CParamInterfaceBase::endEdits(COpenRecord& open) {
    for (const auto& [param, keys] : open.edits)
        for (const std::uint32_t key : keys) endEdit(*param, static_cast<int>(key / 256), static_cast<int>(key % 256));
    open.edits.clear();
}

void CParamInterfaceBase::dropOpenRecords(int clientId) {
    const CRankedLock lock(undoSection());
    for (const auto& [handle, open] : m_openRecords)
        if (clientId == kAllClients || clientOf(handle) == clientId) endEdits(*open);
    if (clientId == kAllClients)
        m_openRecords.clear();
    else
        eraseClient(m_openRecords, clientId);
}

// What they have gathered is about a state that isn't heard any more. Their handles stay good.
void CParamInterfaceBase::emptyOpenRecords() {
    for (const auto& [handle, open] : m_openRecords) {
        endEdits(*open);
        open->record->clear();
    }
}

CError* CParamInterfaceBase::onCreateUndoData() {
    ParamHandle handle = 0;
    CString label;
    bool isMergeable = false;
    std::int32_t mergeId = 0;
    BRT_TRY(getFullName(), readFields(message(), handle, label, isMergeable, mergeId));
    if (!isUsable(handle)) return nullptr;
    const CRankedLock lock(undoSection());
    takeOpenRecord(handle).reset();
    auto open = std::make_unique<COpenRecord>();
    open->record = std::make_unique<CAudioParamUndoRecord>(label, isMergeable, mergeId);
    m_openRecords.findOrInsert(handle) = std::move(open);
    return nullptr;
}

CError* CParamInterfaceBase::onRemoveUndoData() {
    ParamHandle handle = 0;
    BRT_TRY(getFullName(), readFields(message(), handle));
    const CRankedLock lock(undoSection());
    takeOpenRecord(handle).reset();
    return nullptr;
}

CError* CParamInterfaceBase::onSubmitUndoData() {
    ParamHandle handle = 0;
    CString label;
    BRT_TRY(getFullName(), readFields(message(), handle, label));
    const CRankedLock lock(undoSection());
    const std::unique_ptr<COpenRecord> open = takeOpenRecord(handle);
    if (!open) return nullptr;
    if (!label.isEmpty()) open->record->setLabel(label);
    submit(std::move(open->record));
    return nullptr;
}

// The history.

void CParamInterfaceBase::onHistoryChanged() { sendUndoHistory(kAllClients); }

void CParamInterfaceBase::sendUndoHistory(int clientId) {
    const CRankedLock lock(undoSection());
    CStringList labels;
    int position = 0;
    getHistory(labels, position);
    CParamMessage message(toClient::kUpdateUndoHistory, position, labels);
    sendOrLog(clientId, message, CPacketTopic::ofInstance(EInstanceState::kUndoHistory));
}

CError* CParamInterfaceBase::onRequestUndoHistory() {
    std::int32_t clientId = 0;
    BRT_TRY(getFullName(), readFields(message(), clientId));
    sendUndoHistory(clientId);
    return nullptr;
}

CError* CParamInterfaceBase::onSetUndoHistoryPos() {
    std::int32_t position = 0;
    BRT_TRY(getFullName(), readFields(message(), position));
    setHistoryPos(position, true);
    return nullptr;
}

}  // namespace brt
