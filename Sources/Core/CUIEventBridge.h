// SPDX-License-Identifier: LicenseRef-Halyard
// The bridge to the thread of a user interface, on that thread's message loop: events wait here, and a message for each
// waits in the loop.
// Owner: counted. The loop reaches it as long as it is open. Threads: as tagged; "loop" is the thread it was made on.
#pragma once

#include "Core/CObjectEventBridge.h"
#include "Platform/CMessageLoop.h"

namespace brt {

class CStdEventBridge;

class CUIEventBridge final : public CObjectEventBridge, private CLoopTarget {
public:
    explicit CUIEventBridge(CStdEventBridge& owner) noexcept : m_owner(owner) {}

    // [loop] Finds or makes the thread's loop. Returns the system's error code; then it drops all that it is sent.
    [[nodiscard]] int open();

    // Forgets its owner and what waits; from now on it drops all that it is sent. On the loop's thread, or while that
    // is not inside the loop.
    void close();

    // [any] Fails where the loop is so far behind that it takes nothing more.
    [[nodiscard]] CError* send(CRef<CEventArgs> args) override;

private:
    static constexpr std::uint32_t kEventMessage = 0x1400;

    void handleMessage(std::uint32_t message, std::int64_t number) override;
    CRef<CEventArgs> take(std::int64_t number);

    CStdEventBridge& m_owner;
    std::shared_ptr<CMessageLoop> m_loop;  // null: not open
    CLoopAddress m_address;                // set once, before anybody sends

    CCriticalSection m_lock{50};
    bool m_isOpen BRT_GUARDED_BY(m_lock) = false;
    std::int64_t m_lastNumber BRT_GUARDED_BY(m_lock) = 0;
    COrderedMap<std::int64_t, CRef<CEventArgs>> m_waiting BRT_GUARDED_BY(m_lock);  // by the number in their message
};

}  // namespace brt
