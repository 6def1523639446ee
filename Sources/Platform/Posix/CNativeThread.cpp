// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/CNativeThread.h"

#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <time.h>

#include <atomic>
#include <cerrno>
#include <cstring>

#include "Platform/Annotations.h"
#include "Platform/Posix/FloatingPoint_p.h"
#include "Platform/Posix/Time_p.h"

namespace brt {

static_assert(sizeof(pthread_t) <= sizeof(std::uintptr_t));

namespace {

constinit std::atomic<std::uint32_t> g_lastThreadId{0};

// In the block that exists from the thread's start on: data of a loaded module is otherwise allocated at first use,
// and this is read on the audio thread.
[[gnu::tls_model("initial-exec")]] constinit thread_local std::uint32_t t_threadId = 0;

std::uint32_t newThreadId() noexcept { return g_lastThreadId.fetch_add(1, std::memory_order_relaxed) + 1; }

// Signals that a fault of the thread itself raises stay deliverable: blocking them only hides where a program failed.
sigset_t asynchronousSignals() noexcept {
    sigset_t set;
    sigfillset(&set);
    for (int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGSYS}) sigdelset(&set, signal);
    return set;
}

int initAttributes(pthread_attr_t& attributes) noexcept {
    if (const int error = pthread_attr_init(&attributes)) return error;
    const sched_param ordinary{};
    pthread_attr_setinheritsched(&attributes, PTHREAD_EXPLICIT_SCHED);
    pthread_attr_setschedpolicy(&attributes, SCHED_OTHER);
    pthread_attr_setschedparam(&attributes, &ordinary);
    return 0;
}

void makeTimeCritical(pthread_t thread) noexcept {
    sched_param parameters{};
    parameters.sched_priority = (sched_get_priority_min(SCHED_RR) + sched_get_priority_max(SCHED_RR)) / 2;
    pthread_setschedparam(thread, SCHED_RR, &parameters);
}

}  // namespace

// Runs on the new thread. It reads only what was written before its start.
void* CNativeThread::main(void* self) {
    const auto& thread = *static_cast<const CNativeThread*>(self);
    t_threadId = thread.m_id;
    setDefaultFloatingPoint();
    if (thread.m_name[0] != 0) pthread_setname_np(pthread_self(), thread.m_name);
    thread.m_entry(thread.m_context);
    return nullptr;
}

int CNativeThread::start(Entry entry, void* context, const ThreadOptions& options) {
    BRT_ASSERT(!m_isStarted);
    pthread_attr_t attributes;
    if (const int error = initAttributes(attributes)) return error;

    m_entry = entry;
    m_context = context;
    m_id = newThreadId();
    std::strncpy(m_name, options.name, sizeof m_name - 1);

    // A new thread inherits its creator's mask: set here, it holds from the first instruction on.
    const sigset_t blocked = asynchronousSignals();
    sigset_t before;
    pthread_sigmask(SIG_BLOCK, &blocked, &before);
    pthread_t thread{};
    const int error = pthread_create(&thread, &attributes, &CNativeThread::main, this);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    pthread_attr_destroy(&attributes);
    if (error != 0) return error;

    if (options.isTimeCritical) makeTimeCritical(thread);
    m_handle = static_cast<std::uintptr_t>(thread);
    m_isStarted = true;
    return 0;
}

void CNativeThread::join() noexcept {
    if (!m_isStarted) return;
    BRT_ASSERT(currentThreadId() != m_id);
    pthread_join(static_cast<pthread_t>(m_handle), nullptr);
    m_isStarted = false;
}

std::uint32_t currentThreadId() noexcept {
    if (t_threadId == 0) t_threadId = newThreadId();
    return t_threadId;
}

void yieldThread() noexcept { sched_yield(); }

void sleepSeconds(double seconds) noexcept {
    if (!(seconds > 0.0)) return;
    const timespec deadline = monotonicDeadline(seconds);
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &deadline, nullptr) == EINTR) {
    }
}

}  // namespace brt
