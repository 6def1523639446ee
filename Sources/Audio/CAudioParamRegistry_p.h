// SPDX-License-Identifier: LicenseRef-Halyard
// What the sources of CAudioParamRegistry share.
#pragma once

#include "Audio/CAudioParamRegistry.h"
#include "Audio/CPresetPlan_p.h"

namespace brt {

// Where the definitions of parameters are: names begin with `to` in place of `from`.
struct CAudioParamRegistry::CNameRemap : CBrtMemAllocator {
    CString from;
    CString to;
};

struct CAudioParamRegistry::CPendingParam : CBrtMemAllocator {
    CAudioParam* param = nullptr;
    CString key;
};

// What waits while another program is the current one.
struct CAudioParamRegistry::CParkedHistory : CBrtMemAllocator {
    std::unique_ptr<CAudioParamUndoHistory> history;
};

}  // namespace brt
