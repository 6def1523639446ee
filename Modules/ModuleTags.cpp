// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/ModuleTags.h"

#include "Modules/CModBypass.h"
#include "Modules/CModGain.h"
#include "Modules/CModHalyard.h"
#include "Modules/CModHalyardMeter.h"
#include "Modules/CModMeter.h"
#include "Modules/CModNode.h"
#include "Modules/CModOutput.h"

namespace brt {

std::span<const CCreatorRow> moduleTags() noexcept {
    static constexpr CCreatorRow kTags[] = {
        creatorRow<CModBypassDef>("audio:modBypass"),   creatorRow<CModGainDef>("audio:modGain"),
        creatorRow<CModHalyardDef>("audio:modHalyard"), creatorRow<CModHalyardMeterDef>("audio:modHalyardMeter"),
        creatorRow<CModMeterDef>("audio:modMeter"),     creatorRow<CModNodeDef>("audio:modNode"),
        creatorRow<CModOutputDef>("audio:modOutput"),
    };
    return kTags;
}

}  // namespace brt
