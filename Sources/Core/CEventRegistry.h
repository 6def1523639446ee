// SPDX-License-Identifier: LicenseRef-Halyard
// Who listens to which events of the objects of one tree, by the sender's full name; and the way of an event to them.
//
// A listener whose bridge belongs to the firing thread is called before `dispatch` returns; others get a message with
// their own copy of the arguments. Listeners come by their id, that is in the order in which they were made.
//
// Calls on the firing thread wait in a queue of their sender, each with a counted copy of its own event's arguments.
// They run with no lock held: a handler may subscribe, unsubscribe (which takes back calls that wait), release objects
// and fire again. An error ends the dispatch; what waits then runs with the sender's next event.
//
// Owner: counted; the tree's context, and the addresses of its objects. Threads: any.
// Lock: one, held also while an event is given to a bridge, never while a handler runs.
#pragma once

#include "Core/CAttrInfo.h"
#include "Core/CCounted.h"
#include "Core/CEventArgs.h"
#include "Core/CObjectAddress.h"
#include "Platform/CCriticalSection.h"

namespace brt {

class CEventRegistry final : public CCounted {
public:
    // Dispatches inside each other; beyond, events that fire each other are taken for an endless loop. It is counted
    // for the tree, since a circle may go through any number of senders, and each level takes its part of the stack.
    static constexpr int kMaxNesting = 200;
    // Calls left waiting by handlers' errors that a sender's next event still runs; more are dropped.
    static constexpr int kMaxLeftCalls = 1000;

    CEventRegistry();
    ~CEventRegistry();

    // `handler` runs for that event of that sender until the listener unsubscribes; it replaces an earlier one.
    // `address` is the listener's. On the listener's thread.
    void subscribe(CStringView sender, CStringView eventName, CObject& listener, const CRef<CObjectAddress>& address,
                   const CEventInfo& handler);
    void unsubscribe(CStringView sender, CStringView eventName, int listenerId);

    // [any] Sends an event to those who listen to it. Returns the first error of a bridge or of a handler.
    [[nodiscard]] CError* dispatch(CStringView sender, CStringView eventName, const CAttrMap& args);

    // [any] Senders that somebody listens to.
    int senderCount() const;

private:
    class CSubscription;
    struct CCall;
    struct CSender;
    using CSubscriptions = COrderedMap<int, CRef<CSubscription>>;  // by the listener's id
    using CSenders = COrderedMap<CString, CSender>;

    CError* distribute(CSender& sender, CStringView senderName, CStringView eventName, const CAttrMap& args)
        BRT_REQUIRES(m_lock);
    CError* runCalls(CSender& sender);
    void removeIfUnused(CSenders::iterator sender) BRT_REQUIRES(m_lock);

    mutable CCriticalSection m_lock{500};
    CSenders m_senders BRT_GUARDED_BY(m_lock);
    int m_dispatches BRT_GUARDED_BY(m_lock) = 0;  // under way, of all senders
};

}  // namespace brt
