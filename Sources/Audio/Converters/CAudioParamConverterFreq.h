// SPDX-License-Identifier: LicenseRef-Halyard
// Hertz; large ones are shown in thousands.
// Owner and threads: as of every converter.
#pragma once

#include "Audio/Converters/CAudioParamConverterLog.h"

namespace brt {

class CAudioParamConverterFreq final : public CAudioParamConverterLog {
public:
    double parseRaw(const CAudioParamInfo& info, int subValue, CStringView text, bool& ok) const override;
    void format(CString& text, const CAudioParamInfo& info, int subValue, double value, const CAudioParamData& data,
                EAudioTextMode mode) const override;
};

}  // namespace brt
