// SPDX-License-Identifier: LicenseRef-Halyard
// A place in a run of bytes that moves on as numbers are read from it, lowest byte first. It never leaves its run: a
// read that would gives 0, and from then on the cursor has failed, stands still at the place of that read, and gives 0.
// The bytes belong to somebody else. Threads: one at a time.
#pragma once

#include <cstdint>

namespace brt {

class CDocumentCursor {
public:
    // From `begin` up to `end`, both counted from `bytes`. REQUIRES: begin <= end.
    CDocumentCursor(const std::uint8_t* bytes, std::uint32_t begin, std::uint32_t end) noexcept
        : m_bytes(bytes), m_position(begin), m_end(end) {}

    std::uint32_t position() const noexcept { return m_position; }
    std::uint32_t bytesLeft() const noexcept { return m_end - m_position; }
    bool hasFailed() const noexcept { return m_hasFailed; }

    std::uint8_t read8() noexcept { return static_cast<std::uint8_t>(read(1)); }
    std::uint16_t read16() noexcept { return static_cast<std::uint16_t>(read(2)); }
    std::uint32_t read32() noexcept { return read(4); }

    void skip(std::uint32_t count) noexcept {
        if (take(count)) m_position += count;
    }

private:
    bool take(std::uint32_t count) noexcept {
        m_hasFailed = m_hasFailed || count > bytesLeft();
        return !m_hasFailed;
    }

    std::uint32_t read(std::uint32_t size) noexcept {
        if (!take(size)) return 0;
        std::uint32_t value = 0;
        for (std::uint32_t i = 0; i < size; ++i) value |= std::uint32_t{m_bytes[m_position + i]} << (8 * i);
        m_position += size;
        return value;
    }

    const std::uint8_t* m_bytes;
    std::uint32_t m_position;
    std::uint32_t m_end;
    bool m_hasFailed = false;
};

}  // namespace brt
