// SPDX-License-Identifier: LicenseRef-Halyard
// Where transforms come from and where they go back to: every channel that is torn down leaves its own to the next.
// One pool serves the process; tests make theirs.
// Threads: any; one lock, held while a transform is made. Structure may change on an audio thread, so acquire may run
// there; once as many transforms exist as are in use, it only takes one off a list.
// Invariant: an object is on one free list or lent to one reference, never both.
#pragma once

#include "Modules/CRealFFT.h"
#include "Modules/ProcessorBuild.h"
#include "Platform/Annotations.h"
#include "Platform/CCriticalSection.h"

#include <utility>

namespace brt {

class CRealFFTPool;

// Holds a transform that a pool has lent and gives it back at the end. Owner: the borrower.
class CRealFFTRef {
public:
    CRealFFTRef() = default;
    ~CRealFFTRef() { release(); }
    CRealFFTRef(CRealFFTRef&& other) noexcept
        : m_fft(std::exchange(other.m_fft, nullptr)), m_pool(std::exchange(other.m_pool, nullptr)) {}
    CRealFFTRef& operator=(CRealFFTRef&& other) noexcept {
        std::swap(m_fft, other.m_fft);
        std::swap(m_pool, other.m_pool);
        return *this;
    }

    // [any] Gives the transform back; the reference is empty after that.
    void release();

    explicit operator bool() const { return m_fft != nullptr; }
    CRealFFT* get() const { return m_fft; }
    CRealFFT* operator->() const { return m_fft; }

private:
    friend class CRealFFTPool;
    CRealFFTRef(CRealFFT* fft, CRealFFTPool* pool) : m_fft(fft), m_pool(pool) {}

    CRealFFT* m_fft = nullptr;  // the pool's
    CRealFFTPool* m_pool = nullptr;
};

class CRealFFTPool {
public:
    constexpr CRealFFTPool() = default;
    // A pool has no destructor, so that the one of the process needs no place in any order of destructors: freeAll
    // first.
    CRealFFTPool(const CRealFFTPool&) = delete;
    CRealFFTPool& operator=(const CRealFFTPool&) = delete;

    // [any] The pool of the process.
    static CRealFFTPool& instance();

    // [any] A transform of 2^order points, from the free list or made anew. The reference is empty when memory has run
    // out or no transform of that order exists.
    [[nodiscard]] CRealFFTRef acquire(int order, ProcessorBuild build = processorBuild());

    // [init] Frees what is not lent, and the tables when nothing is. What is lent then goes back as usual.
    void freeAll();

private:
    friend class CRealFFTRef;
    static constexpr int kOrderCount = 31;

    // All transforms of one order and build.
    struct Shelf {
        CRealFFT* free = nullptr;     // owned
        RealFftSpec* spec = nullptr;  // owned; null until the first transform is made
        int lentCount = 0;
    };

    void giveBack(CRealFFT* fft);
    CRealFFT* make(Shelf& shelf, int order, ProcessorBuild build) BRT_REQUIRES(m_lock);

    CCriticalSection m_lock{500};
    Shelf m_shelves[kProcessorBuildCount][kOrderCount] BRT_GUARDED_BY(m_lock) = {};
};

}  // namespace brt
