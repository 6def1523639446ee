// SPDX-License-Identifier: LicenseRef-Halyard
// Changes on their way to the audio side, in order; also a batch of them that goes over in one step.
//
// Owner of the entries: the queue that they stand in. Threads: one at a time; the collector guards its own queues with
// the environment's lock. Every operation but the destructor moves pointers only.
#pragma once

#include "Audio/CAudioParamUpdate.h"

namespace brt {

class CAudioParam;

struct CAudioParamQueueEntry : CBrtMemAllocator {
    CAudioParamQueueEntry(CAudioParam& changed, const CAudioParamUpdate& update) : param(changed), change(update) {}

    CAudioParam& param;
    CAudioParamUpdateCopy change;
    bool isMerged = false;  // holds all that an entry of `param` has which waits already, and shall take its place
    CAudioParamQueueEntry* previous = nullptr;
    CAudioParamQueueEntry* next = nullptr;
};

class CAudioParamQueue {
public:
    CAudioParamQueue() = default;
    ~CAudioParamQueue() { clear(); }
    CAudioParamQueue(const CAudioParamQueue&) = delete;
    CAudioParamQueue& operator=(const CAudioParamQueue&) = delete;

    int count() const noexcept { return m_count; }
    bool isEmpty() const noexcept { return m_count == 0; }
    CAudioParamQueueEntry* first() const noexcept { return m_first; }

    // Takes the entry over.
    void append(CAudioParamQueueEntry* entry) noexcept;
    // Takes over all entries of `other`, behind those that stand here.
    void appendAll(CAudioParamQueue& other) noexcept;
    // Puts `fresh`, which it takes over, in the place of `old`, which is the caller's then.
    void replace(CAudioParamQueueEntry* old, CAudioParamQueueEntry* fresh) noexcept;
    // Hands the first entry over; null if there is none.
    CAudioParamQueueEntry* takeFirst() noexcept;
    void clear() noexcept;

private:
    CAudioParamQueueEntry* m_first = nullptr;
    CAudioParamQueueEntry* m_last = nullptr;
    int m_count = 0;
};

}  // namespace brt
