// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioParamUndoRecord.h"

#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamLocks.h"

namespace brt {
namespace {

CAudioParamUpdate describe(const CAudioParamStorage& storage, int group, bool isAbsent) {
    CAudioParamUpdate update = storage.describe(group);
    if (isAbsent) update.elementCount = 0;
    return update;
}

}  // namespace

CAudioParamUndoGroup* CAudioParamUndoEntry::findGroup(int group) const noexcept {
    for (CAudioParamUndoGroup* const candidate : groups)
        if (candidate->oldValues.update().group == group) return candidate;
    return nullptr;
}

int CAudioParamUndoRecord::size() const noexcept {
    int size = 0;
    for (const auto& [name, entry] : m_entries) size += entry.groups.count();
    return size;
}

void CAudioParamUndoRecord::recordBefore(CStringView paramName, int group, const CAudioParamStorage& storage,
                                         bool isAbsent) {
    CAudioParamUndoEntry& entry = m_entries.findOrInsert(paramName);
    if (entry.findGroup(group) != nullptr) return;
    CAudioParamUndoGroup& made = *entry.groups.append(new CAudioParamUndoGroup);
    made.oldValues.assign(describe(storage, group, isAbsent));
    made.newValues.assign(describe(storage, group, true));
}

void CAudioParamUndoRecord::recordAfter(CStringView paramName, int group, const CAudioParamStorage& storage,
                                        bool isAbsent) {
    const CAudioParamUndoEntry* const entry = m_entries.find(paramName);
    CAudioParamUndoGroup* const recorded = entry != nullptr ? entry->findGroup(group) : nullptr;
    if (recorded == nullptr || recorded->newValues.update().format != storage.format()) return;
    recorded->newValues.assign(describe(storage, group, isAbsent));
}

void CAudioParamUndoRecord::apply(CAudioParamCollector& collector, CSide side) const {
    CSmallArray<CAudioParam*> params;
    for (const auto& [name, entry] : m_entries) params.append(&collector.getParam(name));
    // Held until the batch is on its way: a newer write of somebody else comes behind it for everybody.
    const CAudioParamLocks locks({params.begin(), static_cast<std::size_t>(params.count())});
    CAudioParamQueue batch;
    const CAudioParamChangeContext context{.batch = &batch, .source = this};
    // What filters write comes behind what they follow: the record has the last word.
    for (const ELockRank rank : {ELockRank::kParam, ELockRank::kDependentParam}) {
        int index = 0;
        for (const auto& [name, entry] : m_entries) {
            CAudioParam& param = *params[index++];
            if (param.section().rank() != rank) continue;
            for (const CAudioParamUndoGroup* const group : entry.groups) param.update((group->*side).update(), context);
        }
    }
    collector.handOver(batch);
}

bool CAudioParamUndoRecord::isAlike(const CAudioParamUndoRecord& newer) const noexcept {
    if (m_entries.count() != newer.m_entries.count()) return false;
    for (const auto& [name, entry] : m_entries) {
        const CAudioParamUndoEntry* const other = newer.m_entries.find(name);
        if (other == nullptr || other->groups.count() != entry.groups.count()) return false;
        for (int i = 0; i < entry.groups.count(); ++i) {
            const CAudioParamUpdate& mine = entry.groups[i].newValues.update();
            const CAudioParamUpdate& theirs = other->groups[i].newValues.update();
            if (mine.group != theirs.group || mine.elementCount != theirs.elementCount || mine.format != theirs.format)
                return false;
        }
    }
    return true;
}

bool CAudioParamUndoRecord::tryMerge(const CAudioParamUndoRecord& newer) {
    if (!isAlike(newer)) return false;
    for (auto& [name, entry] : m_entries) {
        const CAudioParamUndoEntry& other = *newer.m_entries.find(name);
        for (int i = 0; i < entry.groups.count(); ++i)
            entry.groups[i].newValues.assign(other.groups[i].newValues.update());
    }
    return true;
}

std::unique_ptr<CAudioParamUndoRecord> CAudioParamUndoRecord::clone() const {
    auto copy = std::make_unique<CAudioParamUndoRecord>(m_label, m_isMergeable, m_mergeId);
    for (const auto& [name, entry] : m_entries) {
        CAudioParamUndoEntry& copied = copy->m_entries.findOrInsert(name);
        for (const CAudioParamUndoGroup* const group : entry.groups) {
            CAudioParamUndoGroup& made = *copied.groups.append(new CAudioParamUndoGroup);
            made.oldValues.assign(group->oldValues.update());
            made.newValues.assign(group->newValues.update());
        }
    }
    return copy;
}

// Histories.

bool CAudioParamUndoHistory::add(std::unique_ptr<CAudioParamUndoRecord> record, int maxCount) {
    // With something to redo a merge would leave that over a state that it doesn't belong to.
    if (m_position > 0 && m_position == count()) {
        CAudioParamUndoRecord& last = m_records[m_position - 1];
        if (last.isMergeableWith(*record) && last.tryMerge(*record)) return true;
    }
    while (count() > m_position) m_records.removeAt(count() - 1);
    if (count() >= maxCount)
        m_records.removeAt(0);
    else
        ++m_position;
    m_records.append(std::move(record));
    return false;
}

void CAudioParamUndoHistory::moveTo(int position, CAudioParamCollector& collector) {
    while (m_position < position) m_records[m_position++].applyNew(collector);
    while (m_position > position) m_records[--m_position].applyOld(collector);
}

void CAudioParamUndoHistory::listLabels(CStringList& labels) const {
    for (const CAudioParamUndoRecord* const record : m_records) labels.append(record->label());
}

std::unique_ptr<CAudioParamUndoHistory> CAudioParamUndoHistory::clone() const {
    auto copy = std::make_unique<CAudioParamUndoHistory>();
    for (const CAudioParamUndoRecord* const record : m_records) copy->m_records.append(record->clone());
    copy->m_position = m_position;
    return copy;
}

}  // namespace brt
