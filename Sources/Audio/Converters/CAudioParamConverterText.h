// SPDX-License-Identifier: LicenseRef-Halyard
// Texts: the value is the id of an item of the parameter's data.
// Owner and threads: as of every converter.
#pragma once

#include "Audio/CAudioParamConverter.h"

namespace brt {

class CAudioParamConverterText final : public CAudioParamConverter {
public:
    double parseClamped(const CAudioParamInfo& info, int subValue, CStringView text, bool& ok) const override;
    double parseRaw(const CAudioParamInfo& info, int subValue, CStringView text, bool& ok) const override;
    void format(CString& text, const CAudioParamInfo& info, int subValue, double value, const CAudioParamData& data,
                EAudioTextMode mode) const override;
};

}  // namespace brt
