// SPDX-License-Identifier: LicenseRef-Halyard
// Tells, after a handler has run, whether the handler has released the object.
//     const CObjectWatch watch(*this);
//     BRT_TRY("", runHandler());
//     if (!watch.isAlive()) return nullptr;
// Owner: the stack; watches of one object end in the reverse order. Threads: the object's.
#pragma once

#include "Core/CObject.h"

namespace brt {

class CObjectWatch {
public:
    explicit CObjectWatch(CObject& object) noexcept;
    ~CObjectWatch();
    CObjectWatch(const CObjectWatch&) = delete;
    CObjectWatch& operator=(const CObjectWatch&) = delete;

    bool isAlive() const noexcept { return m_object != nullptr; }
    // "" once it has gone.
    CStringView fullName() const { return m_object != nullptr ? m_object->getFullName() : CStringView(); }

private:
    friend class CObject;

    CObject* m_object;
    CObjectWatch* const m_outer;
};

// A read-only object has no handler that could release it, and is not written to: many threads may be at it.
inline CObjectWatch::CObjectWatch(CObject& object) noexcept : m_object(&object), m_outer(object.m_watches) {
    if (!object.isReadOnly()) object.m_watches = this;
}

inline CObjectWatch::~CObjectWatch() {
    if (m_object != nullptr && m_object->m_watches == this) m_object->m_watches = m_outer;
}

}  // namespace brt
