// SPDX-License-Identifier: LicenseRef-Halyard
// A run of bytes of its own: what a block was unpacked to, a message, a value of the settings. Up to 64 bytes lie in
// the object itself and cost no allocation; more lie in a block of the allocator. Owner: whoever holds it. Threads: one
// at a time. Invariant: data() is never null.
#pragma once

#include <cstdint>

namespace brt {

class CByteBuffer {
public:
    static constexpr int kInlineBytes = 64;

    CByteBuffer() noexcept = default;
    ~CByteBuffer() { clear(); }
    CByteBuffer(const CByteBuffer&) = delete;
    CByteBuffer& operator=(const CByteBuffer&) = delete;

    std::uint8_t* data() noexcept { return m_data; }
    const std::uint8_t* data() const noexcept { return m_data; }
    int size() const noexcept { return m_size; }
    bool isEmpty() const noexcept { return m_size == 0; }

    // Room for `size` bytes with undefined content. REQUIRES: size >= 0.
    void setSize(int size);
    // The same for a size that comes from data: false where the system refuses the memory, and then empty.
    [[nodiscard]] bool trySetSize(int size);

    void assign(const void* bytes, int size);
    void clear() noexcept;

private:
    std::uint8_t* m_data = m_inline;
    int m_size = 0;
    std::uint8_t m_inline[kInlineBytes];
};

}  // namespace brt
