// SPDX-License-Identifier: LicenseRef-Halyard
// The arguments of one event on their way to its listeners, and the names of those that the system sets.
// Owner: counted. Threads: one at a time, since reading a value may convert it; who sends them to another thread keeps
// no reference.
#pragma once

#include "Core/CAttrValue.h"
#include "Core/CCounted.h"

namespace brt {

namespace eventArg {
constexpr CStringView kSender = "sender";               // full name of the object that fired or posted
constexpr CStringView kSenderId = "sender-id";          // its id, where the receiver must not take another for it
constexpr CStringView kEventName = "event-name";        // of a fired event
constexpr CStringView kListener = "listener";           // full name of the object that receives it
constexpr CStringView kListenerId = "listener-id";      // its id
constexpr CStringView kListenerProc = "listener-proc";  // the event handler that it runs
}  // namespace eventArg

class CEventArgs final : public CCounted {
public:
    // A copy of the values.
    explicit CEventArgs(const CAttrMap& source) {
        for (const auto& [name, value] : source) m_values.findOrInsert(name) = value;
    }

    const CAttrMap& values() const noexcept { return m_values; }

    void setText(CStringView name, CStringView text) { m_values.findOrInsert(name).setRawText(text); }
    void setInteger(CStringView name, int number) { m_values.findOrInsert(name).setInteger(number); }

    // The text of an argument; "" if it is missing.
    CStringView text(CStringView name) const {
        const CAttrValue* const value = m_values.find(name);
        return value != nullptr ? value->asString() : CStringView();
    }

private:
    CAttrMap m_values;
};

}  // namespace brt
