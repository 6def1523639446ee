// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/HeapCount.h"

#include "Platform/Annotations.h"

#include <cerrno>
#include <cstddef>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define BRT_FOREIGN_HEAP
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || !defined(__GLIBC__)
#define BRT_FOREIGN_HEAP
#endif

namespace brt {
namespace {

constinit thread_local std::int64_t t_calls = 0;

}  // namespace

std::int64_t heapCalls() noexcept { return t_calls; }

#if defined(BRT_FOREIGN_HEAP)
bool canCountHeapCalls() noexcept { return false; }
#else
bool canCountHeapCalls() noexcept { return true; }
#endif

}  // namespace brt

#if !defined(BRT_FOREIGN_HEAP)
// The C library lets a program bring the functions of the heap, and has its own under these names.
extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);

BRT_EXPORT void* malloc(std::size_t size) { return ++brt::t_calls, __libc_malloc(size); }
BRT_EXPORT void* calloc(std::size_t count, std::size_t size) { return ++brt::t_calls, __libc_calloc(count, size); }
BRT_EXPORT void* realloc(void* block, std::size_t size) { return ++brt::t_calls, __libc_realloc(block, size); }
BRT_EXPORT void* memalign(std::size_t alignment, std::size_t size) {
    return ++brt::t_calls, __libc_memalign(alignment, size);
}
BRT_EXPORT void* aligned_alloc(std::size_t alignment, std::size_t size) { return memalign(alignment, size); }
BRT_EXPORT int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
    void* const memory = memalign(alignment, size);
    if (memory == nullptr) return ENOMEM;
    *block = memory;
    return 0;
}
BRT_EXPORT void free(void* block) {
    if (block != nullptr) ++brt::t_calls;
    __libc_free(block);
}

}  // extern "C"
#endif
