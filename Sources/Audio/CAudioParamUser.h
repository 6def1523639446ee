// SPDX-License-Identifier: LicenseRef-Halyard
// Somebody on the audio side who reads a parameter and wants to know when it has changed.
// Owner: the collector, in pages; the parameter links those that belong to it. Threads: see CAudioParam.
#pragma once

#include <cstdint>

namespace brt {

class CAudioParam;

struct CAudioParamUser {
    static constexpr int kAny = -1;

    CAudioParam* param = nullptr;
    std::uint8_t* updateNeeded = nullptr;    // set to 1
    std::uint32_t* changedGroups = nullptr;  // set to the bit of the group that changed last, or to all ones
    int group = kAny;                        // of the changes that matter here
    int element = kAny;
    CAudioParamUser* previous = nullptr;
    CAudioParamUser* next = nullptr;  // of the same parameter, or in the list of free records
};

}  // namespace brt
