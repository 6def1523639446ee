// SPDX-License-Identifier: LicenseRef-Halyard
// The history of what users have changed, for the program that is the current one. Whoever changes parameters for a
// user gathers the change in a record and submits it; from then on it can be undone.
//
// A program that is left takes its history with it, and so does the other side of A/B. Base of an instance's interface,
// which tells windows. Owner: the instance's tree. Threads: any but the audio thread.
// Locks: that of histories, behind that of programs and ahead of those of parameters.
#pragma once

#include "Audio/CAudioParamUndoRecord.h"
#include "Core/CObject.h"
#include "Core/CRankedLock.h"

namespace brt {

class CAudioParamUndo : public CObject {
public:
    static constexpr int kFewestSteps = 4;

    static void describeClass(CClassInfo& info);
    [[nodiscard]] CError* init() override;

    // Held by who does more than one of these at a time, and while an open record is written to.
    CRankedSection& undoSection() noexcept BRT_RETURN_CAPABILITY(m_undoSection) { return m_undoSection; }

    // A record in which nothing has changed is dropped.
    void submit(std::unique_ptr<CAudioParamUndoRecord> record);
    // "Undo history start", then the label of each step, in order; the position is an index into that list.
    void getHistory(CStringList& labels, int& position);
    // Undoes and redoes. Ignored for a position that there isn't. `mayNotify`: `onHistoryChanged`, if anything moved.
    void setHistoryPos(int position, bool mayNotify);

    // The history of another program or side takes the place of this one, which goes to `history`; null is an empty
    // one. What open records hold belongs to the side that is left, and goes.
    void exchangeHistory(std::unique_ptr<CAudioParamUndoHistory>& history);
    // A copy; null for an empty one that nobody has used.
    std::unique_ptr<CAudioParamUndoHistory> cloneHistory();

protected:
    CAudioParamUndo() = default;

    // Under the lock of histories.
    virtual void onHistoryChanged() {}
    virtual void emptyOpenRecords() {}

    CAudioParamCollector* collector() const noexcept { return m_collector; }

private:
    CAudioParamCollector* m_collector = nullptr;  // not owned
    int m_maxCount = kFewestSteps;
    CRankedSection m_undoSection{ELockRank::kUndo};
    std::unique_ptr<CAudioParamUndoHistory> m_history BRT_GUARDED_BY(m_undoSection);  // null until the first step
};

}  // namespace brt
