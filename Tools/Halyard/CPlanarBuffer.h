// SPDX-License-Identifier: LicenseRef-Halyard
// Sound in memory: one contiguous run of 64-bit floats per channel, full scale at 1.0. Owner: who made it.
#pragma once

#include <cstddef>
#include <vector>

namespace brt {

class CPlanarBuffer {
public:
    CPlanarBuffer(int channelCount, int frameCount)
        : m_frameCount(frameCount),
          m_samples(static_cast<std::size_t>(channelCount) * static_cast<std::size_t>(frameCount)) {
        for (int c = 0; c < channelCount; ++c)
            m_channels.push_back(m_samples.data() + static_cast<std::ptrdiff_t>(c) * frameCount);
    }
    CPlanarBuffer(const CPlanarBuffer&) = delete;
    CPlanarBuffer& operator=(const CPlanarBuffer&) = delete;
    CPlanarBuffer(CPlanarBuffer&&) = default;  // the samples stay where they are
    CPlanarBuffer& operator=(CPlanarBuffer&&) = default;

    int channelCount() const noexcept { return static_cast<int>(m_channels.size()); }
    int frameCount() const noexcept { return m_frameCount; }
    double* channel(int index) noexcept { return m_channels[static_cast<std::size_t>(index)]; }
    const double* channel(int index) const noexcept { return m_channels[static_cast<std::size_t>(index)]; }
    double* const* channels() noexcept { return m_channels.data(); }

private:
    int m_frameCount;
    std::vector<double> m_samples;
    std::vector<double*> m_channels;
};

}  // namespace brt
