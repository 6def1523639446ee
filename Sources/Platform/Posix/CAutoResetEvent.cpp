// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/CAutoResetEvent.h"

#include "Platform/Posix/Futex_p.h"
#include "Platform/Posix/Time_p.h"

namespace brt {

void CAutoResetEvent::signal() noexcept {
    // Nobody sleeps while the flag is up, so only the signal that raises it has anybody to wake.
    if (m_isSignaled.exchange(1, std::memory_order_release) == 0) wakeOneOnWord(m_isSignaled);
}

void CAutoResetEvent::wait() noexcept {
    while (!take()) sleepOnWord(m_isSignaled, 0, nullptr);
}

bool CAutoResetEvent::waitFor(double seconds) noexcept {
    if (take()) return true;
    if (!(seconds > 0.0)) return false;
    const timespec deadline = monotonicDeadline(seconds);
    while (sleepOnWord(m_isSignaled, 0, &deadline))
        if (take()) return true;
    return take();
}

}  // namespace brt
