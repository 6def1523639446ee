// SPDX-License-Identifier: LicenseRef-Halyard
// One thread that calls back when timers are due. Meant for tens of timers whose callbacks do little: while one runs,
// the others are late.
//
// Owner: whoever starts it; `start`, `stop` and the destructor belong to one thread at a time. `add` and `cancel` may
// be called from any thread, also from a callback. Callbacks run on the queue's thread, one at a time, with no lock of
// the queue held.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "Platform/Annotations.h"
#include "Platform/CAutoResetEvent.h"
#include "Platform/CCriticalSection.h"
#include "Platform/CNativeThread.h"

namespace brt {

class CTimerQueue {
public:
    using Callback = void (*)(void* context);
    using TimerId = std::uint64_t;  // above 0, never reused

    CTimerQueue() = default;
    ~CTimerQueue() { stop(); }
    CTimerQueue(const CTimerQueue&) = delete;
    CTimerQueue& operator=(const CTimerQueue&) = delete;

    // [any] Starts the thread. Returns the system's error code. REQUIRES: not started, or stopped since.
    [[nodiscard]] int start();

    // [any] Waits for the thread, then drops all timers: no callback runs afterwards. Does nothing if not started.
    // REQUIRES: not called on the queue's thread.
    void stop();

    // [any] Drops all timers without waiting for anything: for a forked child, in which the thread doesn't exist.
    void abandon();

    // [any] Calls `callback(context)` in `dueMs` milliseconds, and every `periodMs` from then on; 0 for a period means
    // once. Periods that pass while the thread is busy give one late call, the others are skipped.
    // `context` must live until the timer is cancelled, or has run its one time.
    TimerId add(Callback callback, void* context, int dueMs, int periodMs);

    // [any] The timer doesn't call any more, and a call that is under way has ended when this returns; on the queue's
    // own thread, that is in a callback, it returns at once. Does nothing for a timer that is gone.
    // The caller must hold no lock that the callback takes.
    void cancel(TimerId id);

private:
    struct Timer {
        TimerId id;
        Callback callback;
        void* context;
        std::int64_t dueTicks;
        std::int64_t periodTicks;
    };
    // Stands on the stack of a thread in `cancel`, until the call that it waits for has ended.
    struct Waiter {
        CAutoResetEvent callEnded;
        Waiter* next = nullptr;
    };

    static void main(void* self);
    void run();
    std::vector<Timer>::iterator earliest() BRT_REQUIRES(m_section);
    Timer takeDue(std::vector<Timer>::iterator timer, std::int64_t nowTicks) BRT_REQUIRES(m_section);
    void call(const Timer& timer);

    CCriticalSection m_section{50};
    std::vector<Timer> m_timers BRT_GUARDED_BY(m_section);
    Waiter* m_waiters BRT_GUARDED_BY(m_section) = nullptr;
    TimerId m_lastId BRT_GUARDED_BY(m_section) = 0;
    TimerId m_calledId BRT_GUARDED_BY(m_section) = 0;  // whose callback runs now; 0 for none

    std::atomic<bool> m_isStopping{false};
    CAutoResetEvent m_wake;  // something changed: look at the timers again
    CNativeThread m_thread;
};

}  // namespace brt
