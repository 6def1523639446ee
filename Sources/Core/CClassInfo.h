// SPDX-License-Identifier: LicenseRef-Halyard
// What the class behind one document tag says about its attributes and events: the handlers that run them, and the
// schema that documents are compiled against. Filled by the class's `describeClass` (CAttrInfo.h shows one), which
// begins with that of its base class; a row of a derived class replaces the base's of the same name.
//
// Owner: the creator registry. Threads: filled during start-up, only read afterwards.
#pragma once

#include <cstddef>

#include "Core/CAttrInfo.h"
#include "Core/CSmallArray.h"

namespace brt {

class CClassInfo : public CBrtMemAllocator {
public:
    // [init] The rows are constants and stay where they are.
    template <std::size_t kCount>
    void addAttributes(const CAttrInfo (&rows)[kCount]) {
        for (const CAttrInfo& row : rows) add(m_attributes, &row);
    }
    // [init] Objects of a class with events must have a name, since events find them by it.
    template <std::size_t kCount>
    void addEvents(const CEventInfo (&rows)[kCount]) {
        for (const CEventInfo& row : rows) add(m_events, &row);
        m_isNamed = true;
    }
    // [init] For classes that post to themselves without an event of their own.
    void requireName() noexcept { m_isNamed = true; }
    // [init] Not for derived classes: elements of this tag may have any attribute.
    void acceptAnyAttribute() noexcept { m_isOpen = true; }
    // [init] The events that all objects have; they ask for no name.
    void addCommonEvent(const CEventInfo& row) { add(m_events, &row); }

    // [any] Null if there is none. A numbered row answers for its name followed by a number too.
    const CAttrInfo* findAttribute(CStringView name) const noexcept;
    const CEventInfo* findEvent(CStringView name) const noexcept;

    // [any] The rows by name, in ascending order.
    const CSmallArray<const CAttrInfo*>& attributes() const noexcept { return m_attributes; }
    const CSmallArray<const CEventInfo*>& events() const noexcept { return m_events; }
    bool isNameRequired() const noexcept { return m_isNamed; }
    bool isAnyAttributeAccepted() const noexcept { return m_isOpen; }

private:
    template <class Row>
    static void add(CSmallArray<const Row*>& rows, const Row* row);

    CSmallArray<const CAttrInfo*> m_attributes;  // sorted by name
    CSmallArray<const CEventInfo*> m_events;     // sorted by name
    bool m_isNamed = false;
    bool m_isOpen = false;
};

}  // namespace brt
