// SPDX-License-Identifier: LicenseRef-Halyard
// A prepared transform of one size, without scaling: inverse(forward(x)) is size() times x. The layout of the spectrum
// is told in RealFft.h.
// Owner: CRealFFTPool, which lends each object to one user at a time. Threads: one at a time; nothing here locks or
// allocates. Tables are shared by all objects of the same order and build; an object of its own has only a work buffer.
#pragma once

#include "Core/CBrtMemAllocator.h"
#include "Modules/CAlignedBlock.h"
#include "Modules/ProcessorBuild.h"
#include "Platform/Annotations.h"

#include <cstddef>

namespace brt {

struct RealFftSpec;

class CRealFFT : public CBrtMemAllocator {
public:
    int order() const { return m_order; }
    int size() const { return m_size; }           // 2^order
    double invSize() const { return m_invSize; }  // 1.0 / size
    ProcessorBuild build() const { return m_build; }

    // [audio] size() doubles each; `source` and `destination` are the same or apart.
    void forward(const double* source, double* destination) BRT_REALTIME;
    void inverse(const double* source, double* destination) BRT_REALTIME;

private:
    friend class CRealFFTPool;
    CRealFFT(int order, ProcessorBuild build, const RealFftSpec* spec)
        : m_order(order), m_size(1 << order), m_invSize(1.0 / m_size), m_build(build), m_spec(spec) {}

    const int m_order;
    const int m_size;
    const double m_invSize;
    const ProcessorBuild m_build;
    CRealFFT* m_next = nullptr;       // link of the pool's free list
    const RealFftSpec* const m_spec;  // the pool's
    CAlignedBlock<std::byte> m_workStore;
};

}  // namespace brt
