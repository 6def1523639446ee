// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CPersistentThread.h"

#include <utility>

namespace brt {

CPersistentThread::~CPersistentThread() {
    stopThread();
    delete m_task;
    // One after the other, and not each from within the one before: the list may be long.
    while (m_next != nullptr) {
        CPersistentThread* const next = m_next;
        m_next = std::exchange(next->m_next, nullptr);
        delete next;
    }
}

void CPersistentThread::setTask(CWorkerThread* task) {
    BRT_ASSERT(!isBusy());
    delete std::exchange(m_task, task);
}

void CPersistentThread::startTask() {
    BRT_ASSERT(isRunning() && m_task != nullptr);
    {
        const CLock lock(m_lock);
        BRT_ASSERT(!m_isBusy);
        m_isBusy = true;
    }
    wake();
}

bool CPersistentThread::isBusy() const {
    const CLock lock(m_lock);
    return m_isBusy;
}

void CPersistentThread::waitUntilIdle() {
    while (isBusy()) m_idleEvent.wait();
}

CError* CPersistentThread::run() {
    waitForWake();
    while (!isStopRequested()) {
        m_task->runAndKeepResult();
        becomeIdle();
        waitForWake();
    }
    becomeIdle();  // a start that came together with the stop isn't run, and nobody may wait for it
    return nullptr;
}

void CPersistentThread::becomeIdle() {
    {
        const CLock lock(m_lock);
        m_isBusy = false;
    }
    m_idleEvent.signal();
}

}  // namespace brt
