// SPDX-License-Identifier: LicenseRef-Halyard
// A block of plain values that starts on a cache line, for the rings, tables and spectra of the signal path.
// Owner: whoever holds it as a member; it moves, and does not copy. Threads: none of its own.
// Invariant: data() is null with size() 0, or points to size() values aligned to 64 bytes.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <type_traits>
#include <utility>

namespace brt {

// A line of every cache that matters, and the widest vector.
inline constexpr std::size_t kCacheLineBytes = 64;

template <class T>
class CAlignedBlock {
    static_assert(std::is_trivially_copyable_v<T> && alignof(T) <= kCacheLineBytes);

public:
    CAlignedBlock() = default;
    ~CAlignedBlock() { std::free(m_data); }
    CAlignedBlock(const CAlignedBlock&) = delete;
    CAlignedBlock& operator=(const CAlignedBlock&) = delete;
    CAlignedBlock(CAlignedBlock&& other) noexcept
        : m_data(std::exchange(other.m_data, nullptr)), m_size(std::exchange(other.m_size, 0)) {}
    CAlignedBlock& operator=(CAlignedBlock&& other) noexcept {
        std::swap(m_data, other.m_data);
        std::swap(m_size, other.m_size);
        return *this;
    }

    // [init] Drops what it held and takes `size` values, all bits zero. False, and empty, when there is no memory.
    [[nodiscard]] bool allocate(std::size_t size) {
        std::free(std::exchange(m_data, nullptr));
        m_size = 0;
        if (size == 0) return true;
        if (size > (static_cast<std::size_t>(-1) - kCacheLineBytes) / sizeof(T)) return false;
        const std::size_t bytes = (size * sizeof(T) + kCacheLineBytes - 1) / kCacheLineBytes * kCacheLineBytes;
        m_data = static_cast<T*>(std::aligned_alloc(kCacheLineBytes, bytes));
        if (m_data == nullptr) return false;
        std::memset(static_cast<void*>(m_data), 0, bytes);
        m_size = size;
        return true;
    }

    // [any] All bits zero again.
    void clear() {
        if (m_size != 0) std::memset(static_cast<void*>(m_data), 0, m_size * sizeof(T));
    }

    T* data() { return m_data; }
    const T* data() const { return m_data; }
    std::size_t size() const { return m_size; }
    T& operator[](std::size_t index) { return m_data[index]; }
    const T& operator[](std::size_t index) const { return m_data[index]; }

private:
    T* m_data = nullptr;  // owned
    std::size_t m_size = 0;
};

}  // namespace brt
