// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CThread.h"

#include "Core/COrderedMap.h"
#include "Core/CProcess.h"
#include "Platform/CCriticalSection.h"

namespace brt {

namespace {

// Names of the threads that run, by their ids. Made with the first and deleted with the last, so nothing is left to
// release at the end of the process.
using NameMap = COrderedMap<std::uint32_t, CString>;
constinit CCriticalSection s_namesLock{500};
constinit NameMap* s_names BRT_GUARDED_BY(s_namesLock) = nullptr;

void addName(std::uint32_t threadId, const CString& name) {
    const CLock lock(s_namesLock);
    if (s_names == nullptr) s_names = new NameMap;
    s_names->findOrInsert(threadId) = name;
}

void removeName(std::uint32_t threadId) {
    const CLock lock(s_namesLock);
    if (s_names == nullptr) return;
    s_names->erase(threadId);
    if (!s_names->isEmpty()) return;
    delete s_names;
    s_names = nullptr;
}

}  // namespace

CThread::CThread(CStringView name) : m_name(name) {}

CThread::~CThread() { BRT_ASSERT(!isRunning()); }

CError* CThread::runThread(bool isHighPriority) {
    if (isRunning()) {
        if (!m_hasReturned.load(std::memory_order_acquire))
            return makeError(nullptr, __FILE__, __LINE__, m_name,
                             "@brtstr_CThread_runThread_AlreadyRunning Thread is already running.");
        join();
    }
    m_isStopRequested.store(false, std::memory_order_release);
    m_hasReturned.store(false, std::memory_order_release);
    m_wakeEvent.waitFor(0.0);  // what an earlier stop left behind would pass for a wake of this run
    m_isRunning.store(true, std::memory_order_release);

    const std::string systemName = m_name.toUtf8();
    const ThreadOptions options{.name = systemName.c_str(), .isTimeCritical = isHighPriority};
    if (const int code = m_thread.start(&CThread::main, this, options)) {
        m_isRunning.store(false, std::memory_order_release);
        return makeError(nullptr, __FILE__, __LINE__, m_name,
                         "@brtstr_CThread_runThread_createThreadError Thread creation error %1.", code);
    }
    if (!m_name.isEmpty()) addName(m_thread.id(), m_name);
    return nullptr;
}

void CThread::main(void* self) {
    CThread& thread = *static_cast<CThread*>(self);
    CError* error = thread.run();
    if (error != nullptr) showError(error);
    thread.m_hasReturned.store(true, std::memory_order_release);
}

void CThread::stopThread() {
    if (!isRunning()) return;
    m_isStopRequested.store(true, std::memory_order_release);
    if (currentThreadId() == m_thread.id()) return;
    if (isForkedChild()) {
        m_thread.abandon();
        m_isRunning.store(false, std::memory_order_release);
        return;
    }
    m_wakeEvent.signal();
    join();
}

void CThread::join() {
    m_thread.join();
    removeName(m_thread.id());
    m_isRunning.store(false, std::memory_order_release);
}

bool CThread::findName(std::uint32_t threadId, CString& name) {
    const CLock lock(s_namesLock);
    const CString* const found = s_names != nullptr ? s_names->find(threadId) : nullptr;
    if (found != nullptr) name = *found;
    return found != nullptr;
}

}  // namespace brt
