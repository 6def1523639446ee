// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CSharedTimerQueue.h"

#include "Core/CProcess.h"

namespace brt {
namespace {

constinit CCriticalSection s_lock{500};
constinit int s_users BRT_GUARDED_BY(s_lock) = 0;
// Made when the first timer starts, gone with the last user. Stopped with the process's threads; timers that are left
// then never tick again, and the queue starts anew for new ones.
constinit CTimerQueue* s_queue BRT_GUARDED_BY(s_lock) = nullptr;
constinit bool s_isRunning BRT_GUARDED_BY(s_lock) = false;

// Joins the thread under the lock, which so keeps others from starting it again meanwhile; callbacks never take it.
void stopQueue() BRT_REQUIRES(s_lock) {
    if (!s_isRunning) return;
    s_isRunning = false;
    if (isForkedChild())
        s_queue->abandon();
    else
        s_queue->stop();
}

void stop() {
    const CLock lock(s_lock);
    stopQueue();
}

}  // namespace

void CSharedTimerQueue::addUser() {
    const CLock lock(s_lock);
    ++s_users;
}

void CSharedTimerQueue::removeUser() {
    const CLock lock(s_lock);
    if (--s_users > 0 || s_queue == nullptr) return;
    stopQueue();
    delete s_queue;
    s_queue = nullptr;
}

int CSharedTimerQueue::add(CTimerQueue::TimerId& id, CTimerQueue::Callback callback, void* context, int periodMs) {
    registerProcessStop(ProcessStage::timerQueue, &stop);
    const CLock lock(s_lock);
    if (s_queue == nullptr) s_queue = new CTimerQueue;
    if (!s_isRunning)
        if (const int error = s_queue->start()) return error;
    s_isRunning = true;
    id = s_queue->add(callback, context, 0, periodMs);
    return 0;
}

// Waits for the callback without the lock: the timers of other instances don't wait along. The queue stays as long as
// the caller is a user.
void CSharedTimerQueue::cancel(CTimerQueue::TimerId id) {
    CTimerQueue* queue = nullptr;
    {
        const CLock lock(s_lock);
        queue = s_queue;
    }
    if (queue != nullptr) queue->cancel(id);
}

}  // namespace brt
