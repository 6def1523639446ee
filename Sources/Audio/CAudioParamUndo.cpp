// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioParamUndo.h"

#include "Audio/CAudioParamCollector.h"
#include "Core/CClassInfo.h"

namespace brt {

void CAudioParamUndo::describeClass(CClassInfo& info) {
    CObject::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::object("param-collector").required().ofClass<CAudioParamCollector>().help("owns the parameters"),
        attr::number("undo-count-max").byDefault("4").help("most steps of a history; below 5: 4"),
    };
    info.addAttributes(kAttributes);
}

CError* CAudioParamUndo::init() {
    BRT_TRY(getFullName(), CObject::init());
    BRT_TRY(getFullName(), findObjectByAttr("param-collector", m_collector));
    m_maxCount = static_cast<int>(getAttrInt("undo-count-max"));
    if (m_maxCount <= kFewestSteps) m_maxCount = kFewestSteps;
    return nullptr;
}

void CAudioParamUndo::submit(std::unique_ptr<CAudioParamUndoRecord> record) {
    if (!record || record->size() == 0) return;
    const CRankedLock lock(m_undoSection);
    if (!m_history) m_history = std::make_unique<CAudioParamUndoHistory>();
    const bool isMerged = m_history->add(std::move(record), m_maxCount);
    if (!isMerged) onHistoryChanged();
}

void CAudioParamUndo::getHistory(CStringList& labels, int& position) {
    labels.clear();
    labels.append("Undo history start");
    const CRankedLock lock(m_undoSection);
    position = m_history ? m_history->position() : 0;
    if (m_history) m_history->listLabels(labels);
}

void CAudioParamUndo::setHistoryPos(int position, bool mayNotify) {
    const CRankedLock lock(m_undoSection);
    if (!m_history || !m_history->isPosition(position) || position == m_history->position()) return;
    m_history->moveTo(position, *m_collector);
    if (mayNotify) onHistoryChanged();
}

void CAudioParamUndo::exchangeHistory(std::unique_ptr<CAudioParamUndoHistory>& history) {
    const CRankedLock lock(m_undoSection);
    emptyOpenRecords();
    m_history.swap(history);
    onHistoryChanged();
}

std::unique_ptr<CAudioParamUndoHistory> CAudioParamUndo::cloneHistory() {
    const CRankedLock lock(m_undoSection);
    return m_history ? m_history->clone() : nullptr;
}

}  // namespace brt
