// SPDX-License-Identifier: LicenseRef-Halyard
// What a message loop shares with those who post to it: the queue, who is there to be posted to, and the alarm clock.
// It outlives its loop as long as an address of it is kept; closed, it takes everything and keeps nothing.
//
// The loop collects all messages at once, so however fast others post, it needs the lock but a few times a round.
// Threads: as tagged. Under its lock nothing else is locked or called.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <set>
#include <span>

#include "Platform/Annotations.h"
#include "Platform/CCriticalSection.h"
#include "Platform/CLoopTarget.h"
#include "Platform/CLoopWaiter_p.h"

namespace brt {

struct LoopMessage {
    LoopTargetId target;
    std::uint64_t sequence;  // counted by the mailbox
    std::int64_t number;
    std::uint32_t message;
};

using LoopQueue = std::deque<LoopMessage>;

class CLoopMailbox {
public:
    // [loop] Returns the system's error code.
    [[nodiscard]] int open();

    // [loop] Forgets targets and messages, and wakes nobody any more: the addresses that are left hold only memory.
    void close();

    // [any] See `CLoopAddress`.
    [[nodiscard]] int post(LoopTargetId target, std::uint32_t message, std::int64_t number);
    void wake();
    void quit();

    // [loop] Takes an id that was never used, and drops one with the messages that wait for it here.
    LoopTargetId addTarget();
    void removeTarget(LoopTargetId id);

    // [loop] A call of `quit` counts until it is taken.
    [[nodiscard]] bool isQuitRequested() const { return m_isQuitRequested.load(std::memory_order_acquire); }
    void takeQuit();

    // [loop] Sleeps as `CLoopWaiter::wait` does, unless somebody posted or called since the last `collect`.
    [[nodiscard]] int wait(std::span<LoopWatch> watches, std::int64_t nanoseconds);

    // [loop] Moves all messages to the end of `collected`, where they go on to count as waiting until `release`.
    void collect(LoopQueue& collected);
    void release(std::size_t messages) { m_waiting.fetch_sub(messages, std::memory_order_relaxed); }

private:
    void rouse() BRT_REQUIRES(m_lock);

    CCriticalSection m_lock;
    LoopQueue m_queue BRT_GUARDED_BY(m_lock);
    std::set<LoopTargetId> m_targets BRT_GUARDED_BY(m_lock);
    std::uint64_t m_lastTarget BRT_GUARDED_BY(m_lock) = 0;
    std::uint64_t m_lastSequence BRT_GUARDED_BY(m_lock) = 0;
    bool m_isAsleep BRT_GUARDED_BY(m_lock) = false;  // and nobody has woken it yet
    bool m_isWakeRequested BRT_GUARDED_BY(m_lock) = false;
    std::atomic<bool> m_isQuitRequested{false};  // written under the lock
    std::atomic<std::size_t> m_waiting{0};       // here and collected; raised under the lock
    CLoopWaiter m_waiter;
};

}  // namespace brt
