// SPDX-License-Identifier: LicenseRef-Halyard
// Tells listeners, by pointer and without text, that data has changed: parameters, stored settings, preset lists.
//
// Listeners attach under a key; `notify` tells those under the key of its data, on the calling thread, in the order in
// which they attached. No lock is held in their `update`. A listener that attaches meanwhile waits for the next time.
//
// Owner: whoever has the data. Threads: any for `notify`, also several at once. Nobody notifies, or attaches to, what
// is being destroyed; but an `update` may destroy the notifier that called it, and one that still runs on another
// thread is waited for. Locks: one of the process for who is attached where, then the notifier's own, both for a few
// instructions; waiting is done outside of them. `notify` takes the second alone, and allocates nothing.
#pragma once

#include <cstdint>

#include "Core/CCheckedObject.h"
#include "Core/COrderedMap.h"
#include "Core/CStringView.h"
#include "Platform/CCriticalSection.h"

namespace brt {

class CUpdateListener;

// What a notification carries; notifiers derive from it what else they tell.
struct CUpdateData {
    const void* sender = nullptr;  // who made the change, for listeners that leave out their own
    std::int64_t key = 0;          // whose listeners are told
};

// What a listener asks for when it attaches: a number, an object, or a name, as the notifier understands it.
struct CUpdateFilter {
    CUpdateFilter() = default;
    CUpdateFilter(std::int64_t filterNumber) : number(filterNumber) {}
    CUpdateFilter(const void* object) : number(static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(object))) {}
    CUpdateFilter(CStringView filterName) : name(filterName) {}

    std::int64_t number = 0;
    CStringView name = {};
};

class CUpdateNotifier : public CCheckedObject {
public:
    CUpdateNotifier() = default;
    ~CUpdateNotifier() override;

    // [any] The key that a listener of that filter attaches under.
    virtual std::int64_t mapKey(const CUpdateFilter& filter);

    // [any] Calls `update(data)` of each listener under the data's key; 0 without data.
    void notify(const CUpdateData* data = nullptr);

private:
    friend class CUpdateListener;

    struct CPass;
    struct CWaiter;
    using CListeners = COrderedMap<std::uint64_t, CUpdateListener*>;  // by the order of attaching

    std::uint64_t link(CUpdateListener& listener, std::int64_t key);
    bool unlink(const CUpdateListener& listener, std::int64_t key, std::uint64_t order, CWaiter& waiter);
    CUpdateListener* advance(CPass& pass);
    CUpdateListener* nextListener(CPass& pass) BRT_REQUIRES(m_lock);
    void removePass(const CPass& pass) BRT_REQUIRES(m_lock);
    static CWaiter* takeServed(CWaiter*& waiters, const CUpdateListener* listener);
    static void letGo(CWaiter* served);

    CCriticalSection m_lock;
    COrderedMap<std::int64_t, CListeners> m_listeners BRT_GUARDED_BY(m_lock);
    std::uint64_t m_lastOrder BRT_GUARDED_BY(m_lock) = 0;
    CPass* m_passes BRT_GUARDED_BY(m_lock) = nullptr;     // calls of `notify` that are under way
    CWaiter* m_waiters BRT_GUARDED_BY(m_lock) = nullptr;  // threads that wait for such a call, or for one `update`
    bool m_isEnding BRT_GUARDED_BY(m_lock) = false;
};

}  // namespace brt
