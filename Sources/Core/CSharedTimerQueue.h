// SPDX-License-Identifier: LicenseRef-Halyard
// The one timer queue of the process, for the timers of all instances. Its thread runs from the first timer that starts
// until the last user goes, or the process's threads are stopped.
// Threads: any. Callbacks and what they call don't use it.
#pragma once

#include "Platform/CTimerQueue.h"

namespace brt {

class CSharedTimerQueue {
public:
    // One user more, or one less. The last one waits for the queue's thread.
    static void addUser();
    static void removeUser();

    // Calls `callback(context)` at once and then each period, on the queue's thread. Returns the system's error code;
    // then `id` is unchanged. REQUIRES: called by a user.
    [[nodiscard]] static int add(CTimerQueue::TimerId& id, CTimerQueue::Callback callback, void* context, int periodMs);

    // No call of that timer runs when this returns, unless it is called by one. REQUIRES: called by a user that holds
    // no lock which the callback takes.
    static void cancel(CTimerQueue::TimerId id);
};

}  // namespace brt
