// SPDX-License-Identifier: LicenseRef-Halyard
// Samples on their way through the graph: blocks of doubles that processes hand on by reference, and the pool that they
// come from and go back to.
//
//     CAudioBufferRef out = pool.takeBlock(frames);   // alone with it: may be written
//     channel.buffer = in;                            // one more reference, no copy
//
// A process that alone holds a buffer writes in place. Owner of the memory: the pool, one an instance; every reference
// goes before it. Threads: the audio thread, or whoever builds the graph before there is one; nothing is locked.
#pragma once

#include <cstdint>
#include <utility>

#include "Core/CBrtMemAllocator.h"
#include "Platform/Annotations.h"

namespace brt {

class CAudioBufferPool;

constexpr int kAudioBlockLimit = 512;  // samples of a block

// The header in front of the samples, which are aligned to 64 bytes.
class alignas(64) CAudioBuffer {
public:
    CAudioBuffer(const CAudioBuffer&) = delete;
    CAudioBuffer& operator=(const CAudioBuffer&) = delete;

    double* samples() noexcept { return reinterpret_cast<double*>(this + 1); }
    const double* samples() const noexcept { return reinterpret_cast<const double*>(this + 1); }
    int capacityBytes() const noexcept { return m_capacityBytes; }

private:
    friend class CAudioBufferPool;
    friend class CAudioBufferRef;
    CAudioBuffer() = default;

    void* m_raw = nullptr;  // what the system gave
    CAudioBufferPool* m_pool = nullptr;
    CAudioBuffer* m_nextFree = nullptr;  // while it lies in the pool
    int m_sizeClass = 0;
    int m_capacityBytes = 0;
    int m_references = 0;
};

// A counted reference; empty for silence that nobody wrote.
class CAudioBufferRef {
public:
    CAudioBufferRef() noexcept = default;
    CAudioBufferRef(const CAudioBufferRef& other) noexcept : m_buffer(other.m_buffer) {
        if (m_buffer != nullptr) ++m_buffer->m_references;
    }
    CAudioBufferRef(CAudioBufferRef&& other) noexcept : m_buffer(std::exchange(other.m_buffer, nullptr)) {}
    ~CAudioBufferRef() { reset(); }
    CAudioBufferRef& operator=(CAudioBufferRef other) noexcept {
        std::swap(m_buffer, other.m_buffer);
        return *this;
    }

    void reset() noexcept;
    double* samples() const noexcept { return m_buffer->samples(); }
    bool isUnique() const noexcept { return m_buffer->m_references == 1; }
    explicit operator bool() const noexcept { return m_buffer != nullptr; }
    bool operator==(const CAudioBufferRef& other) const noexcept = default;

private:
    friend class CAudioBufferPool;
    explicit CAudioBufferRef(CAudioBuffer* buffer) noexcept : m_buffer(buffer) {}

    CAudioBuffer* m_buffer = nullptr;
};

class CAudioBufferPool {
public:
    static constexpr int kClassBytes = 512;
    static constexpr int kClassCount = 128;  // sizes above share one more list

    CAudioBufferPool() = default;
    // REQUIRES: no buffer is held.
    ~CAudioBufferPool();
    CAudioBufferPool(const CAudioBufferPool&) = delete;
    CAudioBufferPool& operator=(const CAudioBufferPool&) = delete;

    // A buffer for that many samples, at least one, with undefined content. Asks the system only where none of the
    // size lies ready.
    CAudioBufferRef take(int sampleCount);
    // One that holds zeros.
    CAudioBufferRef takeSilent(int sampleCount);
    // The same for a block of the graph: always with room for the longest, so that a host which changes the length of
    // its blocks makes nobody ask the system.
    CAudioBufferRef takeBlock(int frames) { return take(frames > kAudioBlockLimit ? frames : kAudioBlockLimit); }
    CAudioBufferRef takeSilentBlock(int frames);

    // Buffers that somebody holds.
    int heldCount() const noexcept { return m_heldCount; }

private:
    friend class CAudioBufferRef;
    static CAudioBuffer* create(int capacityBytes, int sizeClass);
    static void destroy(CAudioBuffer* buffer) noexcept;
    void give(CAudioBuffer* buffer) noexcept;

    CAudioBuffer* m_free[kClassCount + 1] = {};
    int m_heldCount = 0;
};

inline void CAudioBufferRef::reset() noexcept {
    CAudioBuffer* const buffer = std::exchange(m_buffer, nullptr);
    if (buffer != nullptr && --buffer->m_references == 0) buffer->m_pool->give(buffer);
}

}  // namespace brt
