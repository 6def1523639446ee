// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/CTimerQueue.h"

#include <algorithm>
#include <cmath>

#include "Platform/Clock.h"

namespace brt {

namespace {

std::int64_t ticksOf(int milliseconds) noexcept {
    return std::llround(std::max(milliseconds, 0) * 1e-3 * clockFrequency());
}

}  // namespace

int CTimerQueue::start() {
    m_isStopping.store(false);
    return m_thread.start(&CTimerQueue::main, this, {.name = "timer-queue"});
}

void CTimerQueue::stop() {
    if (!m_thread.isStarted()) return;
    m_isStopping.store(true);
    m_wake.signal();
    m_thread.join();
    const CLock lock(m_section);
    m_timers.clear();
}

// Takes no lock: in a forked child it may be held by a thread that is gone.
void CTimerQueue::abandon() BRT_NO_THREAD_SAFETY_ANALYSIS {
    m_thread.abandon();
    m_timers.clear();
}

CTimerQueue::TimerId CTimerQueue::add(Callback callback, void* context, int dueMs, int periodMs) {
    const CLock lock(m_section);
    m_timers.push_back({++m_lastId, callback, context, clockCounter() + ticksOf(dueMs), ticksOf(periodMs)});
    m_wake.signal();
    return m_lastId;
}

void CTimerQueue::cancel(TimerId id) {
    Waiter waiter;
    {
        const CLock lock(m_section);
        std::erase_if(m_timers, [&](const Timer& timer) { return timer.id == id; });
        if (m_calledId != id || id == 0 || currentThreadId() == m_thread.id()) return;
        waiter.next = m_waiters;
        m_waiters = &waiter;
    }
    waiter.callEnded.wait();
}

void CTimerQueue::main(void* self) { static_cast<CTimerQueue*>(self)->run(); }

void CTimerQueue::run() {
    while (!m_isStopping.load()) {
        double waitSeconds = -1.0;  // without a limit
        Timer due{};
        {
            const CLock lock(m_section);
            const auto next = earliest();
            const std::int64_t now = clockCounter();
            if (next != m_timers.end() && next->dueTicks <= now) {
                due = takeDue(next, now);
            } else if (next != m_timers.end()) {
                waitSeconds = static_cast<double>(next->dueTicks - now) / clockFrequency();
            }
        }
        if (due.callback != nullptr) {
            call(due);
        } else if (waitSeconds >= 0.0) {
            m_wake.waitFor(waitSeconds);
        } else {
            m_wake.wait();
        }
    }
}

// Looked for one by one: with tens of timers that costs less than keeping them sorted.
std::vector<CTimerQueue::Timer>::iterator CTimerQueue::earliest() {
    return std::min_element(m_timers.begin(), m_timers.end(),
                            [](const Timer& a, const Timer& b) { return a.dueTicks < b.dueTicks; });
}

// Moves the timer on to its next time after now, or drops it, and marks it as called.
CTimerQueue::Timer CTimerQueue::takeDue(std::vector<Timer>::iterator timer, std::int64_t nowTicks) {
    const Timer due = *timer;
    if (due.periodTicks > 0) {
        timer->dueTicks += due.periodTicks * ((nowTicks - due.dueTicks) / due.periodTicks + 1);
    } else {
        m_timers.erase(timer);
    }
    m_calledId = due.id;
    return due;
}

void CTimerQueue::call(const Timer& timer) {
    timer.callback(timer.context);

    const CLock lock(m_section);
    m_calledId = 0;
    for (Waiter* waiter = m_waiters; waiter != nullptr;) {
        Waiter* const next = waiter->next;  // read first: a waiter that is let go leaves its stack
        waiter->callEnded.signal();
        waiter = next;
    }
    m_waiters = nullptr;
}

}  // namespace brt
