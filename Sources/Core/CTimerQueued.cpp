// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CTimerQueued.h"

#include "Core/CClassInfo.h"
#include "Core/CSharedTimerQueue.h"
#include "Core/TimeBase.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace brt {
namespace {

constexpr double kShortestSeconds = 0.001;
constexpr double kLongestSeconds = 1e6;
constexpr double kLowestFps = 0.001;
constexpr double kHighestFps = 1000.0;

// Not a number counts as the lowest.
double limited(double value, double lowest, double highest) noexcept {
    return value >= lowest ? std::min(value, highest) : lowest;
}

bool isDifferent(double a, double b) noexcept {
    return std::fabs(a - b) > (std::fabs(a) + std::fabs(b)) * std::numeric_limits<double>::epsilon();
}

// On the queue's thread. Reads nothing of the timer object, which may be going at this moment.
void postTick(void* context) {
    const CRef<CTickGate> gate(static_cast<CTickGate*>(context));
    if (gate->pass(secondsSinceOrigin())) gate->timer().post("timer", "sys-tick");
}

}  // namespace

void CTimerQueued::describeClass(CClassInfo& info) {
    CObject::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::number("fps").between(kLowestFps, kHighestFps).runs<&CTimerQueued::attrFps>().help("ticks per second"),
        attr::number("interval")
            .between(kShortestSeconds, kLongestSeconds)
            .runs<&CTimerQueued::attrInterval>()
            .help("seconds between two ticks"),
        attr::flag("is-high-precision")
            .byDefault("true")
            .runs<&CTimerQueued::attrIsHighPrecision>()
            .help("ticks from the process's timer thread, not from the thread's message loop"),
    };
    static constexpr CEventInfo kEvents[] = {
        event<&CTimerQueued::onSysTick>("sys-tick", "from the timer queue: handles one tick"),
        event<&CTimerQueued::onTick>("tick", "fires \"tick\" to the listeners"),
    };
    info.addAttributes(kAttributes);
    info.addEvents(kEvents);
}

CTimerQueued::CTimerQueued() { CSharedTimerQueue::addUser(); }

CTimerQueued::~CTimerQueued() {
    stopTimer();
    CSharedTimerQueue::removeUser();
}

CError* CTimerQueued::attrFps(const CAttrValue& value) {
    return setInterval(1.0 / limited(value.asDouble(), kLowestFps, kHighestFps));
}

CError* CTimerQueued::attrInterval(const CAttrValue& value) {
    return setInterval(limited(value.asDouble(), kShortestSeconds, kLongestSeconds));
}

CError* CTimerQueued::attrIsHighPrecision(const CAttrValue& value) {
    if (value.asBool() == m_isHighPrecision) return nullptr;
    m_isHighPrecision = value.asBool();
    return initTimer();
}

CError* CTimerQueued::setInterval(double seconds) {
    if (!isDifferent(seconds, m_intervalSeconds)) return nullptr;
    m_intervalSeconds = seconds;
    return initTimer();
}

CError* CTimerQueued::initTimer() {
    stopTimer();
    if (m_intervalSeconds <= 0.0) return nullptr;
    const int periodMs = static_cast<int>(std::lround(m_intervalSeconds * 1000.0));
    if (m_isHighPrecision)
        BRT_TRY(getFullName(), startQueueTimer(periodMs));
    else
        startLoopTimer(periodMs);
    m_isTimerActive = true;
    return nullptr;
}

CError* CTimerQueued::startQueueTimer(int periodMs) {
    CRef<CTickGate> gate(new CTickGate(address(), m_intervalSeconds));
    if (CSharedTimerQueue::add(m_queueTimer, &postTick, gate.get(), periodMs) != 0)
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CTimerQueued_initTimer_createTimerQueue Timer queue creation error.");
    m_gate = std::move(gate);
    return nullptr;
}

void CTimerQueued::startLoopTimer(int periodMs) {
    m_loop = CMessageLoop::current();
    if (!m_loop) return;
    m_loopTarget = m_loop->addTarget(*this);
    m_loop->startTimer(m_loopTarget, periodMs);
}

void CTimerQueued::stopTimer() {
    if (m_gate) CSharedTimerQueue::cancel(m_queueTimer);
    m_gate = {};
    if (m_loop) m_loop->removeTarget(m_loopTarget);
    m_loop.reset();
    m_isTimerActive = false;
}

// The tick may release this object, or start its timer anew.
CError* CTimerQueued::onSysTick() {
    const CRef<CTickGate> gate = m_gate;
    if (!gate || !gate->isAwaited()) return nullptr;
    const double begin = secondsSinceOrigin();
    CError* const error = runEvent("tick");
    gate->setHandled(secondsSinceOrigin() - begin);
    return error;
}

CError* CTimerQueued::onTick() { return fireEvent("tick"); }

void CTimerQueued::handleTimer(LoopTimerId) {
    CError* const error = runEvent("tick");
    logError(error);
    discardError(error);  // logged: a tick has no caller
}

}  // namespace brt
