// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CoreTags.h"

#include "Core/CAttrDoubler.h"
#include "Core/CSharedAttribute.h"
#include "Core/CStdEventBridge.h"
#include "Core/CTimerQueued.h"

namespace brt {

std::span<const CCreatorRow> coreTags() noexcept {
    static constexpr CCreatorRow kTags[] = {
        creatorRow<CAttrDoubler>("core:attr-doubler"),         bagRow("core:object"),
        creatorRow<CSharedAttribute>("core:shared-attribute"), creatorRow<CTimerQueued>("core:timer"),
        creatorRow<CStdEventBridge>("ui:ui-event-bridge"),
    };
    return kTags;
}

}  // namespace brt
