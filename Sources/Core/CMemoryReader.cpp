// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CMemoryReader.h"

#include <algorithm>
#include <cstring>

#include "Core/CError.h"

namespace brt {

CMemoryReader::CMemoryReader(const void* bytes, int size) noexcept
    : m_bytes(static_cast<const std::uint8_t*>(bytes)), m_size(size) {
    BRT_ASSERT(size >= 0);
}

CError* CMemoryReader::skip(int count) {
    if (count < 0 || count > m_size - m_position) {
        return makeError(
            nullptr, __FILE__, __LINE__, "",
            "@brtstr_CMemoryReader_skip_EOF Premature end of memory resource while skipping (pos %1, count "
            "%2, size %3).",
            m_position, count, m_size);
    }
    m_position += count;
    return nullptr;
}

CError* CMemoryReader::read(void* buffer, int count) {
    if (count < 0 || count > m_size - m_position) {
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CMemoryReader_read_EOF Premature end of memory resource while reading (pos %1, count "
                         "%2, size %3).",
                         m_position, count, m_size);
    }
    if (count > 0) std::memcpy(buffer, m_bytes + m_position, static_cast<std::size_t>(count));
    m_position += count;
    return nullptr;
}

CError* CMemoryReader::readStreamed(void* buffer, int& count) {
    const int available = std::min(count, m_size - m_position);
    BRT_TRY("", read(buffer, available));
    count = available;
    return nullptr;
}

CError* CMemoryReader::getPosition(std::int64_t& position) {
    position = m_position;
    return nullptr;
}

CError* CMemoryReader::setPosition(std::int64_t position) {
    if (position < 0 || position > m_size) {
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CMemoryReader_setPosition_seek Positioning beyond memory resource end (newpos %1, "
                         "size %2).",
                         position, m_size);
    }
    m_position = static_cast<int>(position);
    return nullptr;
}

CError* CMemoryReader::getSize(std::int64_t& size) {
    size = m_size;
    return nullptr;
}

const void* CMemoryReaderStatic::getDirectData() { return m_position < m_size ? m_bytes + m_position : nullptr; }

}  // namespace brt
