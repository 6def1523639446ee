// SPDX-License-Identifier: LicenseRef-Halyard
// Knows which channels the host has, and fits routing that nobody has touched to them.
// Owner: the wrapper is one. Threads: any, under the locks of the parameters that it names.
#pragma once

#include "Audio/CAudioParam.h"

namespace brt {

class CAudioRoutingInfoProvider : public CCheckedObject {
public:
    // Appends the parameters that an update reads or writes.
    virtual void listRoutingParams(CSmallArray<CAudioParam*>& params) = 0;
    // REQUIRES: the locks of these. The context must have a batch, or the caller hands nothing over.
    virtual void updateRouting(const CAudioParamChangeContext& context) = 0;
};

}  // namespace brt
