// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/Converters/CAudioParamConverterRound.h"

#include "Audio/Converters/ConverterNumber.h"

namespace brt {

double CAudioParamConverterRound::normalToInternal(const CAudioParamInfo& info, int subValue, double normal) const {
    return roundHalfAway(CAudioParamConverter::normalToInternal(info, subValue, normal));
}

}  // namespace brt
