// SPDX-License-Identifier: LicenseRef-Halyard
// A flag that threads sleep on. A signal lets exactly one waiting thread pass, and is used up by it; signals that
// nobody has taken yet count as one. What a thread wrote before `signal` is seen by the thread that it lets pass.
// Constant initialised and trivially destroyed. Threads: any.
#pragma once

#include <atomic>
#include <cstdint>

namespace brt {

class CAutoResetEvent {
public:
    constexpr CAutoResetEvent() noexcept = default;
    CAutoResetEvent(const CAutoResetEvent&) = delete;
    CAutoResetEvent& operator=(const CAutoResetEvent&) = delete;

    // [any] Never waits. The event may be destroyed as soon as the waiting thread has passed.
    void signal() noexcept;

    // [any] Waits without a limit.
    void wait() noexcept;

    // [any] Waits for at most that long by the monotonic clock; 0 or less only looks. False if no signal came.
    bool waitFor(double seconds) noexcept;

private:
    bool take() noexcept { return m_isSignaled.exchange(0, std::memory_order_acquire) != 0; }

    std::atomic<std::uint32_t> m_isSignaled{0};
};

}  // namespace brt
