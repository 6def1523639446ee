// SPDX-License-Identifier: LicenseRef-Halyard
// The largest, or the smallest, of the last so many values. A new extreme is taken at once; the values are searched
// only when the one that was held has gone out of them. Owner: a meter. Threads: audio.
#pragma once

#include "Platform/Annotations.h"

namespace brt {

enum class EPeakHold { kLargest, kSmallest };

class CPeakHold {
public:
    // Begins with `start` in all places of the ring, which holds `count` values, one at least, and is not owned.
    void setUp(double* ring, int count, double start, EPeakHold which) noexcept;

    void push(double value) noexcept BRT_REALTIME;
    double held() const noexcept { return m_held; }

private:
    bool isBeyond(double a, double b) const noexcept { return m_which == EPeakHold::kLargest ? a > b : a < b; }
    void search() noexcept;

    double* m_ring = nullptr;
    int m_count = 1;
    int m_next = 0;  // where the next value goes; runs downwards, so that upwards from the newest they grow older
    int m_left = 0;  // pushes for which the held value still lies in the ring
    double m_held = 0.0;
    EPeakHold m_which = EPeakHold::kLargest;
};

}  // namespace brt
