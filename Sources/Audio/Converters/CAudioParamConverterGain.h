// SPDX-License-Identifier: LicenseRef-Halyard
// Linear factors, shown in decibels.
// Owner and threads: as of every converter.
#pragma once

#include "Audio/Converters/CAudioParamConverterLog.h"

namespace brt {

class CAudioParamConverterGain final : public CAudioParamConverterLog {
public:
    static void describeClass(CClassInfo& info);
    [[nodiscard]] CError* init() override;

    double parseRaw(const CAudioParamInfo& info, int subValue, CStringView text, bool& ok) const override;
    void format(CString& text, const CAudioParamInfo& info, int subValue, double value, const CAudioParamData& data,
                EAudioTextMode mode) const override;
    double normalToDisplay(const CAudioParamInfo& info, int subValue, double normal) const override;
    double displayToNormal(const CAudioParamInfo& info, int subValue, double display) const override;

private:
    int m_decimals = 0;
};

}  // namespace brt
