// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CPeakHold.h"

#include <algorithm>

namespace brt {

void CPeakHold::setUp(double* ring, int count, double start, EPeakHold which) noexcept {
    m_ring = ring;
    m_count = m_left = count;
    m_next = count - 1;
    m_held = start;
    m_which = which;
    std::fill_n(ring, count, start);
}

void CPeakHold::push(double value) noexcept {
    m_ring[m_next] = value;
    if (!isBeyond(m_held, value)) {
        m_held = value;
        m_left = m_count - 1;
    } else if (m_left > 0) {
        --m_left;
    } else {
        search();
    }
    m_next = m_next > 0 ? m_next - 1 : m_count - 1;
}

void CPeakHold::search() noexcept {
    m_held = m_ring[m_next];
    m_left = m_count - 1;
    for (int age = 1; age < m_count; ++age) {
        const int place = m_next + age;
        const double value = m_ring[place < m_count ? place : place - m_count];
        if (!isBeyond(value, m_held)) continue;
        m_held = value;
        m_left = m_count - 1 - age;
    }
}

}  // namespace brt
