// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/Wrapper/CHostAudio.h"

#include <algorithm>
#include <cstddef>

namespace brt {
namespace {

// Where the channel's samples begin, and how far apart they are.
struct CPlace {
    std::size_t first;
    std::size_t stride;
};

CPlace placeOf(const CHostFormat& format, int channel, int first) noexcept {
    if (!format.isInterleaved) return {static_cast<std::size_t>(first), 1};
    const auto stride = static_cast<std::size_t>(format.channelCount);
    return {static_cast<std::size_t>(first) * stride + static_cast<std::size_t>(channel), stride};
}

template <class Sample>
void readSamples(const void* buffer, CPlace place, int frameCount, double* samples) noexcept {
    const Sample* const source = static_cast<const Sample*>(buffer) + place.first;
    if (place.stride == 1) {
        for (int i = 0; i < frameCount; ++i) samples[i] = static_cast<double>(source[i]);
    } else {
        for (int i = 0; i < frameCount; ++i)
            samples[i] = static_cast<double>(source[static_cast<std::size_t>(i) * place.stride]);
    }
}

template <class Sample>
void writeSamples(void* buffer, CPlace place, int frameCount, const double* samples) noexcept {
    Sample* const target = static_cast<Sample*>(buffer) + place.first;
    if (place.stride == 1) {
        for (int i = 0; i < frameCount; ++i) target[i] = static_cast<Sample>(samples[i]);
    } else {
        for (int i = 0; i < frameCount; ++i)
            target[static_cast<std::size_t>(i) * place.stride] = static_cast<Sample>(samples[i]);
    }
}

}  // namespace

void readHostChannel(const CHostFormat& format, const void* const* buffers, int channel, int first, int frameCount,
                     double* samples) noexcept {
    const void* const buffer = buffers != nullptr ? buffers[format.isInterleaved ? 0 : channel] : nullptr;
    if (buffer == nullptr) {
        std::fill_n(samples, frameCount, 0.0);
        return;
    }
    const CPlace place = placeOf(format, channel, first);
    if (format.isDouble)
        readSamples<double>(buffer, place, frameCount, samples);
    else
        readSamples<float>(buffer, place, frameCount, samples);
}

void writeHostChannel(const CHostFormat& format, void* const* buffers, int channel, int first, int frameCount,
                      const double* samples) noexcept {
    void* const buffer = buffers != nullptr ? buffers[format.isInterleaved ? 0 : channel] : nullptr;
    if (buffer == nullptr) return;
    const CPlace place = placeOf(format, channel, first);
    if (format.isDouble)
        writeSamples<double>(buffer, place, frameCount, samples);
    else
        writeSamples<float>(buffer, place, frameCount, samples);
}

}  // namespace brt
