// SPDX-License-Identifier: LicenseRef-Halyard
// Whole numbers: a control steps from one to the next. Never in a tree itself.
// Owner and threads: as of every converter.
#pragma once

#include "Audio/CAudioParamConverter.h"

namespace brt {

class CAudioParamConverterRound : public CAudioParamConverter {
public:
    double normalToInternal(const CAudioParamInfo& info, int subValue, double normal) const override;
};

}  // namespace brt
