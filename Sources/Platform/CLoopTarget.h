// SPDX-License-Identifier: LicenseRef-Halyard
// What a message loop delivers to: it gets the messages that are posted to its id, and its timers.
// Owner: whoever registers it with a loop, and takes it out before it goes. Threads: the loop's only.
#pragma once

#include <cstdint>

namespace brt {

// Ids are counted by each loop and never used again: one that was kept never means a newcomer.
enum class LoopTargetId : std::uint64_t { none = 0 };
enum class LoopTimerId : std::uint64_t { none = 0 };
enum class LoopSourceId : std::uint64_t { none = 0 };

class CLoopTarget {
public:
    virtual ~CLoopTarget() = default;

    // [loop] Both may take this or any other target, timer or source out of the loop, add new ones, let go of the loop,
    // and destroy this object: the loop touches nothing of it afterwards.
    virtual void handleMessage(std::uint32_t message, std::int64_t number) = 0;
    virtual void handleTimer(LoopTimerId /*timer*/) {}

protected:
    CLoopTarget() = default;
    CLoopTarget(const CLoopTarget&) = default;
    CLoopTarget& operator=(const CLoopTarget&) = default;
};

}  // namespace brt
