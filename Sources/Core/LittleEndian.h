// SPDX-License-Identifier: LicenseRef-Halyard
// Numbers as every stored format of the program holds them: lowest byte first, at any address.
// Threads: any.
#pragma once

#include <cstdint>

namespace brt {

// [any] REQUIRES: 4 readable bytes.
[[nodiscard]] inline std::uint32_t loadLittleEndian32(const void* bytes) noexcept {
    const auto* const b = static_cast<const std::uint8_t*>(bytes);
    return std::uint32_t{b[0]} | std::uint32_t{b[1]} << 8 | std::uint32_t{b[2]} << 16 | std::uint32_t{b[3]} << 24;
}

// [any] REQUIRES: 4 writable bytes.
inline void storeLittleEndian32(void* bytes, std::uint32_t value) noexcept {
    auto* const b = static_cast<std::uint8_t*>(bytes);
    for (int i = 0; i < 4; ++i) b[i] = static_cast<std::uint8_t>(value >> (8 * i));
}

}  // namespace brt
