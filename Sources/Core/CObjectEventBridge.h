// SPDX-License-Identifier: LicenseRef-Halyard
// Carries events to the objects of one thread: those below the object that the bridge belongs to.
// Owner: counted; it outlives that object, and then drops what it is sent. Threads: as tagged.
#pragma once

#include "Core/CCounted.h"
#include "Core/CError.h"
#include "Core/CEventArgs.h"
#include "Platform/CNativeThread.h"

namespace brt {

class CObjectEventBridge : public CCounted {
public:
    virtual ~CObjectEventBridge() = default;

    // [any] Runs the event later on the bridge's thread; events of one bridge arrive in the order of sending. The
    // arguments are the bridge's from then on. To send where nobody is any more succeeds.
    [[nodiscard]] virtual CError* send(CRef<CEventArgs> args) = 0;

    // [any] The thread that the bridge was made on.
    bool isOnItsThread() const noexcept { return m_thread == currentThreadId(); }

protected:
    CObjectEventBridge() = default;

private:
    const std::uint32_t m_thread = currentThreadId();
};

}  // namespace brt
