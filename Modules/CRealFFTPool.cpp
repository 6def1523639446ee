// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CRealFFTPool.h"

#include "Core/CProcess.h"
#include "Modules/CAlignedBlock.h"
#include "Modules/RealFft.h"

#include <atomic>
#include <cstdlib>

namespace brt {
namespace {

constexpr int kHint = 1;

constinit CRealFFTPool s_pool;
constinit std::atomic<bool> s_isStopRegistered{false};

// With no lock held: the process holds its own while it has the pool freed.
void registerStop() {
    if (s_isStopRegistered.load(std::memory_order_relaxed)) return;
    registerProcessStop(ProcessStage::transforms, [] {
        s_isStopRegistered.store(false);
        s_pool.freeAll();
    });
    s_isStopRegistered.store(true);
}

RealFftSpec* makeSpec(int order, ProcessorBuild build, std::size_t specBytes) {
    // Freed by freeAll; fftGetSize's sizes are whole cache lines.
    void* memory = std::aligned_alloc(kCacheLineBytes, specBytes);
    RealFftSpec* spec = nullptr;
    if (memory != nullptr) fftInit(&spec, order, kFftScaleNone, kHint, memory, nullptr, build);
    return spec;
}

}  // namespace

void CRealFFTRef::release() {
    if (m_fft != nullptr) m_pool->giveBack(std::exchange(m_fft, nullptr));
}

CRealFFTPool& CRealFFTPool::instance() { return s_pool; }

CRealFFTRef CRealFFTPool::acquire(int order, ProcessorBuild build) {
    if (order < 0 || order > kFftMaxOrder || !isProcessorBuildSupported(build)) return {};
    if (this == &s_pool) registerStop();

    const CLock lock(m_lock);
    Shelf& shelf = m_shelves[static_cast<int>(build)][order];
    CRealFFT* fft = shelf.free;
    if (fft != nullptr)
        shelf.free = std::exchange(fft->m_next, nullptr);
    else
        fft = make(shelf, order, build);
    if (fft == nullptr) return {};
    ++shelf.lentCount;
    return {fft, this};
}

CRealFFT* CRealFFTPool::make(Shelf& shelf, int order, ProcessorBuild build) {
    std::size_t specBytes = 0, initBytes = 0, workBytes = 0;
    if (fftGetSize(order, kFftScaleNone, kHint, &specBytes, &initBytes, &workBytes, build) != kFftDone) return nullptr;
    if (shelf.spec == nullptr) shelf.spec = makeSpec(order, build, specBytes);
    if (shelf.spec == nullptr) return nullptr;

    auto* fft = new CRealFFT(order, build, shelf.spec);
    if (fft->m_workStore.allocate(workBytes)) return fft;
    delete fft;
    return nullptr;
}

void CRealFFTPool::giveBack(CRealFFT* fft) {
    const CLock lock(m_lock);
    Shelf& shelf = m_shelves[static_cast<int>(fft->m_build)][fft->m_order];
    fft->m_next = std::exchange(shelf.free, fft);
    --shelf.lentCount;
}

void CRealFFTPool::freeAll() {
    const CLock lock(m_lock);
    for (auto& shelvesOfBuild : m_shelves) {
        for (Shelf& shelf : shelvesOfBuild) {
            while (shelf.free != nullptr) delete std::exchange(shelf.free, shelf.free->m_next);
            if (shelf.lentCount == 0) std::free(std::exchange(shelf.spec, nullptr));
        }
    }
}

}  // namespace brt
