// SPDX-License-Identifier: LicenseRef-Halyard
// Something that a message loop serves besides messages and timers: the connection to a display server, the input that
// a test injects, a pipe.
//
// In each round the loop asks every source to `prepare`, then sleeps if nothing is to be done, and then lets those
// `dispatch` that are prepared or whose descriptor has become readable. A source without a descriptor that gets its
// events from another thread calls `CLoopAddress::wake` after it has stored one.
//
// `only` is the target of the modal loop that runs, or `none`: then events of other windows must wait, in the source.
// A source reads its descriptor empty all the same, or the loop would find it readable again at once and never sleep.
//
// Owner: whoever adds it to a loop, and takes it out before it goes. Threads: the loop's only.
#pragma once

#include <cstdint>

#include "Platform/CLoopTarget.h"

namespace brt {

// What the system waits for, in a form without its types.
using LoopDescriptor = std::intptr_t;
constexpr LoopDescriptor kNoDescriptor = -1;

class CEventSource {
public:
    virtual ~CEventSource() = default;

    // [loop] True if events for `only` are there already. Also the place to send what is buffered, as the loop may
    // sleep next. Must not run handlers, nor wait.
    [[nodiscard]] virtual bool prepare(LoopTargetId only) = 0;

    // [loop] What becomes readable when events come; `kNoDescriptor` if there is none, or no longer: a connection that
    // has ended stays readable for ever.
    [[nodiscard]] virtual LoopDescriptor descriptor() const = 0;

    // [loop] Handles the events for `only` that are there now, not those that come meanwhile. Handlers may do all that
    // those of a `CLoopTarget` may, and a modal loop in one of them calls `prepare` and `dispatch` again below this
    // call. The loop touches nothing of the source afterwards.
    virtual void dispatch(LoopTargetId only) = 0;

protected:
    CEventSource() = default;
    CEventSource(const CEventSource&) = default;
    CEventSource& operator=(const CEventSource&) = default;
};

}  // namespace brt
