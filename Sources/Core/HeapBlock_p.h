// SPDX-License-Identifier: LicenseRef-Halyard
// The header of a block that came singly from the system's heap:
//
//     block - 10   offset: the distance from the raw allocation to here
//     block -  9   size of the request, 8 bytes, unaligned
//     block -  1   class number, or 255 for a big block
//
// The raw allocation needs no field: its first 16 bytes are set to 0, 1, 2 ... 15, and block - 10 is one of them, so
// that byte holds its own distance from the start.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace brt {

// Bytes that the raw allocation must have beyond the request, whatever its alignment: 10 of header, 15 to align.
constexpr std::size_t kHeapBlockSlack = 25;

// Writes the header into a raw allocation of at least `slack` bytes more than `size`; returns the block, aligned to 16.
// A slack below kHeapBlockSlack suits only raw allocations of a known alignment.
inline void* makeHeapBlock(void* raw, std::size_t slack, std::size_t size, int classNumber) noexcept {
    std::byte* const bytes = static_cast<std::byte*>(raw);
    for (unsigned char i = 0; i < 16; ++i) bytes[i] = std::byte{i};
    const std::uintptr_t aligned = (reinterpret_cast<std::uintptr_t>(raw) + slack) & ~std::uintptr_t{15};
    std::byte* const block = reinterpret_cast<std::byte*>(aligned);
    std::memcpy(block - 9, &size, sizeof size);
    block[-1] = static_cast<std::byte>(classNumber);
    return block;
}

inline void* rawOfHeapBlock(void* block) noexcept {
    std::byte* const header = static_cast<std::byte*>(block) - 10;
    return header - std::to_integer<std::size_t>(*header);
}

inline std::size_t sizeOfHeapBlock(const void* block) noexcept {
    std::size_t size;
    std::memcpy(&size, static_cast<const std::byte*>(block) - 9, sizeof size);
    return size;
}

}  // namespace brt
