// SPDX-License-Identifier: LicenseRef-Halyard
// What kind of values a parameter holds. The same words stand in its definition, in each of its storages, and in every
// change that is on its way to one, so that a change that doesn't fit is recognised.
#pragma once

#include <cstdint>

namespace brt {

// As the numbers that stored data hold.
enum class EAudioDataType : std::int32_t { kFloat = 0, kString = 1, kRaw = 2 };

// Limits on what a file, a host or a window may address.
constexpr int kAudioGroupLimit = 32;
constexpr int kAudioElementLimit = 1024;
constexpr int kAudioElementSizeLimit = 64;

// Stands for a group: the whole parameter, with its defaults.
constexpr int kWholeParam = 9999;

struct CAudioParamFormat {
    std::int32_t elementSize = 1;  // sub-values of one element
    EAudioDataType dataType = EAudioDataType::kFloat;
    bool isSingleGroup = false;    // one set of values for all channel groups
    bool isSingleElement = false;  // one element a group

    bool isFloat() const noexcept { return dataType == EAudioDataType::kFloat; }
    bool operator==(const CAudioParamFormat&) const noexcept = default;
};

}  // namespace brt
