// SPDX-License-Identifier: LicenseRef-Halyard
// The process-wide pool of sleeping threads. It starts empty, grows as sections ask, and keeps what it has made until
// the last instance goes. CParallelSection is the way to use it.
// Threads: any.
#pragma once

#include "Core/CPersistentThread.h"
#include "Core/CSmallArray.h"

namespace brt {

class CWorkerPool {
public:
    CWorkerPool() = delete;

    // [any] A thread that holds the task and isn't started yet: the one released last, or a new one. Null if the system
    // gives no more threads, which is logged; the caller then does with fewer. Takes the task in either case.
    [[nodiscard]] static CPersistentThread* acquireWorker(CWorkerThread* task);

    // [any] Deletes the tasks, takes the threads back and empties the list. REQUIRES: none is busy.
    static void releaseWorkers(CSmallArray<CPersistentThread*>& workers);

    // [any] Joins and deletes all threads that are not in use. Called when the last instance goes.
    static void stop();
};

}  // namespace brt
