// SPDX-License-Identifier: LicenseRef-Halyard
#include "Documents/ProductTags.h"

#include "Core/CoreTags.h"

namespace brt {

std::span<const std::span<const CCreatorRow>> productTags() noexcept {
    static const std::span<const CCreatorRow> kTables[] = {
        coreTags(),
    };
    return kTables;
}

}  // namespace brt
