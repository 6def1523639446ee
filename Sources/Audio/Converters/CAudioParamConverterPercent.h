// SPDX-License-Identifier: LicenseRef-Halyard
// Fractions, shown as percent.
// Owner and threads: as of every converter.
#pragma once

#include "Audio/CAudioParamConverter.h"

namespace brt {

class CAudioParamConverterPercent final : public CAudioParamConverter {
public:
    double parseRaw(const CAudioParamInfo& info, int subValue, CStringView text, bool& ok) const override;
    void format(CString& text, const CAudioParamInfo& info, int subValue, double value, const CAudioParamData& data,
                EAudioTextMode mode) const override;
    double normalToDisplay(const CAudioParamInfo& info, int subValue, double normal) const override;
    double displayToNormal(const CAudioParamInfo& info, int subValue, double display) const override;
};

}  // namespace brt
