// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/AudioTags.h"

#include "Audio/CAudioCCTable.h"
#include "Audio/CAudioExtParam.h"
#include "Audio/CAudioExtParamList.h"
#include "Audio/CAudioInterfaceBase.h"
#include "Audio/CAudioParamAllocDef.h"
#include "Audio/CAudioParamCollector.h"
#include "Audio/CAudioParamDef.h"
#include "Audio/CAudioParamFilterDef.h"
#include "Audio/CAudioParamRegistry.h"
#include "Audio/CAudioParamRemapDef.h"
#include "Audio/CAudioParamSharedStorage.h"
#include "Audio/CAudioProcessBypassStateDef.h"
#include "Audio/CAudioProcessDef.h"
#include "Audio/CAudioProcessLinkDef.h"
#include "Audio/CAudioVizCollector.h"
#include "Audio/Converters/CAudioParamConverterEnum.h"
#include "Audio/Converters/CAudioParamConverterFreq.h"
#include "Audio/Converters/CAudioParamConverterGain.h"
#include "Audio/Converters/CAudioParamConverterPercent.h"
#include "Audio/Converters/CAudioParamConverterReal.h"
#include "Audio/Converters/CAudioParamConverterText.h"
#include "Audio/Converters/CAudioParamConverterTime.h"

namespace brt {

std::span<const CCreatorRow> audioTags() noexcept {
    static constexpr CCreatorRow kTags[] = {
        creatorRow<CAudioEnv>("audio:audio-env"),
        creatorRow<CAudioCCTable>("audio:cctable"),
        creatorRow<CAudioParamConverterEnum>("audio:cvt-enum"),
        creatorRow<CAudioParamConverterFreq>("audio:cvt-freq"),
        creatorRow<CAudioParamConverterGain>("audio:cvt-gain"),
        creatorRow<CAudioParamConverterPercent>("audio:cvt-percent"),
        creatorRow<CAudioParamConverterReal>("audio:cvt-real"),
        creatorRow<CAudioParamConverterText>("audio:cvt-text"),
        creatorRow<CAudioParamConverterTime>("audio:cvt-time"),
        creatorRow<CAudioExtParam>("audio:ext-param"),
        creatorRow<CAudioExtParamList>("audio:ext-param-list"),
        creatorRow<CAudioInterfaceBase>("audio:interface-base"),
        creatorRow<CAudioParamDef>("audio:param"),
        creatorRow<CAudioParamAllocDef>("audio:param-alloc"),
        creatorRow<CAudioParamCollector>("audio:param-collector"),
        creatorRow<CAudioParamFilterBypassGroupSoloDef>("audio:param-filter-bypass-group-solo"),
        creatorRow<CAudioParamRegistry>("audio:param-registry"),
        creatorRow<CAudioParamRemapDef>("audio:param-remap"),
        creatorRow<CAudioParamSharedStorage>("audio:param-shared-storage"),
        creatorRow<CAudioProcessBypassStateDef>("audio:process-bypass-state"),
        creatorRow<CAudioProcessDef>("audio:process-def"),
        creatorRow<CAudioProcessLinkDef>("audio:process-link"),
        creatorRow<CAudioVizCollector>("audio:viz-collector"),
    };
    return kTags;
}

}  // namespace brt
