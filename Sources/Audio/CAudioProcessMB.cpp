// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioProcessMB.h"

#include "Audio/CAudioProcessDefBase.h"
#include "Core/CError.h"

namespace brt {

CError* CAudioProcessMB::init() {
    BRT_TRY(path(), CAudioProcessBase::init());
    if (definition().multibandFreqParam().isEmpty())
        return makeError(nullptr, __FILE__, __LINE__, path(),
                         "@brtstr_CAudioProcessMB_init_NoMBFreqParamDefined No 'multiband-freq-param' attribute "
                         "defined.");
    if (definition().multibandCountParam().isEmpty())
        return makeError(nullptr, __FILE__, __LINE__, path(),
                         "@brtstr_CAudioProcessMB_init_NoMBCountParamDefined No 'multiband-count-param' attribute "
                         "defined.");
    return makeError(nullptr, __FILE__, __LINE__, path(),
                     "@brtstr_CAudioProcessMB_init_NotSupported Processes in frequency bands are not supported.");
}

}  // namespace brt
