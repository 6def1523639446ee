// SPDX-License-Identifier: LicenseRef-Halyard
// Where to post to: one target of one loop. It is a small counted value that outlives both of them: to post where
// nobody is any more succeeds, and drops the message. An address never changes what it means.
// Threads: any; one object must not be written and read at the same time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "Platform/CLoopTarget.h"

namespace brt {

class CLoopMailbox;

class CLoopAddress {
public:
    // Messages that wait in one loop before `post` fails: a loop that far behind is stuck, and memory is finite.
    static constexpr std::size_t kMostWaitingMessages = 1'000'000;

    CLoopAddress() = default;  // of nobody
    CLoopAddress(std::shared_ptr<CLoopMailbox> mailbox, LoopTargetId target);

    // [any] The target's `handleMessage` runs with these later, on the loop's thread. Messages of one loop arrive in
    // the order in which they were posted, whoever posted them. Returns the system's error code, 0 for success.
    [[nodiscard]] int post(std::uint32_t message, std::int64_t number) const;

    // [any] Ends the loop's sleep, so that it asks its event sources and looks at its clock again.
    void wake() const;

    // [any] See `CMessageLoop::quit`.
    void quit() const;

    [[nodiscard]] LoopTargetId target() const noexcept { return m_target; }

    // Same loop and same target.
    bool operator==(const CLoopAddress&) const = default;

private:
    std::shared_ptr<CLoopMailbox> m_mailbox;
    LoopTargetId m_target = LoopTargetId::none;
};

}  // namespace brt
