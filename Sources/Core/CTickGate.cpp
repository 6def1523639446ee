// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CTickGate.h"

#include <algorithm>
#include <cmath>

namespace brt {

bool CTickGate::pass(double nowSeconds) noexcept {
    const CLock lock(m_lock);
    if (!m_isHandled && nowSeconds - m_lastPostSeconds < kPatienceSeconds) return false;
    if (m_skips > 0) {
        --m_skips;
        return false;
    }
    m_isHandled = false;
    m_lastPostSeconds = nowSeconds;
    return true;
}

bool CTickGate::isAwaited() noexcept {
    const CLock lock(m_lock);
    return !m_isHandled;
}

void CTickGate::setHandled(double takenSeconds) noexcept {
    const double skips = std::floor(std::min(takenSeconds, kPatienceSeconds) / m_intervalSeconds);
    const CLock lock(m_lock);
    m_isHandled = true;
    m_skips = static_cast<int>(std::max(skips, 0.0));
}

}  // namespace brt
