// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioBuffer.h"

#include <algorithm>
#include <new>

namespace brt {

CAudioBufferPool::~CAudioBufferPool() {
    BRT_ASSERT(m_heldCount == 0);
    for (CAudioBuffer* list : m_free)
        while (list != nullptr) destroy(std::exchange(list, list->m_nextFree));
}

CAudioBuffer* CAudioBufferPool::create(int capacityBytes, int sizeClass) {
    constexpr std::size_t kAlignment = alignof(CAudioBuffer);
    void* const raw =
        CBrtMemAllocator::alloc(static_cast<std::size_t>(capacityBytes) + sizeof(CAudioBuffer) + kAlignment - 1);
    const auto address = (reinterpret_cast<std::uintptr_t>(raw) + kAlignment - 1) & ~(kAlignment - 1);
    auto* const buffer = new (reinterpret_cast<void*>(address)) CAudioBuffer;
    buffer->m_raw = raw;
    buffer->m_capacityBytes = capacityBytes;
    buffer->m_sizeClass = sizeClass;
    return buffer;
}

void CAudioBufferPool::destroy(CAudioBuffer* buffer) noexcept { CBrtMemAllocator::free(buffer->m_raw); }

CAudioBufferRef CAudioBufferPool::take(int sampleCount) {
    const int bytes = std::max(sampleCount, 1) * static_cast<int>(sizeof(double));
    const int sizeClass = std::min((bytes - 1) / kClassBytes, kClassCount);
    CAudioBuffer* buffer = m_free[sizeClass];
    if (buffer != nullptr) m_free[sizeClass] = buffer->m_nextFree;
    // Of the large ones only the first is looked at: there are few sizes of those at a time.
    if (buffer != nullptr && buffer->m_capacityBytes < bytes) destroy(std::exchange(buffer, nullptr));
    if (buffer == nullptr) buffer = create(sizeClass < kClassCount ? (sizeClass + 1) * kClassBytes : bytes, sizeClass);
    buffer->m_pool = this;
    buffer->m_references = 1;
    ++m_heldCount;
    return CAudioBufferRef(buffer);
}

CAudioBufferRef CAudioBufferPool::takeSilent(int sampleCount) {
    CAudioBufferRef buffer = take(sampleCount);
    std::fill_n(buffer.samples(), std::max(sampleCount, 1), 0.0);
    return buffer;
}

CAudioBufferRef CAudioBufferPool::takeSilentBlock(int frames) {
    CAudioBufferRef buffer = takeBlock(frames);
    std::fill_n(buffer.samples(), frames, 0.0);
    return buffer;
}

void CAudioBufferPool::give(CAudioBuffer* buffer) noexcept {
    buffer->m_nextFree = std::exchange(m_free[buffer->m_sizeClass], buffer);
    --m_heldCount;
}

}  // namespace brt
