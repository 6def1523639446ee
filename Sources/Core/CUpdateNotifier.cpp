// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CUpdateNotifier.h"

#include "Core/CUpdateListener.h"
#include "Platform/CAutoResetEvent.h"
#include "Platform/CNativeThread.h"

#include <utility>

namespace brt {
namespace {

// Guards which notifier each listener of the process is attached to.
constinit CCriticalSection s_attachLock{500};

}  // namespace

// One call of `notify`, on the stack of its thread.
struct CUpdateNotifier::CPass {
    const std::int64_t key;
    const std::uint32_t thread = currentThreadId();
    bool isBegun = false;
    std::uint64_t end = 0;                  // orders above it attached later
    std::uint64_t order = 0;                // of the listener told last
    const CUpdateListener* busy = nullptr;  // whose `update` runs; perhaps gone, so only for comparison
    CPass* next = nullptr;

    // Once an `update` of the pass's own thread has destroyed the notifier: the first of this thread's passes, which
    // lie within each other, and there those who still wait for an `update` in one of them.
    CPass* outermost = nullptr;
    CWaiter* waiters = nullptr;
};

// A thread that waits for other threads' calls, on its stack.
struct CUpdateNotifier::CWaiter {
    const CUpdateListener* listener;  // for calls of its `update`; null: for passes
    int calls = 0;                    // not ended yet
    CWaiter* next = nullptr;
    CAutoResetEvent isServed{};
};

CUpdateNotifier::~CUpdateNotifier() {
    CWaiter waiter{.listener = nullptr};
    CPass* outermost = nullptr;
    bool mustWait = false;
    {
        const CLock attachLock(s_attachLock);
        const CLock lock(m_lock);
        m_isEnding = true;
        for (auto& [key, listeners] : m_listeners)
            for (auto& [order, listener] : listeners) listener->m_notifier = nullptr;
        m_listeners.clear();
        for (CPass* pass = m_passes; pass != nullptr; pass = pass->next) {
            if (pass->thread == currentThreadId())
                outermost = pass;
            else
                ++waiter.calls;
        }
        for (CPass* pass = m_passes; pass != nullptr; pass = pass->next)
            if (pass->thread == currentThreadId()) pass->outermost = outermost;
        mustWait = waiter.calls > 0;
        if (mustWait) waiter.next = std::exchange(m_waiters, &waiter);
    }
    if (mustWait) waiter.isServed.wait();
    const CLock lock(m_lock);
    if (outermost != nullptr) outermost->waiters = std::exchange(m_waiters, nullptr);
}

std::int64_t CUpdateNotifier::mapKey(const CUpdateFilter& filter) { return filter.number; }

void CUpdateNotifier::notify(const CUpdateData* data) {
    CPass pass{.key = data != nullptr ? data->key : 0};
    while (CUpdateListener* const listener = advance(pass)) {
        listener->update(data);
        if (pass.outermost != nullptr) return letGo(takeServed(pass.outermost->waiters, pass.busy));
    }
}

// Ends the `update` that ran, and gives the listener whose turn it is; null at the end of the pass.
CUpdateListener* CUpdateNotifier::advance(CPass& pass) {
    CWaiter* served = nullptr;
    CUpdateListener* next = nullptr;
    {
        const CLock lock(m_lock);
        if (!pass.isBegun) {
            pass.isBegun = true;
            pass.end = m_lastOrder;
            pass.next = std::exchange(m_passes, &pass);
        } else {
            served = takeServed(m_waiters, pass.busy);
        }
        next = m_isEnding ? nullptr : nextListener(pass);
        pass.busy = next;
        if (next == nullptr) {
            removePass(pass);
            if (CWaiter* const destroyer = takeServed(m_waiters, nullptr))
                destroyer->next = std::exchange(served, destroyer);
        }
    }
    letGo(served);  // not under the lock: who destroys the notifier takes it along
    return next;
}

CUpdateListener* CUpdateNotifier::nextListener(CPass& pass) {
    CListeners* const listeners = m_listeners.find(pass.key);
    if (listeners == nullptr) return nullptr;
    const auto place = listeners->upperBound(pass.order);
    if (!place || place->key > pass.end) return nullptr;
    pass.order = place->key;
    return place->value;
}

void CUpdateNotifier::removePass(const CPass& pass) {
    CPass** link = &m_passes;
    while (*link != &pass) link = &(*link)->next;
    *link = pass.next;
}

// Counts one call less for those who wait for calls of that listener; takes out and returns those for whom it was the
// last.
CUpdateNotifier::CWaiter* CUpdateNotifier::takeServed(CWaiter*& waiters, const CUpdateListener* listener) {
    CWaiter* served = nullptr;
    for (CWaiter** link = &waiters; *link != nullptr;) {
        CWaiter& waiter = **link;
        if (waiter.listener == listener && --waiter.calls == 0) {
            *link = waiter.next;
            waiter.next = std::exchange(served, &waiter);
        } else {
            link = &waiter.next;
        }
    }
    return served;
}

// Reads the link first: a waiter that is let go is gone.
void CUpdateNotifier::letGo(CWaiter* served) {
    while (served != nullptr) std::exchange(served, served->next)->isServed.signal();
}

std::uint64_t CUpdateNotifier::link(CUpdateListener& listener, std::int64_t key) {
    const CLock lock(m_lock);
    m_listeners.findOrInsert(key).findOrInsert(++m_lastOrder) = &listener;
    return m_lastOrder;
}

// True if other threads are inside its `update`: then `waiter` stands in the list. Nobody waits inside that `update`
// itself: two threads would wait for each other.
bool CUpdateNotifier::unlink(const CUpdateListener& listener, std::int64_t key, std::uint64_t order, CWaiter& waiter) {
    const CLock lock(m_lock);
    const auto listeners = m_listeners.locate(key);
    listeners->value.erase(order);
    if (listeners->value.isEmpty()) m_listeners.erase(listeners);
    for (const CPass* pass = m_passes; pass != nullptr; pass = pass->next) {
        if (pass->busy != &listener) continue;
        if (pass->thread == currentThreadId()) return false;
        ++waiter.calls;
    }
    if (waiter.calls == 0) return false;
    waiter.next = std::exchange(m_waiters, &waiter);
    return true;
}

CUpdateListener::~CUpdateListener() { BRT_ASSERT(m_notifier == nullptr); }

void CUpdateListener::attach(CUpdateNotifier* notifier, const CUpdateFilter& filter) {
    const std::int64_t key = notifier != nullptr ? notifier->mapKey(filter) : 0;
    CUpdateNotifier::CWaiter waiter{.listener = this};
    bool mustWait = false;
    {
        const CLock lock(s_attachLock);
        if (m_notifier != nullptr) mustWait = m_notifier->unlink(*this, m_key, m_order, waiter);
        m_notifier = notifier;
        m_key = key;
        if (notifier != nullptr) m_order = notifier->link(*this, key);
    }
    if (mustWait) waiter.isServed.wait();
}

}  // namespace brt
