// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CEventRegistry.h"

#include "Core/CError.h"
#include "Core/COwnedArray.h"
#include "Core/Log.h"

#include <utility>

namespace brt {

// One listener of one event. `handler` and `isActive` are under the registry's lock; the listener itself is touched on
// its own thread alone, as long as the subscription is active.
class CEventRegistry::CSubscription final : public CCounted {
public:
    CSubscription(CObject& listenerObject, CRef<CObjectAddress> listenerAddress)
        : listener(listenerObject), address(std::move(listenerAddress)) {}

    CObject& listener;
    const CRef<CObjectAddress> address;
    const CEventInfo* handler = nullptr;
    bool isActive = true;
};

// A handler that is to run on `thread`.
struct CEventRegistry::CCall : CBrtMemAllocator {
    CRef<CSubscription> subscription;
    const CEventInfo* handler;
    CRef<CEventArgs> args;
    std::uint32_t thread;

    CCall(CRef<CSubscription> aSubscription, CRef<CEventArgs> someArgs)
        : subscription(std::move(aSubscription)),
          handler(subscription->handler),
          args(std::move(someArgs)),
          thread(currentThreadId()) {}
};

struct CEventRegistry::CSender {
    COrderedMap<CString, CSubscriptions> events;
    COwnedArray<CCall> calls;  // that wait, in order
    int dispatches = 0;        // under way, on all threads

    // The first call that waits for the calling thread; null if there is none. Those without a listener go.
    std::unique_ptr<CCall> takeCall() {
        for (int i = 0; i < calls.count();) {
            if (!calls[i].subscription->isActive)
                calls.removeAt(i);
            else if (calls[i].thread == currentThreadId())
                return calls.take(i);
            else
                ++i;
        }
        return nullptr;
    }
};

CEventRegistry::CEventRegistry() = default;

CEventRegistry::~CEventRegistry() = default;

void CEventRegistry::subscribe(CStringView sender, CStringView eventName, CObject& listener,
                               const CRef<CObjectAddress>& address, const CEventInfo& handler) {
    const CLock lock(m_lock);
    CSubscriptions& listeners = m_senders.findOrInsert(sender).events.findOrInsert(eventName);
    CRef<CSubscription>& subscription = listeners.findOrInsert(address->id());
    if (!subscription) subscription = CRef<CSubscription>(new CSubscription(listener, address));
    subscription->handler = &handler;
}

void CEventRegistry::unsubscribe(CStringView sender, CStringView eventName, int listenerId) {
    const CLock lock(m_lock);
    const auto place = m_senders.locate(sender);
    if (!place) return;
    const auto event = place->value.events.locate(eventName);
    if (!event) return;
    const auto listener = event->value.locate(listenerId);
    if (!listener) return;
    listener->value->isActive = false;
    event->value.erase(listener);
    if (event->value.isEmpty()) place->value.events.erase(event);
    removeIfUnused(place);
}

void CEventRegistry::removeIfUnused(CSenders::iterator sender) {
    if (sender->value.events.isEmpty() && sender->value.dispatches == 0) m_senders.erase(sender);
}

CError* CEventRegistry::dispatch(CStringView senderName, CStringView eventName, const CAttrMap& args) {
    const CRef<CEventRegistry> keep(this);  // a handler may release the whole tree
    CSenders::iterator place;
    CError* error = nullptr;
    bool isEndless = false;
    int dropped = 0;
    {
        const CLock lock(m_lock);
        place = m_senders.locate(senderName);
        if (!place) return nullptr;
        isEndless = m_dispatches >= kMaxNesting;
        if (!isEndless) {
            CSender& sender = place->value;
            if (sender.dispatches == 0 && sender.calls.count() > kMaxLeftCalls) {
                dropped = sender.calls.count();
                sender.calls.clear();
            }
            ++sender.dispatches;
            ++m_dispatches;
            error = distribute(sender, senderName, eventName, args);
        }
    }
    if (isEndless) {
        logLine("Event '%s' was dropped: events fire each other without end. // %s", eventName, senderName);
        return nullptr;
    }
    if (dropped > 0) logLine("%i event calls that followed failed ones were dropped. // %s", dropped, senderName);
    if (error == nullptr) error = runCalls(place->value);
    const CLock lock(m_lock);
    --m_dispatches;
    --place->value.dispatches;
    removeIfUnused(place);
    return error;
}

// Queues the event for listeners on this thread, and gives it to the bridges of the others.
CError* CEventRegistry::distribute(CSender& sender, CStringView senderName, CStringView eventName,
                                   const CAttrMap& args) {
    CSubscriptions* const listeners = sender.events.find(eventName);
    if (listeners == nullptr) return nullptr;
    const CRef<CEventArgs> own(new CEventArgs(args));
    own->setText(eventArg::kSender, senderName);
    own->setText(eventArg::kEventName, eventName);
    for (auto& [id, subscription] : *listeners) {
        const CObjectAddress& address = *subscription->address;
        if (address.bridge() == nullptr) continue;
        if (address.bridge()->isOnItsThread()) {
            sender.calls.append(new CCall(subscription, own));
            continue;
        }
        BRT_TRY(senderName, address.send(CRef<CEventArgs>(new CEventArgs(own->values())), subscription->handler->name));
    }
    return nullptr;
}

CError* CEventRegistry::runCalls(CSender& sender) {
    while (true) {
        std::unique_ptr<CCall> call;
        {
            const CLock lock(m_lock);
            call = sender.takeCall();
        }
        if (call == nullptr) return nullptr;
        BRT_TRY(call->subscription->address->fullName(),
                call->handler->handler(call->subscription->listener, call->args->values()));
    }
}

int CEventRegistry::senderCount() const {
    const CLock lock(m_lock);
    return m_senders.count();
}

}  // namespace brt
