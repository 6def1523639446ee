// SPDX-License-Identifier: LicenseRef-Halyard
// Input from a range of memory. Owner: whoever made it; the bytes belong to somebody else and outlive it.
// Threads: one at a time. Invariant: 0 <= position <= size; a read that fails leaves the position where it was.
#pragma once

#include "Core/CPosStream.h"

namespace brt {

class CMemoryReader : public CPosInputStream {
public:
    // REQUIRES: size >= 0 bytes at `bytes`.
    CMemoryReader(const void* bytes, int size) noexcept;

    // Reading.
    [[nodiscard]] CError* skip(int count) override;
    [[nodiscard]] CError* read(void* buffer, int count) override;
    [[nodiscard]] CError* readStreamed(void* buffer, int& count) override;

    // Position and size. The end is a position; one byte behind it is none.
    [[nodiscard]] CError* getPosition(std::int64_t& position) override;
    [[nodiscard]] CError* setPosition(std::int64_t position) override;
    [[nodiscard]] CError* getSize(std::int64_t& size) override;

protected:
    const std::uint8_t* m_bytes;  // not owned
    int m_size;
    int m_position = 0;
};

// The same over bytes that stay where they are as long as the program runs, such as a resource in its image: readers
// may keep and use their address instead of a copy.
class CMemoryReaderStatic : public CMemoryReader {
public:
    using CMemoryReader::CMemoryReader;

    // Direct access. Null at the end.
    const void* getDirectData() override;
};

}  // namespace brt
