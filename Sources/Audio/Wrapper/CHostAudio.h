// SPDX-License-Identifier: LicenseRef-Halyard
// The sound of a host's block, in the host's own form: floats or doubles, a pointer for each channel or all channels in
// one run. Audio thread; real-time safe.
#pragma once

#include <cstdint>

#include "Platform/Annotations.h"

namespace brt {

struct CHostFormat {
    std::int32_t channelCount = 1;
    bool isDouble = false;
    bool isInterleaved = false;  // the samples of all channels in turn, behind the first pointer

    bool operator==(const CHostFormat&) const noexcept = default;
};

// Samples `first` to `first + frameCount` of a channel as doubles, and back. `buffers` has a pointer for each channel,
// or one alone. A null pointer reads as silence and swallows what is written.
void readHostChannel(const CHostFormat& format, const void* const* buffers, int channel, int first, int frameCount,
                     double* samples) noexcept BRT_REALTIME;
void writeHostChannel(const CHostFormat& format, void* const* buffers, int channel, int first, int frameCount,
                      const double* samples) noexcept BRT_REALTIME;

}  // namespace brt
