// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CParallelSection.h"

#include "Core/CWorkerPool.h"
#include "Core/TimeBase.h"

namespace brt {

CParallelSection::~CParallelSection() {
    CError* const error = finish();
    logError(error);
    discardError(error);  // logged: its owner left the section early
}

void CParallelSection::addTask(CWorkerThread* task) {
    BRT_ASSERT(!m_isStarted);
    if (CPersistentThread* const helper = CWorkerPool::acquireWorker(task)) m_helpers.append(helper);
}

void CParallelSection::start() {
    BRT_ASSERT(!m_isStarted);
    m_isStarted = true;
    for (CPersistentThread* helper : m_helpers) helper->startTask();
}

CError* CParallelSection::finish(CError* ownError) {
    if (m_isStarted) waitForHelpers();
    CError* first = ownError;
    for (CPersistentThread* helper : m_helpers) {
        CError* const error = helper->task()->takeResult();
        if (first == nullptr) {
            first = error;
        } else {
            logError(error);
            discardError(error);  // logged: one error is enough for the caller
        }
    }
    CWorkerPool::releaseWorkers(m_helpers);
    m_isStarted = false;
    return first;
}

// Sections take a few milliseconds and their parts end close to each other, so a moment of yielding mostly saves the
// sleep. Only a moment: a caller of real-time priority would otherwise keep the helper from the processor that it waits
// for.
void CParallelSection::waitForHelpers() {
    constexpr double kYieldSeconds = 0.001;
    const double end = secondsSinceOrigin() + kYieldSeconds;
    for (const CPersistentThread* helper : m_helpers)
        while (helper->isBusy() && secondsSinceOrigin() < end) yieldThread();
    for (CPersistentThread* helper : m_helpers) helper->waitUntilIdle();
}

}  // namespace brt
