// SPDX-License-Identifier: LicenseRef-Halyard
// One step of a history: what it made of each group that it touched, before and after, as whole groups. Also the steps
// that open records gather until they are complete, and the list of steps of one program.
//
// Owner: a history, or whoever makes the step. Threads: under the lock of the history that they belong to or will.
#pragma once

#include <memory>

#include "Audio/CAudioParam.h"
#include "Core/COrderedMap.h"
#include "Core/COwnedArray.h"
#include "Core/CStringList.h"

namespace brt {

// One group of one parameter. A group without elements reads as the parameter's defaults.
struct CAudioParamUndoGroup : CBrtMemAllocator {
    CAudioParamUpdateCopy oldValues;
    CAudioParamUpdateCopy newValues;
};

struct CAudioParamUndoEntry {
    COwnedArray<CAudioParamUndoGroup> groups;

    // Null if there is none of that group.
    CAudioParamUndoGroup* findGroup(int group) const noexcept;
};

class CAudioParamUndoRecord final : public CAudioParamUndoData, public CBrtMemAllocator {
public:
    static constexpr int kNoMergeId = -1;

    explicit CAudioParamUndoRecord(CStringView label, bool isMergeable = false, int mergeId = kNoMergeId)
        : m_label(label), m_isMergeable(isMergeable), m_mergeId(mergeId) {}
    CAudioParamUndoRecord(const CAudioParamUndoRecord&) = delete;
    CAudioParamUndoRecord& operator=(const CAudioParamUndoRecord&) = delete;

    // The text that histories show.
    const CString& label() const noexcept { return m_label; }
    void setLabel(CStringView label) { m_label = label; }
    // Groups that it knows of; 0: nothing has changed.
    int size() const noexcept;

    // The first call for a group counts before, the last one after. Another format than before is ignored.
    void recordBefore(CStringView paramName, int group, const CAudioParamStorage& storage, bool isAbsent) override;
    void recordAfter(CStringView paramName, int group, const CAudioParamStorage& storage, bool isAbsent) override;
    // Forgets what was recorded.
    void clear() { m_entries.clear(); }

    // Writes one side of it, as one batch, under the locks of all its parameters.
    void applyOld(CAudioParamCollector& collector) const { apply(collector, &CAudioParamUndoGroup::oldValues); }
    void applyNew(CAudioParamCollector& collector) const { apply(collector, &CAudioParamUndoGroup::newValues); }

    // Whether both may become one step, as far as their makers say.
    bool isMergeableWith(const CAudioParamUndoRecord& newer) const noexcept {
        return m_isMergeable && newer.m_isMergeable && m_mergeId == newer.m_mergeId;
    }
    // Takes the newer one's new values over; false, with nothing changed, where it is about other groups or counts.
    bool tryMerge(const CAudioParamUndoRecord& newer);

    std::unique_ptr<CAudioParamUndoRecord> clone() const;

private:
    using CSide = CAudioParamUpdateCopy CAudioParamUndoGroup::*;

    bool isAlike(const CAudioParamUndoRecord& newer) const noexcept;
    void apply(CAudioParamCollector& collector, CSide side) const;

    CString m_label;
    bool m_isMergeable;
    int m_mergeId;
    COrderedMap<CString, CAudioParamUndoEntry> m_entries;  // by the parameter's full name
};

// The steps of one program. Those up to the position are done, those behind it have been undone.
class CAudioParamUndoHistory : public CBrtMemAllocator {
public:
    CAudioParamUndoHistory() = default;
    CAudioParamUndoHistory(const CAudioParamUndoHistory&) = delete;
    CAudioParamUndoHistory& operator=(const CAudioParamUndoHistory&) = delete;

    int count() const noexcept { return m_records.count(); }
    int position() const noexcept { return m_position; }
    bool isPosition(int position) const noexcept { return position >= 0 && position <= count(); }

    // True if the record became part of the last step; else it has become a step of its own, behind the position, and
    // what was behind it is gone. Of `maxCount` steps the oldest goes.
    bool add(std::unique_ptr<CAudioParamUndoRecord> record, int maxCount);
    // Undoes or redoes, step by step. REQUIRES: isPosition.
    void moveTo(int position, CAudioParamCollector& collector);
    void listLabels(CStringList& labels) const;
    std::unique_ptr<CAudioParamUndoHistory> clone() const;

private:
    COwnedArray<CAudioParamUndoRecord> m_records;
    int m_position = 0;
};

}  // namespace brt
