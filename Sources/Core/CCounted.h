// SPDX-License-Identifier: LicenseRef-Halyard
// Objects that several owners share by a count: a document and the templates that stand in it, an address that outlives
// the object it names. The last reference that goes deletes the object.
//
// Threads: references to one object may be taken and dropped on any threads at once; one `CRef` variable belongs to one
// thread at a time. What the object holds is immutable after construction, or has a lock of its own.
#pragma once

#include <atomic>
#include <utility>

#include "Core/CBrtMemAllocator.h"

namespace brt {

// The base of a counted class. Derived classes are made by `CRef<T>::make` only and have a protected or private
// destructor where they can.
class CCounted : public CBrtMemAllocator {
public:
    CCounted(const CCounted&) = delete;
    CCounted& operator=(const CCounted&) = delete;

protected:
    CCounted() = default;
    ~CCounted() = default;

private:
    template <class T>
    friend class CRef;

    mutable std::atomic<int> m_references{0};
};

template <class T>
class CRef {
public:
    CRef() noexcept = default;
    explicit CRef(T* object) noexcept : m_object(object) { take(); }
    CRef(const CRef& other) noexcept : m_object(other.m_object) { take(); }
    CRef(CRef&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    ~CRef() { drop(); }

    CRef& operator=(CRef other) noexcept {
        std::swap(m_object, other.m_object);
        return *this;
    }

    T* get() const noexcept { return m_object; }
    T* operator->() const noexcept { return m_object; }
    T& operator*() const noexcept { return *m_object; }
    explicit operator bool() const noexcept { return m_object != nullptr; }

private:
    void take() noexcept {
        if (m_object) m_object->m_references.fetch_add(1, std::memory_order_relaxed);
    }

    // Whoever deletes must see what the other owners did to the object before they let go.
    void drop() noexcept {
        if (m_object && m_object->m_references.fetch_sub(1, std::memory_order_acq_rel) == 1) delete m_object;
    }

    T* m_object = nullptr;
};

}  // namespace brt
