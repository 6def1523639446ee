// SPDX-License-Identifier: LicenseRef-Halyard
// A thread of the operating system, and what a thread may ask about itself.
//
// A new thread starts in a state of its own, whatever the host's calling thread looks like: ordinary scheduling, all
// asynchronous signals blocked (they belong to the host's threads), default floating-point state. Its affinity is the
// creator's. Thread ids are numbers of our own, counted for the process and never reused, so an id that was kept never
// means another thread; a system's id would.
//
// Owner: the object that starts and joins it. `start`, `join` and `abandon` belong to one thread at a time.
#pragma once

#include <cstdint>

namespace brt {

struct ThreadOptions {
    const char* name = "";        // shown by debuggers; UTF-8, cut to the system's limit (15 bytes on Linux)
    bool isTimeCritical = false;  // real-time scheduling where the system grants it; ordinary where it doesn't
};

class CNativeThread {
public:
    using Entry = void (*)(void* context);

    constexpr CNativeThread() noexcept = default;
    ~CNativeThread() = default;  // REQUIRES: joined, abandoned or never started
    CNativeThread(const CNativeThread&) = delete;
    CNativeThread& operator=(const CNativeThread&) = delete;

    // [any] Runs `entry(context)` on a new thread. Returns the system's error code; then nothing was started.
    // REQUIRES: not started, or joined since.
    [[nodiscard]] int start(Entry entry, void* context, const ThreadOptions& options = {});

    // [any] Waits without a limit until the entry has returned; does nothing if not started.
    // REQUIRES: not called on the thread itself.
    void join() noexcept;

    // [any] Forgets the thread without waiting for it: for a forked child, in which it doesn't exist.
    void abandon() noexcept { m_isStarted = false; }

    // [any] From a successful start until the join.
    [[nodiscard]] bool isStarted() const noexcept { return m_isStarted; }

    // [any] The id that `currentThreadId` gives on this thread; 0 if it was never started.
    [[nodiscard]] std::uint32_t id() const noexcept { return m_id; }

private:
    static void* main(void* self);

    Entry m_entry = nullptr;
    void* m_context = nullptr;
    std::uintptr_t m_handle = 0;
    std::uint32_t m_id = 0;
    bool m_isStarted = false;
    char m_name[16] = {};
};

// [any] The calling thread's id, above 0. Given at the first call on threads that are not ours. Real-time safe.
std::uint32_t currentThreadId() noexcept;

// [any] Lets other threads run that are ready to.
void yieldThread() noexcept;

// [any] Sleeps for at least that long; a signal that the host handles doesn't shorten it. 0 or less returns at once.
void sleepSeconds(double seconds) noexcept;

}  // namespace brt
