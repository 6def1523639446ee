// SPDX-License-Identifier: LicenseRef-Halyard
// What the objects of one tree share: the tree's number in this process, the counter of their ids, and the registry of
// their events. Owner: the tree's root. Objects of the shared tree have none.
// Threads: ids may be taken on any thread; the event registry has locks of its own.
#pragma once

#include <atomic>

#include "Core/CCounted.h"

namespace brt {

class CEventRegistry;

class CObjectContext : public CBrtMemAllocator {
public:
    CObjectContext();
    ~CObjectContext();
    CObjectContext(const CObjectContext&) = delete;
    CObjectContext& operator=(const CObjectContext&) = delete;

    // [any] Counts from 1; no number comes twice in a process.
    int instanceNumber() const noexcept { return m_instanceNumber; }

    // [any] Counts from 0; no id comes twice in a tree.
    int nextId() noexcept { return m_nextId.fetch_add(1, std::memory_order_relaxed); }

    CEventRegistry& events() noexcept { return *m_events; }

    // [any] Contexts that are alive in this process.
    static int liveCount() noexcept;

private:
    const int m_instanceNumber;
    std::atomic<int> m_nextId{0};
    const CRef<CEventRegistry> m_events;
};

}  // namespace brt
