// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/ProcessId.h"

#include <unistd.h>

namespace brt {

std::int64_t processId() noexcept { return getpid(); }

}  // namespace brt
