// SPDX-License-Identifier: LicenseRef-Halyard
// What a running timer shares with the timer queue's callback. It decides which ticks of the queue are posted, so that
// a thread that is slow or stuck never finds a row of ticks waiting:
//     no tick is posted while an earlier one isn't handled, unless that was posted 2 seconds ago;
//     a handler that takes n intervals costs the n ticks that follow it, but at most those of 2 seconds.
// Owner: counted; the timer and, while it runs, the callback. Threads: as tagged. Times are seconds of a clock that is
// never set back.
#pragma once

#include "Core/CCounted.h"
#include "Core/CObjectAddress.h"
#include "Platform/CCriticalSection.h"

namespace brt {

class CTickGate final : public CCounted {
public:
    static constexpr double kPatienceSeconds = 2.0;

    // `timer` is posted to; `intervalSeconds` is above 0.
    CTickGate(CRef<CObjectAddress> timer, double intervalSeconds) noexcept
        : m_timer(std::move(timer)), m_intervalSeconds(intervalSeconds) {}

    const CObjectAddress& timer() const noexcept { return *m_timer; }

    // [any] True if this tick is to be posted.
    bool pass(double nowSeconds) noexcept;

    // [loop] A post has arrived. False if no tick is waiting to be handled: then it is one of several that were posted
    // while the thread was stuck, and an earlier one has been handled.
    bool isAwaited() noexcept;

    // [loop] The tick has been handled.
    void setHandled(double takenSeconds) noexcept;

private:
    const CRef<CObjectAddress> m_timer;
    const double m_intervalSeconds;
    CCriticalSection m_lock{50};
    bool m_isHandled BRT_GUARDED_BY(m_lock) = true;
    int m_skips BRT_GUARDED_BY(m_lock) = 0;  // ticks that are still to be left out
    double m_lastPostSeconds BRT_GUARDED_BY(m_lock) = 0.0;
};

}  // namespace brt
