// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CWorkerPool.h"

#include <memory>
#include <utility>

#include "Core/CProcess.h"

namespace brt {

namespace {

constinit CCriticalSection s_lock{500};
constinit CPersistentThread* s_idle BRT_GUARDED_BY(s_lock) = nullptr;  // the one released last is the first

CPersistentThread* makeWorker() {
    auto worker = std::make_unique<CPersistentThread>("worker-thread");
    if (CError* const error = worker->runThread(false)) {
        logError(error);
        discardError(error);  // logged: the section runs with fewer helpers
        return nullptr;
    }
    return worker.release();
}

}  // namespace

CPersistentThread* CWorkerPool::acquireWorker(CWorkerThread* task) {
    CPersistentThread* worker = nullptr;
    {
        const CLock lock(s_lock);
        worker = s_idle;
        if (worker != nullptr) s_idle = std::exchange(worker->m_next, nullptr);
    }
    if (worker == nullptr) worker = makeWorker();
    if (worker == nullptr) {
        delete task;
        return nullptr;
    }
    worker->setTask(task);
    return worker;
}

void CWorkerPool::releaseWorkers(CSmallArray<CPersistentThread*>& workers) {
    for (CPersistentThread* worker : workers) worker->setTask(nullptr);
    if (workers.isEmpty()) return;
    {
        const CLock lock(s_lock);
        for (CPersistentThread* worker : workers) worker->m_next = std::exchange(s_idle, worker);
    }
    workers.clear();
    // Here and not where they are made: a stop may have come and gone while they were in use.
    registerProcessStop(ProcessStage::workerPool, &CWorkerPool::stop);
}

void CWorkerPool::stop() {
    CPersistentThread* idle = nullptr;
    {
        const CLock lock(s_lock);
        idle = std::exchange(s_idle, nullptr);
    }
    delete idle;  // and with it all behind it
}

}  // namespace brt
