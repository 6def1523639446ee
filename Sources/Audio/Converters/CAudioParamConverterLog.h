// SPDX-License-Identifier: LicenseRef-Halyard
// Factors, on a logarithmic scale, bent by a power; a threshold puts the factor 1 at a place of its own. Never in a
// tree itself. Owner and threads: as of every converter.
#pragma once

#include "Audio/CAudioParamConverter.h"

namespace brt {

class CAudioParamConverterLog : public CAudioParamConverter {
public:
    static void describeClass(CClassInfo& info);
    [[nodiscard]] CError* init() override;

    double normalToInternal(const CAudioParamInfo& info, int subValue, double normal) const override;
    double internalToNormal(const CAudioParamInfo& info, int subValue, double value) const override;

private:
    double m_power = 1.0;
    bool m_isPowerOne = true;
    double m_threshold = -1.0;  // above 0: where 1 lies, with a scale of its own to either side
};

}  // namespace brt
