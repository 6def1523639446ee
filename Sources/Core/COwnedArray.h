// SPDX-License-Identifier: LicenseRef-Halyard
// An array of objects that it owns: they are deleted with it, from the last to the first.
// Owner: the object that holds it as a member. Threads: those of its owner; not locked.
#pragma once

#include <memory>

#include "Core/CSmallArray.h"

namespace brt {

template <class T>
class COwnedArray {
public:
    COwnedArray() noexcept = default;
    ~COwnedArray() { clear(); }
    COwnedArray(const COwnedArray&) = delete;
    COwnedArray& operator=(const COwnedArray&) = delete;

    int count() const noexcept { return m_elements.count(); }
    bool isEmpty() const noexcept { return m_elements.isEmpty(); }

    // REQUIRES: 0 <= index < count.
    T& operator[](int index) noexcept { return *m_elements[index]; }
    const T& operator[](int index) const noexcept { return *m_elements[index]; }

    // Pointers to the elements, in order.
    T* const* begin() const noexcept { return m_elements.begin(); }
    T* const* end() const noexcept { return m_elements.end(); }

    void reserve(int capacity) { m_elements.reserve(capacity); }

    // Takes the element over; returns it.
    T* append(T* element) {
        m_elements.append(element);
        return element;
    }
    T* append(std::unique_ptr<T> element) { return append(element.release()); }
    T* insertAt(int index, T* element) {
        m_elements.insertAt(index, element);
        return element;
    }

    // Hands the element to the caller; those behind it move down. REQUIRES: 0 <= index < count.
    [[nodiscard]] std::unique_ptr<T> take(int index) noexcept {
        std::unique_ptr<T> element(m_elements[index]);
        m_elements.removeAt(index);
        return element;
    }

    // Deletes the element. REQUIRES: 0 <= index < count.
    void removeAt(int index) { take(index).reset(); }

    // Index of that very element; -1 if it is not here.
    int find(const T* element) const noexcept { return m_elements.find(const_cast<T*>(element)); }

    void clear() {
        while (!m_elements.isEmpty()) delete m_elements.pop();
    }

private:
    CSmallArray<T*> m_elements;
};

}  // namespace brt
