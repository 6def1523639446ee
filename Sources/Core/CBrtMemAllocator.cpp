// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CBrtMemAllocator.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

#include "Core/CMagazines.h"
#include "Core/CSizeClass.h"
#include "Core/HeapBlock_p.h"

#if !defined(BRT_SANITIZED_HEAP)
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define BRT_SANITIZED_HEAP 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define BRT_SANITIZED_HEAP 1
#endif
#endif
#endif
#if !defined(BRT_SANITIZED_HEAP)
#define BRT_SANITIZED_HEAP 0
#endif

namespace brt {

namespace {

#if BRT_SANITIZED_HEAP
constexpr bool kAllFromHeap = true;
// The system's heap aligns to 16, so this suffices, and the red zone begins right behind the request.
constexpr std::size_t kSlack = 16;
#else
constexpr bool kAllFromHeap = false;
constexpr std::size_t kSlack = kHeapBlockSlack;
#endif

template <int... Numbers>
constexpr std::array<CSizeClass, sizeof...(Numbers)> makeClasses(std::integer_sequence<int, Numbers...>) {
    return {CSizeClass(Numbers)...};
}

constinit std::array<CSizeClass, CBrtMemAllocator::kClassCount> s_classes =
    makeClasses(std::make_integer_sequence<int, CBrtMemAllocator::kClassCount>());

// Blocks taken singly from the system's heap and not yet freed, by class.
constinit std::array<std::atomic<std::int64_t>, CBrtMemAllocator::kBigBlock + 1> s_heapBlocks{};

constexpr int kMagazineSets = 16;
constinit CMagazines s_magazines[kMagazineSets];

// "initial-exec": the first use of thread-local data on an audio thread must not allocate.
[[gnu::tls_model("initial-exec")]] constinit thread_local CMagazines* t_magazines = nullptr;
[[gnu::tls_model("initial-exec")]] constinit thread_local bool t_hasAskedForMagazines = false;

// The thread's set; null if all were taken when it asked first.
CMagazines* magazinesOfThread() noexcept {
    if (t_hasAskedForMagazines) return t_magazines;
    t_hasAskedForMagazines = true;
    for (CMagazines& set : s_magazines) {
        // The address of thread-local data stands for the thread: no two living threads share it.
        if (set.claim(&t_magazines)) {
            t_magazines = &set;
            break;
        }
    }
    return t_magazines;
}

int classAt(const void* block) noexcept { return static_cast<const unsigned char*>(block)[-1]; }

// Null where the system refuses.
void* allocFromHeap(std::size_t size, int classNumber) {
    if (size > std::numeric_limits<std::size_t>::max() - kSlack) return nullptr;
    void* const raw = std::malloc(size + kSlack);
    if (raw == nullptr) return nullptr;
    s_heapBlocks[static_cast<std::size_t>(classNumber)].fetch_add(1, std::memory_order_relaxed);
    return makeHeapBlock(raw, kSlack, size, classNumber);
}

void freeToHeap(void* block, int classNumber) noexcept {
    s_heapBlocks[static_cast<std::size_t>(classNumber)].fetch_sub(1, std::memory_order_relaxed);
    std::free(rawOfHeapBlock(block));
}

std::size_t usableSize(const void* block) noexcept {
    const int number = classAt(block);
    if (kAllFromHeap || number == CBrtMemAllocator::kBigBlock) return sizeOfHeapBlock(block);
    return (static_cast<std::size_t>(number) + 1) * 16;
}

// The two slow paths stand apart, so that the fast ones need no stack frame.
[[gnu::noinline]] void* allocElsewhere(std::size_t size) {
    const int number = CBrtMemAllocator::classOf(size);
    if (kAllFromHeap || number == CBrtMemAllocator::kBigBlock) {
        void* const block = allocFromHeap(size, number);
        if (block == nullptr) CBrtMemAllocator::endOutOfMemory(size);
        return block;
    }
    CSizeClass& shared = s_classes[static_cast<std::size_t>(number)];
    CMagazines* const mine = magazinesOfThread();
    if (mine == nullptr) return shared.take();
    // A set that the thread has only now adopted may hold blocks.
    if (void* block = mine->take(number)) return block;
    return mine->reload(number, shared);
}

[[gnu::noinline]] void freeElsewhere(void* block) noexcept {
    const int number = classAt(block);
    if (kAllFromHeap || number == CBrtMemAllocator::kBigBlock) return freeToHeap(block, number);
    CSizeClass& shared = s_classes[static_cast<std::size_t>(number)];
    CMagazines* const mine = magazinesOfThread();
    if (mine == nullptr) return shared.give(block);
    if (mine->keep(number, block)) return;
    mine->unload(number, shared);
    static_cast<void>(mine->keep(number, block));
}

}  // namespace

#if !defined(NDEBUG)
constinit thread_local int CNoAllocationScope::t_depth = 0;
#endif

void* CBrtMemAllocator::alloc(std::size_t size) {
    BRT_ASSERT(!CNoAllocationScope::isActive());
    if (!kAllFromHeap && size <= kLargestSmallRequest && t_magazines != nullptr) [[likely]] {
        if (void* block = t_magazines->take(classOf(size))) return block;
    }
    return allocElsewhere(size);
}

void* CBrtMemAllocator::tryAlloc(std::size_t size) {
    BRT_ASSERT(!CNoAllocationScope::isActive());
    return classOf(size) == kBigBlock ? allocFromHeap(size, kBigBlock) : alloc(size);
}

void CBrtMemAllocator::free(void* block) noexcept {
    if (block == nullptr) return;
    BRT_ASSERT(!CNoAllocationScope::isActive());
    const int number = classAt(block);
    if (!kAllFromHeap && number != kBigBlock && t_magazines != nullptr && t_magazines->keep(number, block)) [[likely]]
        return;
    freeElsewhere(block);
}

void* CBrtMemAllocator::realloc(void* block, std::size_t size) {
    void* const result = alloc(size);
    if (block != nullptr) {
        std::memcpy(result, block, std::min(size, usableSize(block)));
        free(block);
    }
    return result;
}

void* CBrtMemAllocator::zlibAlloc(void*, unsigned items, unsigned size) { return tryAlloc(std::size_t{items} * size); }

void CBrtMemAllocator::zlibFree(void*, void* block) noexcept { free(block); }

void CBrtMemAllocator::endOutOfMemory(std::size_t size) noexcept {
    std::fprintf(stderr, "Out of memory: the system refused %zu bytes.\n", size);
    std::abort();
}

std::int64_t CBrtMemAllocator::liveBlocks(int classNumber) noexcept {
    const std::int64_t fromHeap = s_heapBlocks[static_cast<std::size_t>(classNumber)].load(std::memory_order_relaxed);
    if (kAllFromHeap || classNumber == kBigBlock) return fromHeap;
    CSizeClass& shared = s_classes[static_cast<std::size_t>(classNumber)];
    std::int64_t live = shared.slotCount() - shared.freeCount();
    for (const CMagazines& set : s_magazines) live -= set.blockCount(classNumber);
    return live;
}

std::int64_t CBrtMemAllocator::liveBlocks() noexcept {
    std::int64_t live = 0;
    for (int number = 0; number <= kBigBlock; ++number) live += liveBlocks(number);
    return live;
}

void CBrtMemAllocator::teardown() noexcept {
    for (CMagazines& set : s_magazines) set.forget();
    for (CSizeClass& shared : s_classes) shared.freeChunks();
}

}  // namespace brt
