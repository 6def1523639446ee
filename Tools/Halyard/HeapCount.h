// SPDX-License-Identifier: LicenseRef-Halyard
// How often a thread asks the system's heap for memory or gives some back, also from within a loaded plug-in.
// Threads: any. Not in builds with a sanitizer, which have a heap of their own.
#pragma once

#include <cstdint>

namespace brt {

bool canCountHeapCalls() noexcept;
// Of the calling thread since it began.
std::int64_t heapCalls() noexcept;

}  // namespace brt
