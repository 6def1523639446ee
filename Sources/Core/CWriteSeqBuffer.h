// SPDX-License-Identifier: LicenseRef-Halyard
// Output into memory: a chain of blocks that grows without ever moving what has been written. The first 1,024 bytes lie
// in the object itself. At the end the content goes to another stream, or into one buffer.
// Owner: whoever made it. Threads: one at a time.
#pragma once

#include <cstdint>
#include <limits>

#include "Core/CBrtMemAllocator.h"
#include "Core/COutputStream.h"
#include "Core/CSmallArray.h"

namespace brt {

class CWriteSeqBuffer : public COutputStream, public CBrtMemAllocator {
public:
    static constexpr int kStringBlockBytes = 2048;
    static constexpr int kStateBlockBytes = 16384;

    // `blockSize`: of the blocks behind the first. `limitBytes`: what the chain may hold.
    // REQUIRES: blockSize > 0.
    explicit CWriteSeqBuffer(int blockSize, int limitBytes = std::numeric_limits<int>::max());
    ~CWriteSeqBuffer() override;

    // Writing. Fails only above the limit, and then holds what it held before.
    [[nodiscard]] CError* write(const void* buffer, int count) override;

    int size() const noexcept { return m_fullBytes + m_currentSize - m_freeBytes; }

    // Writes the content to `stream` and keeps it.
    [[nodiscard]] CError* writeTo(COutputStream& stream) const;

    // Hands the content over in one piece and starts afresh, empty.
    void moveTo(CByteBuffer& buffer);

    void clear() noexcept;

private:
    static constexpr int kInlineBytes = 1024;

    struct CBlock {
        std::uint8_t* bytes;  // owned
        int size;
    };

    void copyToCurrent(const std::uint8_t* bytes, int count) noexcept;
    void appendBlock(int size);

    const int m_blockSize;
    const int m_limitBytes;
    int m_fullBytes = 0;  // of all blocks before the current one, which is the last
    int m_currentSize = kInlineBytes;
    int m_freeBytes = kInlineBytes;  // at the end of the current block
    std::uint8_t* m_write = m_inline;
    CSmallArray<CBlock> m_blocks;  // those behind the inline one
    std::uint8_t m_inline[kInlineBytes];
};

}  // namespace brt
