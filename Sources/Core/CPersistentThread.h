// SPDX-License-Identifier: LicenseRef-Halyard
// A thread that sleeps between tasks: making a thread takes longer than a frame of the interface leaves time for.
//
// States: without a task, holding one, busy. `startTask` makes it busy, the end of the task makes it idle again.
// Owner: the pool, or during a parallel section its caller; one thread at a time calls the operations.
#pragma once

#include "Core/CThread.h"
#include "Core/CWorkerThread.h"
#include "Platform/CCriticalSection.h"

namespace brt {

class CPersistentThreadBase : public CThread {
public:
    using CThread::CThread;
    virtual void startTask() = 0;
};

class CPersistentThread final : public CPersistentThreadBase {
public:
    using CPersistentThreadBase::CPersistentThreadBase;

    // Stops, then deletes its task and every thread behind it in the list.
    ~CPersistentThread() override;

    // Takes the task, may be null, and deletes the one it had. REQUIRES: not busy.
    void setTask(CWorkerThread* task);
    CWorkerThread* task() const noexcept { return m_task; }

    // Runs the task once, on the thread. REQUIRES: running, with a task, not busy.
    void startTask() override;

    // [any]
    bool isBusy() const;

    // Sleeps until the thread is not busy.
    void waitUntilIdle();

private:
    friend class CWorkerPool;

    CError* run() override;
    void becomeIdle();

    CPersistentThread* m_next = nullptr;  // in the pool's list of idle threads; owned
    mutable CCriticalSection m_lock{50};
    bool m_isBusy BRT_GUARDED_BY(m_lock) = false;
    CAutoResetEvent m_idleEvent;  // up after each end of a task; may be left over from one that nobody waited for
    CWorkerThread* m_task = nullptr;
};

}  // namespace brt
