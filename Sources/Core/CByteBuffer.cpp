// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CByteBuffer.h"

#include <cstring>

#include "Core/CBrtMemAllocator.h"

namespace brt {

void CByteBuffer::setSize(int size) {
    if (!trySetSize(size)) CBrtMemAllocator::endOutOfMemory(static_cast<std::size_t>(size));
}

bool CByteBuffer::trySetSize(int size) {
    BRT_ASSERT(size >= 0);
    clear();
    if (size > kInlineBytes) {
        void* const block = CBrtMemAllocator::tryAlloc(static_cast<std::size_t>(size));
        if (block == nullptr) return false;
        m_data = static_cast<std::uint8_t*>(block);
    }
    m_size = size;
    return true;
}

void CByteBuffer::assign(const void* bytes, int size) {
    BRT_ASSERT(size == 0 || bytes != m_data);
    setSize(size);
    if (size > 0) std::memcpy(m_data, bytes, static_cast<std::size_t>(size));
}

void CByteBuffer::clear() noexcept {
    if (m_data != m_inline) CBrtMemAllocator::free(m_data);
    m_data = m_inline;
    m_size = 0;
}

}  // namespace brt
