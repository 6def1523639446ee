// SPDX-License-Identifier: LicenseRef-Halyard
// The loudest sample of a sound, and where it is. Of equal ones the earliest, in the lowest channel.
#pragma once

#include <cmath>
#include <cstdint>

#include "Tools/Halyard/CPlanarBuffer.h"

namespace brt {

struct Peak {
    double level = 0;  // 0 or more, full scale at 1
    std::int64_t frame = 0;
    int channel = 0;

    // Takes part of a piece of the sound into account. `frameOfFirst`: the place of buffer[first] in the whole.
    void include(const CPlanarBuffer& buffer, int first, int count, std::int64_t frameOfFirst) {
        for (int c = 0; c < buffer.channelCount(); ++c) {
            const double* samples = buffer.channel(c) + first;
            for (int i = 0; i < count; ++i) {
                const double candidate = std::fabs(samples[i]);
                const bool isEarlierTwin = candidate == level && frameOfFirst + i < frame;
                if (candidate > level || isEarlierTwin) *this = {candidate, frameOfFirst + i, c};
            }
        }
    }
};

}  // namespace brt
