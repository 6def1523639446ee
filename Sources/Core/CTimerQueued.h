// SPDX-License-Identifier: LicenseRef-Halyard
// A timer in the tree: fires "tick" to its listeners each interval, on the thread of the tree.
//
// With "is-high-precision" the process's timer queue posts the ticks over the nearest bridge (CTickGate.h tells which);
// without a bridge none arrives. Otherwise they come from the message loop of the thread that starts the timer; where
// that has none, no tick comes either. Without an interval there is no timer.
// Owner and threads: as for any object.
#pragma once

#include "Core/CObject.h"
#include "Core/CTickGate.h"
#include "Platform/CMessageLoop.h"
#include "Platform/CTimerQueue.h"

namespace brt {

class CTimerQueued : public CObject, private CLoopTarget {
public:
    static void describeClass(CClassInfo& info);

    CTimerQueued();
    ~CTimerQueued() override;

    double intervalSeconds() const noexcept { return m_intervalSeconds; }  // 0.0 until set, then 0.001 to 1e6
    bool isTimerActive() const noexcept { return m_isTimerActive; }

private:
    CError* attrFps(const CAttrValue& value);
    CError* attrInterval(const CAttrValue& value);
    CError* attrIsHighPrecision(const CAttrValue& value);
    CError* onSysTick();
    CError* onTick();

    void handleMessage(std::uint32_t, std::int64_t) override {}
    void handleTimer(LoopTimerId timer) override;

    CError* setInterval(double seconds);
    CError* initTimer();
    CError* startQueueTimer(int periodMs);
    void startLoopTimer(int periodMs);
    void stopTimer();

    double m_intervalSeconds = 0.0;
    bool m_isHighPrecision = true;
    bool m_isTimerActive = false;

    // A running timer has one or the other.
    CRef<CTickGate> m_gate;
    CTimerQueue::TimerId m_queueTimer = 0;
    std::shared_ptr<CMessageLoop> m_loop;
    LoopTargetId m_loopTarget = LoopTargetId::none;
};

}  // namespace brt
