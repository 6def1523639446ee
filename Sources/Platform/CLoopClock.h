// SPDX-License-Identifier: LicenseRef-Halyard
// The time that a message loop's timers go by: the system's, or one that a test sets forward by hand, so that an hour
// of ticks takes no time.
// Owner: whoever makes it; it outlives the loops that use it. Threads: any.
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

#include "Platform/Annotations.h"
#include "Platform/CCriticalSection.h"
#include "Platform/CLoopAddress.h"

namespace brt {

class CLoopClock {
public:
    static constexpr std::int64_t kForever = -1;

    CLoopClock(const CLoopClock&) = delete;
    CLoopClock& operator=(const CLoopClock&) = delete;

    // [any] Nanoseconds since an arbitrary origin; never set back.
    [[nodiscard]] virtual std::int64_t now() const noexcept = 0;

    // [any] How long a loop may sleep, in the system's nanoseconds, for that many of this clock.
    [[nodiscard]] virtual std::int64_t sleepFor(std::int64_t nanoseconds) const noexcept = 0;

    // [any] A loop that sleeps by this clock, from its construction until its end.
    virtual void addLoop(const CLoopAddress& loop) = 0;
    virtual void removeLoop(const CLoopAddress& loop) = 0;

protected:
    constexpr CLoopClock() = default;
    ~CLoopClock() = default;
};

// The system's monotonic clock: stands still while the machine sleeps. Constant initialised, trivially destroyed.
class CSystemLoopClock final : public CLoopClock {
public:
    constexpr CSystemLoopClock() = default;

    // [any] The one that loops use if they are given none.
    static CSystemLoopClock& instance() noexcept;

    std::int64_t now() const noexcept override;
    std::int64_t sleepFor(std::int64_t nanoseconds) const noexcept override { return nanoseconds; }
    void addLoop(const CLoopAddress&) override {}
    void removeLoop(const CLoopAddress&) override {}
};

// Goes on only when told to. Loops that sleep until a time of this clock are woken to look at it again.
class CManualLoopClock final : public CLoopClock {
public:
    CManualLoopClock() = default;
    ~CManualLoopClock() = default;

    // [any] Time never goes back: 0 or less does nothing.
    void advance(double seconds);

    std::int64_t now() const noexcept override { return m_now.load(std::memory_order_relaxed); }
    std::int64_t sleepFor(std::int64_t) const noexcept override { return kForever; }
    void addLoop(const CLoopAddress& loop) override;
    void removeLoop(const CLoopAddress& loop) override;

private:
    std::atomic<std::int64_t> m_now{0};
    CCriticalSection m_lock;
    std::vector<CLoopAddress> m_loops BRT_GUARDED_BY(m_lock);
};

}  // namespace brt
