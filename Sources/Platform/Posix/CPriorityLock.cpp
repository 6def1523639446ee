// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/CPriorityLock.h"

#include <pthread.h>

#include <new>

namespace brt {
namespace {

pthread_mutex_t* nativeOf(std::byte* bytes) noexcept { return std::launder(reinterpret_cast<pthread_mutex_t*>(bytes)); }

}  // namespace

CPriorityLock::CPriorityLock() noexcept {
    static_assert(sizeof(pthread_mutex_t) <= sizeof m_native && alignof(pthread_mutex_t) <= 16);
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    // A system that can't inherit priorities still locks.
    pthread_mutexattr_setprotocol(&attributes, PTHREAD_PRIO_INHERIT);
    pthread_mutex_init(new (m_native) pthread_mutex_t, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

CPriorityLock::~CPriorityLock() { pthread_mutex_destroy(nativeOf(m_native)); }

void CPriorityLock::enter() noexcept BRT_NO_THREAD_SAFETY_ANALYSIS { pthread_mutex_lock(nativeOf(m_native)); }

void CPriorityLock::leave() noexcept BRT_NO_THREAD_SAFETY_ANALYSIS { pthread_mutex_unlock(nativeOf(m_native)); }

}  // namespace brt
