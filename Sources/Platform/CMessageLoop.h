// SPDX-License-Identifier: LicenseRef-Halyard
// The message loop of one thread: posted messages in order, timers, and event sources such as a display connection.
//
// It belongs to the thread that made it and never runs by itself: that thread calls `run`, or `pump` when a host lends
// it a moment. A thread has at most one; all windows and bridges on it share it and keep it alive together. Other
// threads reach it by `CLoopAddress` alone.
//
// One round handles the messages that were there at its start, then what the event sources have, then each timer that
// is due, once. No lock is held in a handler. After a handler has returned, the loop looks up anew what it needs.
//
// Owners: everything that is registered with it, or runs it, by shared pointers. Threads: its own, but for what is
// tagged otherwise. A host that closes on another thread than it opened may take things out, and let go of the loop,
// there, as long as the loop's own thread is not inside it.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <vector>

#include "Platform/CEventSource.h"
#include "Platform/CLoopAddress.h"
#include "Platform/CLoopClock.h"
#include "Platform/CLoopTarget.h"

namespace brt {

struct LoopMessage;
struct LoopWatch;

struct LoopOptions {
    CLoopClock* clock = nullptr;  // not owned; null for the system's
};

class CMessageLoop : public std::enable_shared_from_this<CMessageLoop> {
public:
    // [any] The calling thread's loop; null if it has none.
    [[nodiscard]] static std::shared_ptr<CMessageLoop> current();

    // [any] The calling thread's loop, made with these options if it has none. Returns the system's error code; then
    // `loop` is unchanged.
    [[nodiscard]] static int obtain(std::shared_ptr<CMessageLoop>& loop, const LoopOptions& options = {});

    ~CMessageLoop();
    CMessageLoop(const CMessageLoop&) = delete;
    CMessageLoop& operator=(const CMessageLoop&) = delete;

    // [any] True on the thread that made the loop.
    [[nodiscard]] bool isOnItsThread() const noexcept;

    // [any] What the loop's timers go by.
    [[nodiscard]] CLoopClock& clock() const noexcept { return m_clock; }

    // [any] For `wake` and `quit` only, as it names no target.
    [[nodiscard]] CLoopAddress address() const { return addressOf(LoopTargetId::none); }

    // Targets. `target` is not owned; take it out before it goes. Its timers and the messages that wait for it go with
    // it, and a modal loop of it ends.
    [[nodiscard]] LoopTargetId addTarget(CLoopTarget& target);
    void removeTarget(LoopTargetId id);

    // [any]
    [[nodiscard]] CLoopAddress addressOf(LoopTargetId id) const { return {m_mailbox, id}; }

    // Calls the target's `handleTimer` every so many milliseconds (at least 1), for the first time after one period.
    // A tick that comes late leaves the later ones where they were; those that were missed are not made up for.
    // An unknown target gives an id that never fires.
    LoopTimerId startTimer(LoopTargetId target, int periodMilliseconds);
    void stopTimer(LoopTimerId id);

    // Event sources. `source` is not owned; take it out before it goes.
    LoopSourceId addSource(CEventSource& source);
    void removeSource(LoopSourceId id);

    // Round after round until `quit`; sleeps while there is nothing to do. Returns the system's error code:
    // `kErrorWouldDeadlock` inside a handler of this loop, `kErrorWrongThread` on another thread.
    [[nodiscard]] int run();

    // [any] Ends `run` after the handler that runs now, and all modal loops in it; what waits stays for the next run.
    // If nothing runs it ends the next one at once, so that a thread can be told to end before it gets there.
    void quit() { address().quit(); }

    // One round, without waiting. True if a handler was called. Inside a handler of this loop, as when a host calls
    // idle while we ask it something, and on another thread, it does nothing.
    bool pump();

    // Rounds for that target alone until `endModal`, its removal, or `quit`: messages, timers and events of others wait
    // their turn. May be called in a handler, also of another modal loop. Returns the system's error code,
    // `kErrorWrongThread` on another thread.
    [[nodiscard]] int runModal(LoopTargetId only);

    // Ends the modal loop of that target when the handler that runs now, and any modal loop begun in it, is done.
    void endModal(LoopTargetId only);

private:
    enum class Waiting { forbidden, allowed };

    // A call of `run`, `pump` or `runModal` that is under way. They nest: the innermost one dispatches.
    struct Frame {
        LoopTargetId only;
        bool endsAtQuit;
        bool isEnded = false;
    };
    struct Timer {
        LoopTimerId id;
        LoopTargetId target;
        std::int64_t due;     // nanoseconds of the clock
        std::int64_t period;  // nanoseconds
    };
    struct Source {
        LoopSourceId id;
        CEventSource* source;  // not owned
    };

    explicit CMessageLoop(CLoopClock& clock);

    [[nodiscard]] int runRounds(LoopTargetId only);
    [[nodiscard]] int round(const Frame& frame, Waiting waiting, bool& wasBusy);
    std::vector<LoopWatch> prepareSources(LoopTargetId only);
    bool goesOn(const Frame& frame) const;
    bool dispatchMessages(const Frame& frame);
    bool dispatchSources(const Frame& frame, const std::vector<LoopWatch>& watches);
    bool dispatchTimers(const Frame& frame);
    std::int64_t timeToSleep(LoopTargetId only, const std::vector<LoopWatch>& watches) const;
    std::deque<LoopMessage>::const_iterator nextMessage(LoopTargetId only) const;
    const Timer* nextTimer(LoopTargetId only) const;
    CLoopTarget* findTarget(LoopTargetId id) const;
    CEventSource* findSource(LoopSourceId id) const;

    CLoopClock& m_clock;  // not owned
    const std::shared_ptr<CLoopMailbox> m_mailbox;
    const std::uint32_t m_thread;
    std::deque<LoopMessage> m_collected;             // from the mailbox; each with a target that is registered
    std::map<LoopTargetId, CLoopTarget*> m_targets;  // not owned
    std::vector<Timer> m_timers;
    std::vector<Source> m_sources;
    std::uint64_t m_lastTimer = 0;
    std::uint64_t m_lastSource = 0;
    std::deque<Frame> m_frames;      // innermost last; empty outside. A deque: each stays where it is
    CMessageLoop* m_next = nullptr;  // in the list of all loops, under its lock
};

}  // namespace brt
