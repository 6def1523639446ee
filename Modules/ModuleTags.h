// SPDX-License-Identifier: LicenseRef-Halyard
// The processes that documents may name.
#pragma once

#include <span>

#include "Core/CCreatorRegistry.h"

namespace brt {

std::span<const CCreatorRow> moduleTags() noexcept;

}  // namespace brt
