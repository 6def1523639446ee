// SPDX-License-Identifier: LicenseRef-Halyard
// For changes of several parameters that are to be one: see CAudioParamCollector::handOver.
// Owner: a scope. Threads: any but the audio thread.
#pragma once

#include <span>

#include "Audio/CAudioParam.h"

namespace brt {

// Locks several parameters, in their order, for the life of a scope; also those that their filters write, since a batch
// holds changes of these too.
class CAudioParamLocks {
public:
    // `params` may hold one several times, and null.
    explicit CAudioParamLocks(std::span<CAudioParam* const> params);
    CAudioParamLocks(const CAudioParamLocks&) = delete;
    CAudioParamLocks& operator=(const CAudioParamLocks&) = delete;

private:
    COwnedArray<CRankedLock> m_locks;  // go from the last to the first
};

}  // namespace brt
