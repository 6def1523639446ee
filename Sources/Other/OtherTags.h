// SPDX-License-Identifier: LicenseRef-Halyard
// The classes of this floor that documents may name.
#pragma once

#include <span>

#include "Core/CCreatorRegistry.h"

namespace brt {

std::span<const CCreatorRow> otherTags() noexcept;

}  // namespace brt
