// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/CMessageLoop.h"

#include <algorithm>
#include <utility>

#include "Platform/Annotations.h"
#include "Platform/CCriticalSection.h"
#include "Platform/CLoopMailbox_p.h"
#include "Platform/CNativeThread.h"
#include "Platform/SystemError.h"

namespace brt {

namespace {

constexpr std::int64_t kNanosecondsPerMillisecond = 1'000'000;

// All loops of the process. A thread finds its own here by its id, which is never used again, so nothing has to be
// tidied up on a thread that ends, nor on the loop's thread when the loop ends elsewhere.
constinit CCriticalSection g_loopsLock{50};
constinit CMessageLoop* g_firstLoop BRT_GUARDED_BY(g_loopsLock) = nullptr;

bool concerns(LoopTargetId only, LoopTargetId target) { return only == LoopTargetId::none || only == target; }

}  // namespace

std::shared_ptr<CMessageLoop> CMessageLoop::current() {
    const CLock lock(g_loopsLock);
    for (CMessageLoop* loop = g_firstLoop; loop != nullptr; loop = loop->m_next)
        if (loop->isOnItsThread())
            if (auto found = loop->weak_from_this().lock()) return found;
    return nullptr;
}

int CMessageLoop::obtain(std::shared_ptr<CMessageLoop>& loop, const LoopOptions& options) {
    if (auto found = current()) {
        loop = std::move(found);
        return 0;
    }
    CLoopClock& clock = options.clock != nullptr ? *options.clock : CSystemLoopClock::instance();
    std::shared_ptr<CMessageLoop> made(new CMessageLoop(clock));
    if (const int error = made->m_mailbox->open()) return error;
    loop = std::move(made);
    return 0;
}

CMessageLoop::CMessageLoop(CLoopClock& clock)
    : m_clock(clock), m_mailbox(std::make_shared<CLoopMailbox>()), m_thread(currentThreadId()) {
    m_clock.addLoop(address());
    const CLock lock(g_loopsLock);
    m_next = std::exchange(g_firstLoop, this);
}

CMessageLoop::~CMessageLoop() {
    {
        const CLock lock(g_loopsLock);
        CMessageLoop** link = &g_firstLoop;
        while (*link != this) link = &(*link)->m_next;
        *link = m_next;
    }
    m_clock.removeLoop(address());
    m_mailbox->close();
}

bool CMessageLoop::isOnItsThread() const noexcept { return currentThreadId() == m_thread; }

LoopTargetId CMessageLoop::addTarget(CLoopTarget& target) {
    const LoopTargetId id = m_mailbox->addTarget();
    m_targets.emplace(id, &target);
    return id;
}

void CMessageLoop::removeTarget(LoopTargetId id) {
    m_mailbox->removeTarget(id);
    m_targets.erase(id);
    m_mailbox->release(std::erase_if(m_collected, [id](const LoopMessage& waiting) { return waiting.target == id; }));
    std::erase_if(m_timers, [id](const Timer& timer) { return timer.target == id; });
    endModal(id);
}

LoopTimerId CMessageLoop::startTimer(LoopTargetId target, int periodMilliseconds) {
    const LoopTimerId id{++m_lastTimer};
    if (findTarget(target) == nullptr) return id;
    const std::int64_t period = std::max(periodMilliseconds, 1) * kNanosecondsPerMillisecond;
    m_timers.push_back({id, target, m_clock.now() + period, period});
    return id;
}

void CMessageLoop::stopTimer(LoopTimerId id) {
    std::erase_if(m_timers, [id](const Timer& timer) { return timer.id == id; });
}

LoopSourceId CMessageLoop::addSource(CEventSource& source) {
    const LoopSourceId id{++m_lastSource};
    m_sources.push_back({id, &source});
    return id;
}

void CMessageLoop::removeSource(LoopSourceId id) {
    std::erase_if(m_sources, [id](const Source& entry) { return entry.id == id; });
}

int CMessageLoop::run() {
    if (!isOnItsThread()) return kErrorWrongThread;
    if (!m_frames.empty()) return kErrorWouldDeadlock;
    const auto keep = shared_from_this();
    const int error = runRounds(LoopTargetId::none);
    if (error == 0) m_mailbox->takeQuit();
    return error;
}

int CMessageLoop::runModal(LoopTargetId only) {
    if (!isOnItsThread()) return kErrorWrongThread;
    if (findTarget(only) == nullptr) return 0;
    const auto keep = shared_from_this();
    return runRounds(only);
}

void CMessageLoop::endModal(LoopTargetId only) {
    if (only == LoopTargetId::none) return;
    for (Frame& frame : m_frames)
        if (frame.only == only) frame.isEnded = true;
}

bool CMessageLoop::pump() {
    if (!isOnItsThread() || !m_frames.empty()) return false;
    const auto keep = shared_from_this();
    const Frame& frame = m_frames.emplace_back(Frame{.only = LoopTargetId::none, .endsAtQuit = false});
    bool wasBusy = false;
    // A failure to look at descriptors has nobody to be told to here; messages and timers are served all the same.
    static_cast<void>(round(frame, Waiting::forbidden, wasBusy));
    m_frames.pop_back();
    return wasBusy;
}

int CMessageLoop::runRounds(LoopTargetId only) {
    const Frame& frame = m_frames.emplace_back(Frame{.only = only, .endsAtQuit = true});
    bool wasBusy = false;
    int error = 0;
    while (error == 0 && goesOn(frame)) error = round(frame, Waiting::allowed, wasBusy);
    m_frames.pop_back();
    return error;
}

bool CMessageLoop::goesOn(const Frame& frame) const {
    return !frame.isEnded && !(frame.endsAtQuit && m_mailbox->isQuitRequested());
}

int CMessageLoop::round(const Frame& frame, Waiting waiting, bool& wasBusy) {
    std::vector<LoopWatch> watches = prepareSources(frame.only);
    const std::int64_t nanoseconds = waiting == Waiting::allowed ? timeToSleep(frame.only, watches) : 0;
    const int error = m_mailbox->wait(watches, nanoseconds);
    m_mailbox->collect(m_collected);

    const bool hadMessages = dispatchMessages(frame);
    const bool hadEvents = dispatchSources(frame, watches);
    const bool hadTicks = dispatchTimers(frame);
    wasBusy = hadMessages || hadEvents || hadTicks;
    return error;
}

std::vector<LoopWatch> CMessageLoop::prepareSources(LoopTargetId only) {
    std::vector<LoopWatch> watches;
    watches.reserve(m_sources.size());
    for (const Source& entry : m_sources) {
        const bool isReady = entry.source->prepare(only);
        watches.push_back({entry.id, entry.source->descriptor(), isReady});
    }
    return watches;
}

std::int64_t CMessageLoop::timeToSleep(LoopTargetId only, const std::vector<LoopWatch>& watches) const {
    // A modal loop may have collected more than the round around it handles.
    if (nextMessage(only) != m_collected.end() || std::ranges::any_of(watches, &LoopWatch::isReady)) return 0;
    const Timer* const timer = nextTimer(only);
    if (timer == nullptr) return CLoopClock::kForever;
    const std::int64_t left = timer->due - m_clock.now();
    return left > 0 ? m_clock.sleepFor(left) : 0;
}

bool CMessageLoop::dispatchMessages(const Frame& frame) {
    if (m_collected.empty()) return false;
    const std::uint64_t last = m_collected.back().sequence;
    bool wasBusy = false;
    while (goesOn(frame)) {
        const auto next = nextMessage(frame.only);
        if (next == m_collected.end() || next->sequence > last) break;
        const LoopMessage message = *next;
        m_collected.erase(next);
        m_mailbox->release(1);
        wasBusy = true;
        findTarget(message.target)->handleMessage(message.message, message.number);
    }
    return wasBusy;
}

bool CMessageLoop::dispatchSources(const Frame& frame, const std::vector<LoopWatch>& watches) {
    bool wasBusy = false;
    for (const LoopWatch& watch : watches) {
        if (!watch.isReady || !goesOn(frame)) continue;
        CEventSource* const source = findSource(watch.source);
        if (source == nullptr) continue;
        wasBusy = true;
        source->dispatch(frame.only);
    }
    return wasBusy;
}

// Each timer fires at most once, as its next time is always later than the one time that all are compared with.
bool CMessageLoop::dispatchTimers(const Frame& frame) {
    const std::int64_t now = m_clock.now();
    bool wasBusy = false;
    while (goesOn(frame)) {
        const Timer* const next = nextTimer(frame.only);
        if (next == nullptr || next->due > now) break;
        Timer& timer = m_timers[static_cast<std::size_t>(next - m_timers.data())];
        timer.due += ((now - timer.due) / timer.period + 1) * timer.period;
        const LoopTimerId id = timer.id;
        wasBusy = true;
        findTarget(timer.target)->handleTimer(id);
    }
    return wasBusy;
}

const CMessageLoop::Timer* CMessageLoop::nextTimer(LoopTargetId only) const {
    const Timer* next = nullptr;
    for (const Timer& timer : m_timers)
        if (concerns(only, timer.target) && (next == nullptr || timer.due < next->due)) next = &timer;
    return next;
}

std::deque<LoopMessage>::const_iterator CMessageLoop::nextMessage(LoopTargetId only) const {
    if (only == LoopTargetId::none) return m_collected.begin();
    return std::ranges::find(m_collected, only, &LoopMessage::target);
}

CLoopTarget* CMessageLoop::findTarget(LoopTargetId id) const {
    const auto found = m_targets.find(id);
    return found != m_targets.end() ? found->second : nullptr;
}

CEventSource* CMessageLoop::findSource(LoopSourceId id) const {
    const auto found = std::ranges::find(m_sources, id, &Source::id);
    return found != m_sources.end() ? found->source : nullptr;
}

}  // namespace brt
