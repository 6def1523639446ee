// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CWriteSeqBuffer.h"

#include <algorithm>
#include <cstring>

#include "Core/CByteBuffer.h"
#include "Core/CError.h"

namespace brt {

CWriteSeqBuffer::CWriteSeqBuffer(int blockSize, int limitBytes) : m_blockSize(blockSize), m_limitBytes(limitBytes) {
    BRT_ASSERT(blockSize > 0);
}

CWriteSeqBuffer::~CWriteSeqBuffer() { clear(); }

CError* CWriteSeqBuffer::write(const void* buffer, int count) {
    if (count < 0 || count > m_limitBytes - size()) {
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CWriteSeqBuffer_write_TooBig Unable to write %1 bytes to a memory buffer that holds "
                         "%2 of at most %3 bytes.",
                         count, size(), m_limitBytes);
    }
    const auto* const bytes = static_cast<const std::uint8_t*>(buffer);
    const int fitting = std::min(count, m_freeBytes);
    copyToCurrent(bytes, fitting);
    if (fitting < count) {
        const int rest = count - fitting;
        appendBlock(std::max(m_blockSize, rest));
        copyToCurrent(bytes + fitting, rest);
    }
    return nullptr;
}

void CWriteSeqBuffer::copyToCurrent(const std::uint8_t* bytes, int count) noexcept {
    if (count > 0) std::memcpy(m_write, bytes, static_cast<std::size_t>(count));
    m_write += count;
    m_freeBytes -= count;
}

// REQUIRES: the current block is full.
void CWriteSeqBuffer::appendBlock(int size) {
    m_fullBytes += m_currentSize;
    m_write = static_cast<std::uint8_t*>(alloc(static_cast<std::size_t>(size)));
    m_blocks.append({m_write, size});
    m_currentSize = m_freeBytes = size;
}

CError* CWriteSeqBuffer::writeTo(COutputStream& stream) const {
    int rest = size();
    const auto writeBlock = [&](const std::uint8_t* bytes, int blockSize) -> CError* {
        const int used = std::min(rest, blockSize);
        if (used == 0) return nullptr;
        rest -= used;
        return stream.write(bytes, used);
    };
    BRT_TRY("", writeBlock(m_inline, kInlineBytes));
    for (const CBlock& block : m_blocks) BRT_TRY("", writeBlock(block.bytes, block.size));
    return nullptr;
}

void CWriteSeqBuffer::moveTo(CByteBuffer& buffer) {
    buffer.setSize(size());
    std::uint8_t* target = buffer.data();
    int rest = size();
    const auto moveBlock = [&](const std::uint8_t* bytes, int blockSize) {
        const int used = std::min(rest, blockSize);
        std::memcpy(target, bytes, static_cast<std::size_t>(used));
        target += used;
        rest -= used;
    };
    moveBlock(m_inline, kInlineBytes);
    for (const CBlock& block : m_blocks) moveBlock(block.bytes, block.size);
    clear();
}

void CWriteSeqBuffer::clear() noexcept {
    for (const CBlock& block : m_blocks) free(block.bytes);
    m_blocks.clear();
    m_fullBytes = 0;
    m_currentSize = m_freeBytes = kInlineBytes;
    m_write = m_inline;
}

}  // namespace brt
