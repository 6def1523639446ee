// SPDX-License-Identifier: LicenseRef-Halyard
// The way of a change to the audio side: how entries enter the queue, take the place of those that wait, and are taken.
//
// An entry that shall take another's place holds the values of both, read from `control` before the environment's lock
// is taken; under it only the queue's generation is compared. If the audio thread has taken the queue in between, the
// entry is appended instead: what it holds beyond the change is what the audio side has already.
#include <algorithm>

#include "Audio/CAudioParamCollector.h"

namespace brt {

void CAudioParam::prepareForQueue(CAudioParamQueueEntry& entry, bool mayMerge, std::uint64_t generation) {
    BRT_ASSERT(m_section.isHeld());
    const CAudioParamUpdate& update = entry.change.update();
    if (update.group == kWholeParam) return forgetWaiting();
    if (m_waiting.count() <= update.group) m_waiting.setCount(update.group + 1);
    CWaiting& waiting = m_waiting[update.group];
    if (!mayMerge || waiting.entry == nullptr || waiting.generation != generation) return;

    // Whatever both touch or leave between them, `control` has what comes out in the end.
    CAudioParamUpdate both = update;
    both.firstElement = std::min(update.firstElement, waiting.firstElement);
    both.isSetCount = update.isSetCount || waiting.isSetCount;
    const int end = update.isSetCount ? update.endElement() : std::max(update.endElement(), waiting.endElement);
    if (end < both.firstElement || end > m_control.elementCount(update.group)) return;
    both.elementCount = end - both.firstElement;
    both.values = m_control.values(update.group).data() + both.firstElement * both.format.elementSize;
    both.data = &m_control.data();
    entry.change.assign(both);
    entry.isMerged = true;
    waiting.firstElement = both.firstElement;
    waiting.endElement = end;
    waiting.isSetCount = both.isSetCount;
}

void CAudioParam::forgetWaiting() noexcept {
    for (CWaiting& waiting : m_waiting) waiting = {};
}

// Under the environment's lock: pointers and numbers only.
void CAudioParam::enqueue(CAudioParamQueueEntry& entry, CAudioParamQueue& queue, CAudioParamQueue& replaced,
                          std::uint64_t generation) noexcept {
    const CAudioParamUpdate& update = entry.change.update();
    if (update.group == kWholeParam) {
        forgetWaiting();
        return queue.append(&entry);
    }
    CWaiting& waiting = m_waiting[update.group];
    if (entry.isMerged && waiting.generation == generation) {
        queue.replace(waiting.entry, &entry);
        replaced.append(waiting.entry);
    } else {
        queue.append(&entry);
    }
    waiting = {&entry, generation, update.firstElement, update.endElement(), update.isSetCount};
}

void CAudioParamCollector::handOver(CAudioParamQueue& batch) {
    const bool mayMerge = !m_env->isActive() || waitingCount() > kMergeAbove;
    const std::uint64_t expected = m_generation.load(std::memory_order_relaxed);
    for (CAudioParamQueueEntry* entry = batch.first(); entry != nullptr; entry = entry->next)
        entry->param.prepareForQueue(*entry, mayMerge, expected);

    CAudioParamQueue unused;
    {
        const CSwapLock lock(m_env->section());
        const std::uint64_t generation = m_generation.load(std::memory_order_relaxed);
        while (CAudioParamQueueEntry* const entry = batch.takeFirst())
            entry->param.enqueue(*entry, m_queue, unused, generation);
        m_waitingCount.store(m_queue.count(), std::memory_order_relaxed);
        unused.appendAll(m_spent);
    }
}

void CAudioParamCollector::freeSpent() {
    CAudioParamQueue unused;
    const CSwapLock lock(m_env->section());
    unused.appendAll(m_spent);
}

void CAudioParamCollector::takeUpdates(CAudioParamQueue& queue) noexcept {
    const CSwapLock lock(m_env->section());
    m_spent.appendAll(queue);
    if (m_queue.isEmpty()) return;
    queue.appendAll(m_queue);
    m_generation.fetch_add(1, std::memory_order_relaxed);
    m_waitingCount.store(0, std::memory_order_relaxed);
}

void CAudioParamCollector::applyUpdates(CAudioParamQueue& queue) {
    for (CAudioParamQueueEntry* entry = queue.first(); entry != nullptr; entry = entry->next)
        entry->param.applyToAudio(entry->change);
}

}  // namespace brt
