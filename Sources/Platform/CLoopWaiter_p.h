// SPDX-License-Identifier: LicenseRef-Halyard
// The system's part of a message loop: sleeping until a time, a descriptor or another thread says so.
// Owner: the loop's mailbox, which keeps it open as long as anybody may call `wake`.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "Platform/CEventSource.h"

namespace brt {

struct LoopWatch {
    LoopSourceId source = LoopSourceId::none;
    LoopDescriptor descriptor = kNoDescriptor;
    bool isReady = false;
};

class CLoopWaiter {
public:
    CLoopWaiter();
    ~CLoopWaiter();
    CLoopWaiter(const CLoopWaiter&) = delete;
    CLoopWaiter& operator=(const CLoopWaiter&) = delete;

    // [loop] Returns the system's error code.
    [[nodiscard]] int open();

    // [loop] REQUIRES: nobody calls `wake` any more.
    void close();

    // [loop] Sleeps until a descriptor is readable or has failed, `wake` is called, or the time is over; below 0
    // without a limit. May return early for no reason. Marks the ready ones. Returns the system's error code.
    [[nodiscard]] int wait(std::span<LoopWatch> watches, std::int64_t nanoseconds);

    // [any] Ends the sleep that is going on, or the next one.
    void wake();

    // [loop] Takes back the `wake` that was called.
    void takeWake();

private:
    struct Buffers;

    std::unique_ptr<Buffers> m_buffers;
    int m_event = -1;
};

}  // namespace brt
