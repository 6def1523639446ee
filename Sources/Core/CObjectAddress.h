// SPDX-License-Identifier: LicenseRef-Halyard
// How other threads reach an object: what they need of it, taken on the object's own thread, and never changed. Whoever
// starts something that goes on elsewhere, as a timer or a listener, hands it the address; nothing off the tree's
// thread reads an object.
//
// Owner: counted; it outlives the object, and then leads nowhere: neither does it reach a newcomer of the same name,
// whose id differs. Threads: any.
#pragma once

#include "Core/CObjectEventBridge.h"

namespace brt {

class CEventRegistry;

class CObjectAddress final : public CCounted {
public:
    // `events` and `bridge` may be null.
    CObjectAddress(CRef<CEventRegistry> events, CRef<CObjectEventBridge> bridge, CStringView fullName, int id);
    ~CObjectAddress();

    const CString& fullName() const noexcept { return m_fullName; }
    int id() const noexcept { return m_id; }

    // [any] The nearest bridge at or above the object; null if there is none.
    CObjectEventBridge* bridge() const noexcept { return m_bridge.get(); }

    // [any] Runs an event handler of the object later, on its bridge's thread, with a copy of the arguments. Without a
    // bridge, or once the object has gone, nothing happens. If the thread can't be reached, the error is shown on the
    // thread of a message loop, which can wait for the user, and logged on any other.
    void post(CStringView sender, CStringView handlerName, const CAttrMap& args = {}) const;

    // [any] The same with arguments that the caller gives away, and the error to the caller. REQUIRES: a bridge.
    [[nodiscard]] CError* send(CRef<CEventArgs> args, CStringView handlerName) const;

    // [any] Fires an event of the object, as `CObject::fireEvent` does on its thread.
    [[nodiscard]] CError* fire(CStringView eventName, const CAttrMap& args = {}) const;

private:
    const CRef<CEventRegistry> m_events;
    const CRef<CObjectEventBridge> m_bridge;
    const CString m_fullName;
    const int m_id;
};

// [any] For errors that have no caller to go to: shown on the thread of a message loop, else logged. Null is ignored.
void reportError(CError* error);

}  // namespace brt
