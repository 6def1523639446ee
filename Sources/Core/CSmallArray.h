// SPDX-License-Identifier: LicenseRef-Halyard
// An array of plain values with inline room for 64 bytes: 8 pointers cost no allocation.
//
// Elements are trivially copyable; what they point to is not owned (COwnedArray owns). The array grows and never
// shrinks. `data` may point into the array itself, so there is no copy or move by accident: `assign` copies.
// Owner: the object that holds it as a member. Threads: those of its owner; not locked.
#pragma once

#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

#include "Core/CBrtMemAllocator.h"

namespace brt {

template <class T>
class CSmallArray {
    static_assert(std::is_trivially_copyable_v<T>, "elements move as bytes");
    static_assert(alignof(T) <= 16, "blocks are aligned to 16");

public:
    static constexpr std::size_t kElementBytes = sizeof(T);  // NOLINT(bugprone-sizeof-expression): also of a pointer
    static constexpr int kInlineCapacity = static_cast<int>(64 / kElementBytes);

    CSmallArray() noexcept {}
    ~CSmallArray() {
        if (m_data != nullptr && !isInline()) CBrtMemAllocator::free(m_data);
    }
    CSmallArray(const CSmallArray&) = delete;
    CSmallArray& operator=(const CSmallArray&) = delete;

    int count() const noexcept { return m_count; }
    bool isEmpty() const noexcept { return m_count == 0; }
    int capacity() const noexcept { return m_capacity; }

    // REQUIRES: 0 <= index < count.
    T& operator[](int index) noexcept { return BRT_ASSERT(isIndex(index)), m_data[index]; }
    const T& operator[](int index) const noexcept { return BRT_ASSERT(isIndex(index)), m_data[index]; }
    T& last() noexcept { return (*this)[m_count - 1]; }
    const T& last() const noexcept { return (*this)[m_count - 1]; }

    T* begin() noexcept { return m_data; }
    T* end() noexcept { return m_data + m_count; }
    const T* begin() const noexcept { return m_data; }
    const T* end() const noexcept { return m_data + m_count; }

    // Makes room for `capacity` elements in all; does nothing if there is.
    void reserve(int capacity);

    // By value: the argument may be an element of this array.
    void append(T value) {
        if (m_count >= m_capacity) grow();
        m_data[m_count++] = value;
    }

    // The last element, which goes. REQUIRES: not empty.
    T pop() noexcept {
        BRT_ASSERT(m_count > 0);
        return m_data[--m_count];
    }

    // REQUIRES: 0 <= index <= count. Those from `index` on move up.
    void insertAt(int index, T value) {
        BRT_ASSERT(index >= 0 && index <= m_count);
        if (m_count >= m_capacity) grow();
        std::memmove(m_data + index + 1, m_data + index, static_cast<std::size_t>(m_count - index) * kElementBytes);
        m_data[index] = value;
        ++m_count;
    }

    // REQUIRES: 0 <= index < count. Those behind it move down: order is kept.
    void removeAt(int index) noexcept {
        BRT_ASSERT(isIndex(index));
        --m_count;
        std::memmove(m_data + index, m_data + index + 1, static_cast<std::size_t>(m_count - index) * kElementBytes);
    }

    // Index of the first element equal to `value`; -1 if there is none.
    int find(const T& value) const noexcept {
        for (int i = 0; i < m_count; ++i) {
            if (m_data[i] == value) return i;
        }
        return -1;
    }

    // Sets the count; new elements are zero bytes. REQUIRES: count >= 0.
    void setCount(int count) {
        reserve(count);
        if (count > m_count)
            std::memset(static_cast<void*>(m_data + m_count), 0,
                        static_cast<std::size_t>(count - m_count) * kElementBytes);
        m_count = count;
    }

    // Keeps the room.
    void clear() noexcept { m_count = 0; }

    void assign(const CSmallArray& other) {
        reserve(other.m_count);
        m_count = other.m_count;
        if (m_count > 0) std::memmove(m_data, other.m_data, static_cast<std::size_t>(m_count) * kElementBytes);
    }

private:
    bool isIndex(int index) const noexcept { return index >= 0 && index < m_count; }
    T* inlineData() noexcept { return reinterpret_cast<T*>(m_inlineRoom); }
    bool isInline() const noexcept { return static_cast<const void*>(m_data) == m_inlineRoom; }

    void grow() {
        const std::int64_t capacity = std::int64_t{m_capacity} + std::int64_t{m_capacity} * 10 / 16 + 1;
        if (capacity > std::numeric_limits<int>::max()) CBrtMemAllocator::endOutOfMemory(SIZE_MAX);
        reserve(static_cast<int>(capacity));
    }

    std::int32_t m_capacity = 0;
    T* m_data = nullptr;  // null, the inline room, or a block of the allocator
    alignas(16) std::byte m_inlineRoom[64];
    std::int32_t m_count = 0;
};

template <class T>
void CSmallArray<T>::reserve(int capacity) {
    if (capacity <= m_capacity) return;
    const std::size_t bytes = static_cast<std::size_t>(capacity) * kElementBytes;
    if (capacity <= kInlineCapacity) {
        m_data = inlineData();
    } else if (m_data == nullptr) {
        m_data = static_cast<T*>(CBrtMemAllocator::alloc(bytes));
    } else if (isInline()) {
        void* const block = CBrtMemAllocator::alloc(bytes);
        std::memcpy(block, m_data, static_cast<std::size_t>(m_capacity) * kElementBytes);
        m_data = static_cast<T*>(block);
    } else {
        m_data = static_cast<T*>(CBrtMemAllocator::realloc(m_data, bytes));
    }
    m_capacity = capacity;
}

}  // namespace brt
