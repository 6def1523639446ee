// SPDX-License-Identifier: LicenseRef-Halyard
// The system's high-resolution clock: monotonic, never set back, stands still while the machine sleeps.
// Threads: any. Real-time safe.
#pragma once

#include <cstdint>

#include "Platform/Annotations.h"

namespace brt {

// [any] Ticks since an arbitrary origin.
std::int64_t clockCounter() noexcept BRT_REALTIME;

// [any] Ticks in a second; constant for the life of the process; 0 if the system has no such clock.
double clockFrequency() noexcept BRT_REALTIME;

}  // namespace brt
