// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/CLoopClock.h"

#include <cmath>
#include <type_traits>

#include "Platform/Clock.h"

namespace brt {

namespace {

constexpr double kNanosecondsPerSecond = 1e9;

constinit CSystemLoopClock g_systemClock;
static_assert(std::is_trivially_destructible_v<CSystemLoopClock>);

}  // namespace

CSystemLoopClock& CSystemLoopClock::instance() noexcept { return g_systemClock; }

std::int64_t CSystemLoopClock::now() const noexcept {
    return std::llround(static_cast<double>(clockCounter()) * (kNanosecondsPerSecond / clockFrequency()));
}

void CManualLoopClock::advance(double seconds) {
    if (!(seconds > 0.0)) return;
    m_now.fetch_add(std::llround(seconds * kNanosecondsPerSecond), std::memory_order_relaxed);
    const CLock lock(m_lock);
    for (const CLoopAddress& loop : m_loops) loop.wake();
}

void CManualLoopClock::addLoop(const CLoopAddress& loop) {
    const CLock lock(m_lock);
    m_loops.push_back(loop);
}

void CManualLoopClock::removeLoop(const CLoopAddress& loop) {
    const CLock lock(m_lock);
    std::erase(m_loops, loop);
}

}  // namespace brt
