// SPDX-License-Identifier: LicenseRef-Halyard
// A preset that has been read for a registry's parameters and waits to be written.
#pragma once

#include "Audio/CAudioParam.h"

namespace brt {

// Where a preset goes.
struct CPresetPlace {
    bool toDefaults = false;  // what a reset means, in place of the values
    int group = CAudioParam::kAllGroups;
    int element = CAudioParam::kAllElements;
    bool isLastElement = false;
};

struct CPresetWrite : CBrtMemAllocator {
    CString key;
    CAudioParam* param = nullptr;           // null until it has been made
    const CAudioParamInfo* info = nullptr;  // its own, or the definition that it will get
    CAudioParamBlock block;
};

struct CPresetRest : CBrtMemAllocator {
    CAudioParam* param = nullptr;
    const CAudioParamInfo* info = nullptr;
};

struct CPresetPlan {
    COwnedArray<CPresetWrite> writes;
    COwnedArray<CPresetRest> rest;  // parameters that the preset doesn't mention: they go back to their definitions
};

}  // namespace brt
