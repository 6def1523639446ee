// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CoreTags.h"

#include "Core/CStdEventBridge.h"
#include "Core/CTimerQueued.h"

namespace brt {

std::span<const CCreatorRow> coreTags() noexcept {
    static constexpr CCreatorRow kTags[] = {
        bagRow("core:object"),
        creatorRow<CTimerQueued>("core:timer"),
        creatorRow<CStdEventBridge>("ui:ui-event-bridge"),
    };
    return kTags;
}

}  // namespace brt
