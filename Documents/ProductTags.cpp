// SPDX-License-Identifier: LicenseRef-Halyard
#include "Documents/ProductTags.h"

#include "Audio/AudioTags.h"
#include "Core/CoreTags.h"
#include "Modules/ModuleTags.h"
#include "Other/OtherTags.h"

namespace brt {

std::span<const std::span<const CCreatorRow>> productTags() noexcept {
    static const std::span<const CCreatorRow> kTables[] = {
        coreTags(),
        audioTags(),
        moduleTags(),
        otherTags(),
    };
    return kTables;
}

}  // namespace brt
