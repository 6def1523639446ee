// SPDX-License-Identifier: LicenseRef-Halyard
// The one application that the benchmarks share: the product's classes and documents, and their own.
#pragma once

#include "Core/CApplication.h"

namespace bench {

// Starts it when it is first asked for, with the classes of all these benchmarks.
void startApplication();

// The classes of EventBench.cpp.
std::span<const brt::CCreatorRow> eventTags() noexcept;

}  // namespace bench
