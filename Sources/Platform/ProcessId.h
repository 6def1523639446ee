// SPDX-License-Identifier: LicenseRef-Halyard
// Which process this is: a child made by fork has another id than its parent.
// Threads: any.
#pragma once

#include <cstdint>

namespace brt {

// [any] The system's number of this process, above 0. Asks the system at each call.
std::int64_t processId() noexcept;

}  // namespace brt
