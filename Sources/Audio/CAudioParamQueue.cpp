// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioParamQueue.h"

#include <utility>

namespace brt {

void CAudioParamQueue::append(CAudioParamQueueEntry* entry) noexcept {
    entry->previous = m_last;
    entry->next = nullptr;
    (m_last != nullptr ? m_last->next : m_first) = entry;
    m_last = entry;
    ++m_count;
}

void CAudioParamQueue::appendAll(CAudioParamQueue& other) noexcept {
    if (other.m_first == nullptr) return;
    other.m_first->previous = m_last;
    (m_last != nullptr ? m_last->next : m_first) = other.m_first;
    m_last = other.m_last;
    m_count += other.m_count;
    other.m_first = other.m_last = nullptr;
    other.m_count = 0;
}

void CAudioParamQueue::replace(CAudioParamQueueEntry* old, CAudioParamQueueEntry* fresh) noexcept {
    fresh->previous = old->previous;
    fresh->next = old->next;
    (old->previous != nullptr ? old->previous->next : m_first) = fresh;
    (old->next != nullptr ? old->next->previous : m_last) = fresh;
}

CAudioParamQueueEntry* CAudioParamQueue::takeFirst() noexcept {
    CAudioParamQueueEntry* const entry = m_first;
    if (entry == nullptr) return nullptr;
    m_first = entry->next;
    (m_first != nullptr ? m_first->previous : m_last) = nullptr;
    --m_count;
    return entry;
}

void CAudioParamQueue::clear() noexcept {
    while (CAudioParamQueueEntry* const entry = takeFirst()) delete entry;
}

}  // namespace brt
