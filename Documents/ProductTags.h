// SPDX-License-Identifier: LicenseRef-Halyard
// The classes of every floor that a document may name: what the product registers when it starts, and therefore what
// the document compiler knows. A new floor with tags adds its table here.
// Threads: any; constants.
#pragma once

#include <span>

#include "Core/CCreatorRegistry.h"

namespace brt {

std::span<const std::span<const CCreatorRow>> productTags() noexcept;

}  // namespace brt
