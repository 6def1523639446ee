// SPDX-License-Identifier: LicenseRef-Halyard
// A thread of the framework: derive, write `run`, start it.
//
// States: idle, then running from `runThread` until it has been joined, also while `run` has returned already. Joining
// is done by `stopThread`, or by the next `runThread` of a thread whose `run` has returned.
// Owner: the object that made it; `runThread` and `stopThread` belong to the owner's thread. The most derived class
// calls `stopThread` in its destructor: afterwards the members that `run` uses are gone.
#pragma once

#include <atomic>
#include <cstdint>

#include "Core/CBrtMemAllocator.h"
#include "Core/CCheckedObject.h"
#include "Core/CError.h"
#include "Core/CString.h"
#include "Platform/CAutoResetEvent.h"
#include "Platform/CNativeThread.h"

namespace brt {

class CThread : public CCheckedObject, public CBrtMemAllocator {
public:
    // Doesn't start yet. The name may be empty.
    explicit CThread(CStringView name);
    ~CThread() override;  // REQUIRES: stopped

    // Starts `run` on a new thread. Fails while an earlier `run` is under way, which isn't disturbed.
    // `isHighPriority` asks for the system's time-critical priority; everything here runs at the normal one.
    [[nodiscard]] CError* runThread(bool isHighPriority = false);

    // Asks `run` to end, wakes it, and waits for it without a limit; returns at once if it isn't running. Called on the
    // thread itself it only asks. In a child that the process forked, where the thread doesn't exist, nothing is waited
    // for.
    void stopThread();

    // [any] From a successful `runThread` until the join.
    bool isRunning() const noexcept { return m_isRunning.load(std::memory_order_acquire); }

    // [any] A `run` looks at this whenever it wakes, and at least every few milliseconds.
    bool isStopRequested() const noexcept { return m_isStopRequested.load(std::memory_order_acquire); }

    // [any] The id that `currentThreadId` gives on the latest thread; 0 before the first.
    std::uint32_t threadId() const noexcept { return m_thread.id(); }

    const CString& name() const noexcept { return m_name; }

    // [any] Sets `name` to that of the running thread of that id; false if none is known, with `name` unchanged.
    static bool findName(std::uint32_t threadId, CString& name);

protected:
    // On the new thread. An error is written to standard error, as a background thread has no caller to return it to.
    virtual CError* run() = 0;

    // [any] Lets `run` pass `waitForWake`; several calls before it waits count as one. A stop wakes it too.
    void wake() noexcept { m_wakeEvent.signal(); }
    void waitForWake() noexcept { m_wakeEvent.wait(); }

private:
    static void main(void* self);
    void join();

    CAutoResetEvent m_wakeEvent;
    CNativeThread m_thread;
    std::atomic<bool> m_isRunning{false};
    std::atomic<bool> m_hasReturned{false};
    std::atomic<bool> m_isStopRequested{false};
    const CString m_name;
};

}  // namespace brt
